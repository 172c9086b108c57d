// SPDX-License-Identifier: AGPL-3.0-or-later
// A bare juce::Synthesiser with the plug-in's voices, fed parameter values the way the processor
// feeds them.
#pragma once

#include <array>
#include <atomic>
#include <cmath>
#include <vector>

#include <juce_audio_basics/juce_audio_basics.h>

#include "core/ParameterTable.h"
#include "engine/support/Listen.h"
#include "voice/SynthSound.h"
#include "voice/SynthVoice.h"

struct VoiceTestRig
{
    explicit VoiceTestRig (double rate = 48000.0, int numVoices = 8) : sampleRate (rate)
    {
        for (const auto& row : parameterTable)
        {
            storage[(size_t) row.index].store ((float) row.defaultValue);
            pointers[(size_t) row.index] = &storage[(size_t) row.index];
        }
        // A plain, steady tone unless a test asks otherwise.
        for (const auto& [index, value] : { std::pair { ParameterIndex::pitch, 0.0f }, { ParameterIndex::attack, 0.0f }, { ParameterIndex::decay, 0.0f },
                                           { ParameterIndex::sustain, 1.0f }, { ParameterIndex::release, 0.0f } })
            set (index, value);

        synth.addSound (new SynthSound());
        for (int i = 0; i < numVoices; ++i)
            synth.addVoice (new SynthVoice());
        synth.setCurrentPlaybackSampleRate (rate);
        synth.setNoteStealingEnabled (true);
        for (int i = 0; i < numVoices; ++i)
            voice (i)->prepareVoice (rate);
    }

    void set (int index, float value) { storage[(size_t) index].store (value); }
    SynthVoice* voice (int i) { return dynamic_cast<SynthVoice*> (synth.getVoice (i)); }

    void noteOn (int note, float velocity = 100.0f / 127.0f) { pending.addEvent (juce::MidiMessage::noteOn (1, note, velocity), 0); }
    void noteOff (int note) { pending.addEvent (juce::MidiMessage::noteOff (1, note), 0); }
    void pitchWheel (int value) { pending.addEvent (juce::MidiMessage::pitchWheel (1, value), 0); }

    // Renders in blocks, pushing parameters at each block as the processor does; pending MIDI goes
    // at the start of the first block. Returns the start index of the new audio in left/right.
    size_t render (int numSamples, int blockSize = 256)
    {
        const size_t start = left.size();
        juce::AudioBuffer<float> buffer (2, blockSize);
        for (int done = 0; done < numSamples;)
        {
            const int n = juce::jmin (blockSize, numSamples - done);
            for (int i = 0; i < synth.getNumVoices(); ++i)
                voice (i)->pushParameters (pointers);
            buffer.clear();
            synth.renderNextBlock (buffer, pending, 0, n);
            pending.clear();
            left.insert (left.end(), buffer.getReadPointer (0), buffer.getReadPointer (0) + n);
            right.insert (right.end(), buffer.getReadPointer (1), buffer.getReadPointer (1) + n);
            done += n;
        }
        return start;
    }

    size_t seconds (double s) const { return (size_t) (s * sampleRate); }

    int activeVoices()
    {
        int count = 0;
        for (int i = 0; i < synth.getNumVoices(); ++i)
            count += synth.getVoice (i)->isVoiceActive() ? 1 : 0;
        return count;
    }

    double sampleRate;
    std::array<std::atomic<float>, numParameters> storage;
    SynthVoice::ParameterValues pointers {};
    juce::Synthesiser synth;
    juce::MidiBuffer pending;
    std::vector<float> left, right;
};
