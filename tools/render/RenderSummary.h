// SPDX-License-Identifier: AGPL-3.0-or-later
// Level statistics of a render, gathered block by block: peak and RMS per channel, non-finite samples.
#pragma once

#include <vector>

#include <juce_audio_basics/juce_audio_basics.h>

class RenderSummary
{
public:
    RenderSummary (int numChannels, double sampleRate);

    void add (const juce::AudioBuffer<float>& block);

    juce::int64 getFrames() const noexcept { return frames; }
    juce::int64 getNonFiniteCount() const noexcept { return nonFinite; }
    float getPeak (int channel) const;
    double getRms (int channel) const;

    juce::String toText (const juce::File& file) const;
    juce::String toJson (const juce::File& file) const;

private:
    double sampleRate;
    juce::int64 frames = 0;
    juce::int64 nonFinite = 0;
    std::vector<float> peaks;
    std::vector<double> sumsOfSquares;
};
