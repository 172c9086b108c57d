// SPDX-License-Identifier: AGPL-3.0-or-later
// Soak run, not part of CI (`make soak`): ten minutes of audio per configuration through the whole
// chain, with notes and random automation all the way, reporting the real-time factor and the worst
// block. ONDRIVEL_SOAK_SECONDS shortens the run for a quick look.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

namespace
{
double threadCpuSeconds()
{
    timespec t {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &t);
    return (double) t.tv_sec + (double) t.tv_nsec * 1.0e-9;
}

double soakSeconds()
{
    if (const char* text = std::getenv ("ONDRIVEL_SOAK_SECONDS"))
        return juce::jmax (1.0, std::atof (text));
    return 600.0;
}

// state.range(0): sample rate; state.range(1): block size, 0 for a size drawn anew for every block.
void Soak (benchmark::State& state)
{
    const double rate = (double) state.range (0);
    const int fixedBlock = (int) state.range (1);
    const int maxBlock = fixedBlock > 0 ? fixedBlock : 4096;

    juce::ScopedJuceInitialiser_GUI framework;
    auto processor = std::make_unique<KestruneAudioProcessor>();
    processor->setRateAndBufferSizeDetails (rate, maxBlock);
    processor->prepareToPlay (rate, maxBlock);
    for (const char* id : { "bp1", "bp2", "bp3", "reverb" })
        processor->parameters.getParameter (id)->setValueNotifyingHost (1.0f);

    juce::AudioBuffer<float> buffer (2, maxBlock);
    juce::MidiBuffer midi;
    midi.ensureSize (4096);
    juce::Random random (12345);

    const auto total = (juce::int64) (rate * soakSeconds());
    double worst = 0.0, busy = 0.0;
    float peak = 0.0f;
    juce::int64 nonFinite = 0;
    std::vector<double> blockSeconds;
    juce::Array<int> held;

    for (auto _ : state)
    {
        for (juce::int64 done = 0; done < total;)
        {
            const int n = (int) juce::jmin ((juce::int64) (fixedBlock > 0 ? fixedBlock : 1 + random.nextInt (maxBlock)), total - done);

            // Automation: a few parameters move every block, any of them, anywhere in its range.
            for (int i = 0; i < 2; ++i)
                processor->parameters.getParameter (parameterTable[random.nextInt (numParameters)].id)
                    ->setValueNotifyingHost (random.nextFloat());
            // Notes: about five changes a second, up to ten held.
            midi.clear();
            if (random.nextDouble() < 5.0 * n / rate)
            {
                if (held.size() > 9 || (held.size() > 0 && random.nextBool()))
                {
                    const int index = random.nextInt (held.size());
                    midi.addEvent (juce::MidiMessage::noteOff (1, held[index]), 0);
                    held.remove (index);
                }
                else
                {
                    const int note = 30 + random.nextInt (70);
                    held.add (note);
                    midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) (40 + random.nextInt (88))), 0);
                }
            }

            juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), 2, n);
            block.clear();
            const double start = threadCpuSeconds();
            processor->processBlock (block, midi);
            const double spent = threadCpuSeconds() - start;
            busy += spent;
            worst = std::max (worst, spent);
            blockSeconds.push_back (spent / n);

            for (int ch = 0; ch < 2; ++ch)
                for (int i = 0; i < n; ++i)
                {
                    const float x = block.getSample (ch, i);
                    if (! std::isfinite (x)) ++nonFinite;
                    else peak = std::max (peak, std::abs (x));
                }
            done += n;
        }
    }

    const double audioSeconds = (double) total / rate;
    // Cost per sample of the first and last tenth of the run, medians: a rise means creeping cost.
    const size_t tenth = blockSeconds.size() / 10;
    auto medianOf = [] (std::vector<double> v)
    {
        if (v.empty()) return 0.0;
        std::nth_element (v.begin(), v.begin() + (std::ptrdiff_t) (v.size() / 2), v.end());
        return v[v.size() / 2];
    };
    const double firstTenth = medianOf (std::vector<double> (blockSeconds.begin(), blockSeconds.begin() + (std::ptrdiff_t) tenth));
    const double lastTenth = medianOf (std::vector<double> (blockSeconds.end() - (std::ptrdiff_t) tenth, blockSeconds.end()));

    state.counters["audio_s"] = audioSeconds;
    state.counters["rtf"] = busy / audioSeconds; // CPU seconds per audio second; below 1 is real time
    state.counters["worst_block_us"] = worst * 1.0e6;
    state.counters["worst_block_of_budget"] = worst / ((double) maxBlock / rate);
    state.counters["creep_last_over_first"] = firstTenth > 0.0 ? lastTenth / firstTenth : 0.0;
    state.counters["peak"] = peak;
    state.counters["non_finite"] = (double) nonFinite;
}
} // namespace

BENCHMARK (Soak)
    ->ArgNames ({ "rate", "block" })
    ->Args ({ 44100, 256 })
    ->Args ({ 48000, 32 })
    ->Args ({ 48000, 0 })
    ->Args ({ 96000, 512 })
    ->Args ({ 192000, 1024 })
    ->Iterations (1)
    ->Unit (benchmark::kSecond)
    ->UseRealTime();
