// SPDX-License-Identifier: AGPL-3.0-or-later
// Drives the processor as a demanding host would and records what each block did on the calling
// thread: the output's peak and non-finite samples, heap allocations and mutexes locked.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

struct StressStats
{
    std::int64_t blocks = 0, nonFinite = 0;
    std::size_t news = 0, mallocs = 0; // operator new; the C allocator called directly
    float peak = 0.0f;
    // Most distinct mutexes one processBlock locked, in blocks without and with a mod-wheel message.
    std::size_t mostMutexes = 0, mostMutexesWithModWheel = 0;
};

class StressRig
{
public:
    StressRig (double sampleRate, int maxBlockSize);

    KestruneAudioProcessor& processor() { return *instance; }

    // releaseResources, then prepareToPlay, as a host does on a settings change.
    void reprepare (double sampleRate, int maxBlockSize);

    // One processBlock of n samples (1 to the prepared maximum) into a cleared buffer.
    void render (int n, juce::MidiBuffer& midi);

    // Through the parameter objects, as the plug-in wrapper does: in the plug-in's units or normalised.
    void setParameter (int index, float value);
    void setNormalised (int index, float normalised);
    // Any parameter but the volume, so that the output rarely falls silent; a third of the changes
    // go to an end of the range, where most trouble lives.
    void randomiseParameters (juce::Random& random, int howMany);

    StressStats stats;

private:
    int maxBlockSize;
    juce::ScopedJuceInitialiser_GUI framework;
    std::unique_ptr<KestruneAudioProcessor> instance;
    juce::AudioBuffer<float> buffer;
};

namespace stress
{
// Shorter in sanitized builds.
double seconds (double atFullSpeed);

// juce::Synthesiser (JUCE 8) empties its voice-stealing array with Array::clear(), which frees the
// storage, so every steal calls malloc on the audio thread; the C allocator is held to zero only
// where no voice can be stolen. operator new is held to zero everywhere.
enum class Stealing { impossible, possible };

// Prints the case's line (the run's log lists every peak) and checks it: finite, bounded, no
// allocation, no more than the expected locks.
void expectHealthy (const juce::String& name, const StressStats& stats, Stealing stealing = Stealing::possible);

// A chord that changes every `period` samples: note-offs for the old notes and note-ons for new
// ones, inside the block that reaches the change.
class ChordPlayer
{
public:
    ChordPlayer (juce::Random& r, juce::int64 periodSamples, int notesPerChord)
        : random (r), period (juce::jmax ((juce::int64) 1, periodSamples)), count (notesPerChord) {}

    void addEvents (juce::MidiBuffer& midi, juce::int64 blockStart, int n)
    {
        for (juce::int64 s = ((blockStart + period - 1) / period) * period; s < blockStart + n; s += period)
        {
            const int offset = (int) (s - blockStart);
            for (int note : held)
                midi.addEvent (juce::MidiMessage::noteOff (1, note), offset);
            held.clearQuick();
            for (int i = 0; i < count; ++i)
                held.add (24 + random.nextInt (84));
            for (int note : held)
                midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) (1 + random.nextInt (127))), offset);
        }
    }

private:
    juce::Random& random;
    juce::int64 period;
    int count;
    juce::Array<int> held;
};
} // namespace stress
