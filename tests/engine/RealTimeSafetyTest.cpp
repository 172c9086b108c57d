// SPDX-License-Identifier: AGPL-3.0-or-later
// The audio thread must not allocate: every processBlock after prepareToPlay is counted, from the
// first one on, at the block sizes hosts really use.
#include <gtest/gtest.h>

#include "support/AllocationCounter.h"
#include "support/TestProcessor.h"

namespace
{
const int chord[] = { 48, 52, 55, 59, 62, 65, 69, 72 };

struct Case
{
    const char* name;
    bool playChord;
    bool moveModWheel;
};

// Renders about a quarter of a second and returns the allocations made inside processBlock.
std::size_t allocationsWhileRendering (int blockSize, const Case& c)
{
    TestProcessor test (48000.0, blockSize);
    juce::AudioBuffer<float> buffer (2, blockSize);
    juce::MidiBuffer midi;
    midi.ensureSize (4096);

    std::size_t total = 0;
    const int blocks = juce::jmax (4, 12000 / blockSize);
    for (int b = 0; b < blocks; ++b)
    {
        midi.clear();
        if (b == 0 && c.playChord)
            for (int note : chord)
                midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
        if (c.moveModWheel)
            midi.addEvent (juce::MidiMessage::controllerEvent (1, 1, (b * 7) % 128), 0);
        buffer.clear();

        ScopedAllocationCount count;
        test.processor->processBlock (buffer, midi);
        total += count.getCount();
    }
    return total;
}
} // namespace

TEST (RealTimeSafety, ProcessBlockNeverAllocatesAfterPrepare)
{
    const Case cases[] = { { "idle", false, false }, { "8-note chord", true, false }, { "chord and mod wheel", true, true } };
    const int blockSizes[] = { 1, 7, 64, 256, 4096 };

    for (const auto& c : cases)
        for (int blockSize : blockSizes)
            EXPECT_EQ (allocationsWhileRendering (blockSize, c), 0u) << c.name << " at block size " << blockSize;
}

TEST (RealTimeSafety, CounterSeesAllocationsOfThisThread)
{
    // Guards the guard: a counter that never counts would pass every test above.
    ScopedAllocationCount count;
    int* volatile p = new int (3);
    delete p;
    EXPECT_EQ (count.getCount(), 1u);
}
