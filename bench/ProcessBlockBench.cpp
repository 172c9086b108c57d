// SPDX-License-Identifier: AGPL-3.0-or-later
// processBlock at 48 kHz with 256-sample blocks, idle and with the standard job (an 8-note chord
// held from sample 0). The counter "realtime" is audio seconds rendered per CPU second.
#include <benchmark/benchmark.h>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 256;
const int chord[] = { 48, 52, 55, 59, 62, 65, 69, 72 };

void renderBlocks (benchmark::State& state, bool playChord)
{
    juce::ScopedJuceInitialiser_GUI framework;
    auto processor = std::make_unique<KestruneAudioProcessor>();
    processor->setRateAndBufferSizeDetails (sampleRate, blockSize);
    processor->prepareToPlay (sampleRate, blockSize);

    juce::AudioBuffer<float> buffer (2, blockSize);
    juce::MidiBuffer midi;
    if (playChord)
        for (int note : chord)
            midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);

    for (auto _ : state)
    {
        buffer.clear();
        processor->processBlock (buffer, midi); // the chord goes in with the first block, then is held
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
        benchmark::ClobberMemory();
    }

    state.counters["realtime"] = benchmark::Counter ((double) state.iterations() * blockSize / sampleRate,
                                                     benchmark::Counter::kIsRate);
}

void ProcessBlockIdle (benchmark::State& state) { renderBlocks (state, false); }
void ProcessBlockChord8 (benchmark::State& state) { renderBlocks (state, true); }
} // namespace

BENCHMARK (ProcessBlockIdle);
BENCHMARK (ProcessBlockChord8);
