// SPDX-License-Identifier: AGPL-3.0-or-later
// Render statistics and their text and JSON forms.
#include "RenderSummary.h"

#include <cmath>

namespace
{
juce::String decibelText (double level)
{
    if (level <= 0.0)
        return "-inf dBFS";
    return juce::String (20.0 * std::log10 (level), 2) + " dBFS";
}

juce::String channelName (int channel, int numChannels)
{
    if (numChannels == 2)
        return channel == 0 ? "left" : "right";
    return "channel " + juce::String (channel + 1);
}
} // namespace

RenderSummary::RenderSummary (int numChannels, double rate)
    : sampleRate (rate), peaks ((size_t) numChannels, 0.0f), sumsOfSquares ((size_t) numChannels, 0.0)
{
}

void RenderSummary::add (const juce::AudioBuffer<float>& block)
{
    const int channels = juce::jmin (block.getNumChannels(), (int) peaks.size());
    for (int ch = 0; ch < channels; ++ch)
    {
        const auto* data = block.getReadPointer (ch);
        for (int i = 0; i < block.getNumSamples(); ++i)
        {
            const float x = data[i];
            if (! std::isfinite (x))
            {
                ++nonFinite;
                continue;
            }
            peaks[(size_t) ch] = juce::jmax (peaks[(size_t) ch], std::abs (x));
            sumsOfSquares[(size_t) ch] += (double) x * (double) x;
        }
    }
    frames += block.getNumSamples();
}

float RenderSummary::getPeak (int channel) const
{
    return peaks[(size_t) channel];
}

double RenderSummary::getRms (int channel) const
{
    return frames > 0 ? std::sqrt (sumsOfSquares[(size_t) channel] / (double) frames) : 0.0;
}

juce::String RenderSummary::toText (const juce::File& file) const
{
    juce::String text;
    text << "rendered " << frames << " frames (" << juce::String ((double) frames / sampleRate, 3) << " s at "
         << juce::roundToInt (sampleRate) << " Hz) to " << file.getFullPathName() << "\n";
    const int channels = (int) peaks.size();
    for (int ch = 0; ch < channels; ++ch)
        text << channelName (ch, channels) << ": peak " << juce::String (getPeak (ch), 6) << " ("
             << decibelText (getPeak (ch)) << "), rms " << juce::String (getRms (ch), 6) << " ("
             << decibelText (getRms (ch)) << ")\n";
    text << "non-finite samples: " << nonFinite << "\n";
    return text;
}

juce::String RenderSummary::toJson (const juce::File& file) const
{
    auto* summary = new juce::DynamicObject();
    summary->setProperty ("file", file.getFullPathName());
    summary->setProperty ("frames", frames);
    summary->setProperty ("sampleRate", sampleRate);
    summary->setProperty ("seconds", (double) frames / sampleRate);

    juce::Array<juce::var> peakList, rmsList;
    for (int ch = 0; ch < (int) peaks.size(); ++ch)
    {
        peakList.add ((double) getPeak (ch));
        rmsList.add (getRms (ch));
    }
    summary->setProperty ("peak", peakList);
    summary->setProperty ("rms", rmsList);
    summary->setProperty ("nonFinite", nonFinite);
    return juce::JSON::toString (juce::var (summary), true) + "\n";
}
