// SPDX-License-Identifier: AGPL-3.0-or-later
// What every stress case must show, and the note patterns several cases share.
#pragma once

#include <gtest/gtest.h>

#include "engine/stress/StressRig.h"

namespace stress
{
// There is no limiter in the chain, so loud settings may exceed full scale; this bound only catches
// output that grows without limit (a feedback loop gone unstable).
constexpr float peakBound = 64.0f;

// Mutexes a block may lock: the synthesiser's voice lock and its voice-stealing lock, and the
// keyboard state's lock; with a mod-wheel message also the listener locks of the parameter
// notification it sends.
constexpr std::size_t allowedMutexes = 3;
constexpr std::size_t allowedMutexesWithModWheel = 5;

// Whether more notes may sound at once than there are voices. juce::Synthesiser (JUCE 8) empties
// its voice-stealing array with Array::clear(), which frees the storage, so every steal calls
// malloc on the audio thread; until that is dealt with, the C allocator is only held to zero in
// cases that cannot steal. operator new is held to zero everywhere.
enum class Stealing
{
    impossible,
    possible
};

inline void expectHealthy (const juce::String& name, const StressStats& stats, Stealing stealing = Stealing::possible)
{
    reportCase (name, stats);
    EXPECT_EQ (stats.nonFinite, 0) << name;
    EXPECT_LT (stats.peak, peakBound) << name;
    EXPECT_EQ (stats.allocations, 0u) << name;
    if (stealing == Stealing::impossible)
        EXPECT_EQ (stats.cAllocations, 0u) << name;
    EXPECT_LE (stats.mostMutexes, allowedMutexes) << name;
    EXPECT_LE (stats.mostMutexesWithModWheel, allowedMutexesWithModWheel) << name;
}

// A chord that changes every `period` samples: note-offs for the old notes, note-ons for new ones,
// all inside the block that reaches the change.
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
            {
                const int note = 24 + random.nextInt (84);
                held.add (note);
                midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) (1 + random.nextInt (127))), offset);
            }
        }
    }

private:
    juce::Random& random;
    juce::int64 period;
    int count;
    juce::Array<int> held;
};
} // namespace stress
