// SPDX-License-Identifier: AGPL-3.0-or-later
#include "SoakRun.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "PluginHost.h"
#include "ProcessMeter.h"

namespace
{
struct Configuration
{
    double sampleRate;
    int block; // 0: a size drawn anew for every block, up to randomBlockMax
};

const Configuration configurations[] = { { 44100, 256 }, { 48000, 32 }, { 48000, 0 }, { 96000, 512 }, { 192000, 1024 } };
constexpr int randomBlockMax = 4096;

double medianOf (std::vector<double> v)
{
    if (v.empty())
        return 0.0;
    std::nth_element (v.begin(), v.begin() + (std::ptrdiff_t) (v.size() / 2), v.end());
    return v[v.size() / 2];
}
} // namespace

bool SoakRun::run (const juce::File& bundle, double audioSeconds, juce::String& error)
{
    std::printf ("%-6s %-6s | %7s | %8s | %14s | %9s | %7s | %s\n", "rate", "block", "audio s", "CPU s/s", "worst block us",
                 "of budget", "creep", "peak, non-finite");
    for (const auto& c : configurations)
        if (! runOne (bundle, c.sampleRate, c.block, audioSeconds, error))
            return false;
    return true;
}

bool SoakRun::runOne (const juce::File& bundle, double sampleRate, int fixedBlock, double audioSeconds,
                      juce::String& error)
{
    const int maxBlock = fixedBlock > 0 ? fixedBlock : randomBlockMax;
    auto host = PluginHost::load (bundle, sampleRate, maxBlock, error);
    if (host == nullptr)
        return false;
    for (const char* id : { "bp1", "bp2", "bp3", "reverb" })
        if (auto* parameter = host->findParameter (id))
            parameter->setValue (1.0f);

    const auto& parameters = host->getParameters();
    juce::Random random (12345);
    juce::Array<int> held;
    const auto total = (juce::int64) (sampleRate * audioSeconds);
    double worst = 0.0, busy = 0.0;
    float peak = 0.0f;
    juce::int64 nonFinite = 0;
    std::vector<double> secondsPerSample;

    for (juce::int64 done = 0; done < total;)
    {
        const int n = (int) juce::jmin ((juce::int64) (fixedBlock > 0 ? fixedBlock : 1 + random.nextInt (maxBlock)), total - done);

        // Automation: a few parameters move every block, any of them, anywhere in its range.
        for (int i = 0; i < 2; ++i)
            parameters[random.nextInt (parameters.size())]->setValue (random.nextFloat());
        // Notes: about five changes a second, up to ten held.
        if (random.nextDouble() < 5.0 * n / sampleRate)
        {
            if (held.size() > 9 || (held.size() > 0 && random.nextBool()))
            {
                const int index = random.nextInt (held.size());
                host->scheduleMidi (host->getPosition(), juce::MidiMessage::noteOff (1, held[index]));
                held.remove (index);
            }
            else
            {
                const int note = 30 + random.nextInt (70);
                held.add (note);
                host->scheduleMidi (host->getPosition(), juce::MidiMessage::noteOn (1, note, (juce::uint8) (40 + random.nextInt (88))));
            }
        }

        const double start = ProcessMeter::threadCpuSeconds();
        const auto& block = host->renderNext (n);
        const double spent = ProcessMeter::threadCpuSeconds() - start;
        busy += spent;
        worst = std::max (worst, spent);
        secondsPerSample.push_back (spent / n);

        for (int ch = 0; ch < block.getNumChannels(); ++ch)
            for (int i = 0; i < n; ++i)
            {
                const float x = block.getSample (ch, i);
                if (! std::isfinite (x))
                    ++nonFinite;
                else
                    peak = std::max (peak, std::abs (x));
            }
        done += n;
    }

    // Cost per sample in the first and the last tenth of the run, medians: a rise means creeping cost.
    const auto tenth = (std::ptrdiff_t) (secondsPerSample.size() / 10);
    const double first = medianOf ({ secondsPerSample.begin(), secondsPerSample.begin() + tenth });
    const double last = medianOf ({ secondsPerSample.end() - tenth, secondsPerSample.end() });
    const double seconds = (double) total / sampleRate;
    std::printf ("%-6d %-6s | %7.0f | %8.4f | %14.0f | %9.3f | %7.3f | %.4f, %lld\n", (int) sampleRate,
                 fixedBlock > 0 ? juce::String (fixedBlock).toRawUTF8() : "random", seconds, busy / seconds, worst * 1.0e6,
                 worst / ((double) maxBlock / sampleRate), first > 0.0 ? last / first : 0.0, (double) peak, (long long) nonFinite);
    std::fflush (stdout);
    return true;
}
