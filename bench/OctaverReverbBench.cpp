// SPDX-License-Identifier: AGPL-3.0-or-later
// Cost of the octaver and the reverb stage alone, and of the whole processor with every module on:
// 48 kHz, block 256, eight held notes.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"
#include "effects/Octaver.h"
#include "effects/ReverbStage.h"

namespace
{
constexpr double rate = 48000.0;
constexpr int blockSize = 256;

void fillTone (juce::AudioBuffer<float>& buffer, double& phase)
{
    for (int i = 0; i < buffer.getNumSamples(); ++i)
    {
        const float x = (float) (0.4 * std::sin (phase));
        phase += 2.0 * M_PI * 220.0 / rate;
        buffer.setSample (0, i, x);
        buffer.setSample (1, i, x * 0.8f);
    }
}

void reportRealTime (benchmark::State& state)
{
    state.SetItemsProcessed (state.iterations() * blockSize);
    state.counters["realtime_x"] = benchmark::Counter ((double) blockSize / rate * (double) state.iterations(),
                                                       benchmark::Counter::kIsRate);
}
} // namespace

static void octaverBlock (benchmark::State& state)
{
    juce::ScopedNoDenormals noDenormals;
    auto octaver = std::make_unique<Octaver>();
    octaver->prepare (rate, blockSize);
    juce::AudioBuffer<float> buffer (2, blockSize);
    double phase = 0.0;
    for (auto _ : state)
    {
        fillTone (buffer, phase);
        octaver->process (buffer, blockSize, 0.5f, 0.5f);
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
    }
    reportRealTime (state);
}
BENCHMARK (octaverBlock);

static void reverbBlock (benchmark::State& state)
{
    juce::ScopedNoDenormals noDenormals;
    auto stage = std::make_unique<ReverbStage>();
    stage->prepare (rate);
    DcBlocker left, right;
    left.prepare (rate);
    right.prepare (rate);
    juce::AudioBuffer<float> buffer (2, blockSize);
    double phase = 0.0;
    for (auto _ : state)
    {
        fillTone (buffer, phase);
        stage->process (buffer, blockSize, 0.5f, left, right);
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
    }
    reportRealTime (state);
}
BENCHMARK (reverbBlock);

static void fullPatchEightNotes (benchmark::State& state)
{
    juce::ScopedJuceInitialiser_GUI gui;
    auto processor = std::make_unique<KestruneAudioProcessor>();
    processor->setRateAndBufferSizeDetails (rate, blockSize);
    processor->prepareToPlay (rate, blockSize);
    for (const auto* id : { "bp1", "bp2", "bp3", "ws" })
        if (auto* p = processor->parameters.getParameter (id))
            p->setValueNotifyingHost (1.0f);
    if (auto* p = processor->parameters.getParameter ("reverb"))
        p->setValueNotifyingHost (p->convertTo0to1 (0.5f));

    juce::AudioBuffer<float> buffer (2, blockSize);
    juce::MidiBuffer midi;
    for (int note = 0; note < 8; ++note)
        midi.addEvent (juce::MidiMessage::noteOn (1, 48 + 3 * note, (juce::uint8) 100), 0);
    buffer.clear();
    processor->processBlock (buffer, midi);

    for (auto _ : state)
    {
        buffer.clear();
        midi.clear();
        processor->processBlock (buffer, midi);
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
    }
    reportRealTime (state);
}
BENCHMARK (fullPatchEightNotes);

