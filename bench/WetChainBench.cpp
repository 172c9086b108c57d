// SPDX-License-Identifier: AGPL-3.0-or-later
// Cost of the wet chain: the whole processor holding an eight-note chord with the block delay and the
// flanger on, at 48 kHz in blocks of 256, and the block delay with its tilt filter alone.
// The counter "RTF" is seconds of audio made per second of CPU.
#include <memory>

#include <benchmark/benchmark.h>
#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 256;

void setParameter (KestruneAudioProcessor& p, const char* id, float value)
{
    if (auto* parameter = p.parameters.getParameter (id))
        parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
}

struct ChainJob
{
    ChainJob (bool flangerOn, bool modulated)
    {
        processor->setRateAndBufferSizeDetails (sampleRate, blockSize);
        processor->prepareToPlay (sampleRate, blockSize);
        setParameter (*processor, "bp2", 1.0f);
        setParameter (*processor, "bp3", flangerOn ? 1.0f : 0.0f);
        setParameter (*processor, "flangerit", 0.6f);
        setParameter (*processor, "time", 400.0f);
        setParameter (*processor, "fdbk", 0.6f);
        setParameter (*processor, "drywet", 0.7f);
        setParameter (*processor, "fmit", modulated ? 700.0f : 0.0f);
        setParameter (*processor, "squeezeit", modulated ? 300.0f : 0.0f);

        juce::MidiBuffer chord;
        for (int note : { 48, 52, 55, 59, 62, 65, 69, 72 })
            chord.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
        processor->processBlock (buffer, chord);
        // A second of audio: past the attack, and the delay has frozen its first blocks.
        for (int i = 0; i < (int) sampleRate / blockSize; ++i)
            renderBlock();
    }

    void renderBlock()
    {
        buffer.clear();
        processor->processBlock (buffer, noMidi);
    }

    juce::ScopedJuceInitialiser_GUI gui;
    std::unique_ptr<KestruneAudioProcessor> processor = std::make_unique<KestruneAudioProcessor>();
    juce::AudioBuffer<float> buffer { 2, blockSize };
    juce::MidiBuffer noMidi;
};

void setRealTimeFactor (benchmark::State& state)
{
    state.counters["RTF"] = benchmark::Counter ((double) state.iterations() * blockSize / sampleRate,
                                                benchmark::Counter::kIsRate);
}

void runChain (benchmark::State& state, bool flangerOn, bool modulated)
{
    ChainJob job (flangerOn, modulated);
    for (auto _ : state)
    {
        job.renderBlock();
        benchmark::DoNotOptimize (job.buffer.getReadPointer (0)[blockSize - 1]);
    }
    setRealTimeFactor (state);
}

void chordThroughDelay (benchmark::State& state) { runChain (state, false, false); }
void chordThroughDelayAndFlanger (benchmark::State& state) { runChain (state, true, false); }
void chordThroughModulatedDelayAndFlanger (benchmark::State& state) { runChain (state, true, true); }

void blockDelayAlone (benchmark::State& state)
{
    juce::ScopedNoDenormals noDenormals;
    auto delay = std::make_unique<BlockDelay>();
    TiltEqualiser tilt;
    delay->reset (sampleRate);
    const bool modulated = state.range (0) != 0;
    const BlockDelay::Settings settings { 400.0f, 0.0f, modulated ? 700.0f : 0.0f, modulated ? 300.0f : 0.0f,
                                          0.6f, 5.0f, 1.0f, 1.0f, 120.0, (float) sampleRate };
    juce::AudioBuffer<float> buffer (2, blockSize);
    juce::Random random (1);
    for (auto _ : state)
    {
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < blockSize; ++i)
                buffer.setSample (ch, i, random.nextFloat() - 0.5f);
        delay->setupBlock (settings);
        tilt.setupBlock (0.3f, sampleRate);
        delay->process (buffer, blockSize, true, settings.revmix, tilt);
        benchmark::DoNotOptimize (buffer.getReadPointer (0)[blockSize - 1]);
    }
    setRealTimeFactor (state);
}
} // namespace

BENCHMARK (chordThroughDelay);
BENCHMARK (chordThroughDelayAndFlanger);
BENCHMARK (chordThroughModulatedDelayAndFlanger);
BENCHMARK (blockDelayAlone)->Arg (0)->Arg (1);
