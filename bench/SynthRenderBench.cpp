// SPDX-License-Identifier: AGPL-3.0-or-later
// Cost of the voices alone: juce::Synthesiser rendering the standard held chord, apart from the
// effect chain. The counter "RTF" is seconds of audio made per second of CPU.
#include <array>
#include <atomic>

#include <benchmark/benchmark.h>
#include <juce_audio_basics/juce_audio_basics.h>

#include "core/ParameterTable.h"
#include "voice/SynthSound.h"
#include "voice/SynthVoice.h"

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 256;

struct ChordJob
{
    explicit ChordJob (float ws)
    {
        for (const auto& row : parameterTable)
        {
            values[(size_t) row.index].store ((float) row.defaultValue);
            pointers[(size_t) row.index] = &values[(size_t) row.index];
        }
        values[ParameterIndex::ws].store (ws);

        synth.addSound (new SynthSound());
        for (int i = 0; i < 8; ++i)
            synth.addVoice (new SynthVoice());
        synth.setCurrentPlaybackSampleRate (sampleRate);
        synth.setNoteStealingEnabled (true);
        for (int i = 0; i < 8; ++i)
            voice (i)->prepareVoice (sampleRate);

        juce::MidiBuffer chord;
        for (int note : { 48, 52, 55, 59, 62, 65, 69, 72 })
            chord.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
        pushParameters();
        synth.renderNextBlock (buffer, chord, 0, blockSize);
        // Past the attack and decay, into the held part of the notes.
        for (int i = 0; i < (int) sampleRate / blockSize; ++i)
            renderBlock (true);
    }

    SynthVoice* voice (int i) { return dynamic_cast<SynthVoice*> (synth.getVoice (i)); }

    void pushParameters()
    {
        for (int i = 0; i < 8; ++i)
            voice (i)->pushParameters (pointers);
    }

    void renderBlock (bool withParameters)
    {
        if (withParameters)
            pushParameters();
        buffer.clear();
        synth.renderNextBlock (buffer, noMidi, 0, blockSize);
    }

    std::array<std::atomic<float>, numParameters> values;
    SynthVoice::ParameterValues pointers {};
    juce::Synthesiser synth;
    juce::AudioBuffer<float> buffer { 2, blockSize };
    juce::MidiBuffer noMidi;
};

void run (benchmark::State& state, float ws, bool withParameters)
{
    juce::ScopedNoDenormals noDenormals;
    ChordJob job (ws);
    for (auto _ : state)
    {
        job.renderBlock (withParameters);
        benchmark::DoNotOptimize (job.buffer.getReadPointer (0)[blockSize - 1]);
    }
    state.counters["RTF"] = benchmark::Counter ((double) state.iterations() * blockSize / sampleRate,
                                                benchmark::Counter::kIsRate);
}

void renderChord (benchmark::State& state) { run (state, 0.0f, false); }
void renderChordWithParameters (benchmark::State& state) { run (state, 0.0f, true); }
void renderChordFolded (benchmark::State& state) { run (state, 1.0f, false); }
} // namespace

BENCHMARK (renderChord);
BENCHMARK (renderChordWithParameters);
BENCHMARK (renderChordFolded);
