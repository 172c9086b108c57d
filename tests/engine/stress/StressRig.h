// SPDX-License-Identifier: AGPL-3.0-or-later
// Drives the processor as a demanding host would and records what each block did on the calling
// thread: the output's peak and non-finite samples, heap allocations, mutexes locked, CPU time.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

struct StressStats
{
    std::int64_t blocks = 0;
    std::int64_t nonFinite = 0;
    std::size_t allocations = 0;  // operator new
    std::size_t cAllocations = 0; // malloc and its kin called directly (the framework's buffers and arrays)
    float peak = 0.0f;
    // Most distinct mutexes one processBlock locked, in blocks without and with a mod-wheel message.
    std::size_t mostMutexes = 0;
    std::size_t mostMutexesWithModWheel = 0;
    std::vector<double> blockNanoseconds; // thread CPU time of each block, when recordTimes is set
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
    bool recordTimes = false;

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

// There is no limiter in the chain, so loud settings may exceed full scale; this bound only catches
// output that grows without limit (a feedback loop gone unstable).
constexpr float peakBound = 64.0f;

// Mutexes a block may lock: the synthesiser's voice lock and its voice-stealing lock, and the
// keyboard state's lock; with a mod-wheel message also the listener locks of the parameter
// notification it sends.
constexpr std::size_t allowedMutexes = 3;
constexpr std::size_t allowedMutexesWithModWheel = 5;

// juce::Synthesiser (JUCE 8) empties its voice-stealing array with Array::clear(), which frees the
// storage, so every steal calls malloc on the audio thread; the C allocator is held to zero only
// where no voice can be stolen. operator new is held to zero everywhere.
enum class Stealing
{
    impossible,
    possible
};

// Prints the case's line (the run's log lists every peak) and checks it.
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
