// SPDX-License-Identifier: AGPL-3.0-or-later
// Block delay driven directly: timing of the repeats, reverse play, feedback decay and recording while
// silenced.
#include <gtest/gtest.h>

#include <memory>

#include "effects/BlockDelay.h"
#include "engine/support/Listen.h"

namespace
{
// Drives a block delay and its tilt filter the way the processor's wet pass does, at 48 kHz.
struct DelayRig
{
    // Neutral settings: a 10 ms block (480 samples), no modulation, full wet mix.
    static BlockDelay::Settings neutral() { return { 10.0f, 0.0f, 0.0f, 0.0f, 0.0f, 2.0f, 1.0f, 0.0f, 120.0, 48000.0f }; }

    DelayRig() { delay->reset (48000.0); }

    // Runs the same signal on both channels in host blocks of blockSize and returns the left output.
    std::vector<float> runMono (std::vector<float> x, const BlockDelay::Settings& s, int blockSize, bool delayOn = true)
    {
        juce::AudioBuffer<float> buffer (2, blockSize);
        for (int start = 0; start < (int) x.size(); start += blockSize)
        {
            const int n = std::min (blockSize, (int) x.size() - start);
            delay->setupBlock (s);
            tilt.setupBlock (0.0f, 48000.0);
            for (int ch = 0; ch < 2; ++ch)
                buffer.copyFrom (ch, 0, x.data() + start, n);
            delay->process (buffer, n, delayOn, s.revmix, tilt);
            std::copy (buffer.getReadPointer (0), buffer.getReadPointer (0) + n, x.begin() + start);
        }
        return x;
    }

    std::unique_ptr<BlockDelay> delay = std::make_unique<BlockDelay>(); // 4 MB: never on the stack
    TiltEqualiser tilt;
};
} // namespace

TEST (BlockDelay, ImpulseReturnsOneBlockLaterForwardsAndMirroredInReverse)
{
    struct Case { float timeMs; float rev; int impulseAt; int hostBlock; int expectedAt; };
    // Forwards the copy plays one sample behind the write position; backwards the block runs from its
    // end, so sample k of a block of length L returns at 2L - 2 - k.
    const Case cases[] = {
        { 10.0f, 0.0f, 240, 256, 480 + 240 + 1 },
        { 25.0f, 0.0f, 600, 7, 1200 + 600 + 1 },
        { 10.0f, 1.0f, 100, 1, 480 + (480 - 2 - 100) },
        { 25.0f, 1.0f, 600, 4096, 1200 + (1200 - 2 - 600) },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << "time " << c.timeMs << " rev " << c.rev << " at " << c.impulseAt);
        DelayRig rig;
        auto s = DelayRig::neutral();
        s.time = c.timeMs;
        s.rev = c.rev;
        std::vector<float> x (4000, 0.0f);
        x[(size_t) c.impulseAt] = 1.0f;
        const auto y = rig.runMono (x, s, c.hostBlock);
        EXPECT_EQ (listen::indexOfPeak (y), c.expectedAt);
    }
}

TEST (BlockDelay, RepeatsAtMaximumFeedbackDecayAndNeverGrow)
{
    for (const float rev : { 0.0f, 1.0f })
    {
        SCOPED_TRACE (testing::Message() << "rev " << rev);
        DelayRig rig;
        auto s = DelayRig::neutral();
        s.fdbk = 0.98f;
        s.rev = rev;
        // A burst of noise in the first 480-sample block, then silence for 60 repeats.
        auto x = listen::whiteNoise (480, 1.0f, 7);
        x.resize (480 * 62, 0.0f);
        const auto y = rig.runMono (x, s, 256);

        std::vector<double> repeats;
        for (size_t b = 1; b < 62; ++b)
            repeats.push_back (listen::energy (y, b * 480, (b + 1) * 480));
        ASSERT_GT (repeats.front(), 1.0);
        for (size_t b = 1; b < repeats.size(); ++b)
            EXPECT_LE (repeats[b], repeats[b - 1] * 1.0001) << "repeat " << b;
        EXPECT_LT (repeats.back(), repeats.front() * 1e-4);
    }
}

TEST (BlockDelay, SilencedDelayStillRecordsAndPlaysOnceHeardAgain)
{
    // Switched off, or at wet mix 0, the wet signal is only tilted, bit for bit, while the block is
    // recorded all the same: the next block brings the repeat.
    struct Case { const char* name; bool delayOn; float revmix; };
    for (const auto& c : { Case { "switched off", false, 1.0f }, Case { "wet mix 0", true, 0.0f } })
    {
        SCOPED_TRACE (c.name);
        DelayRig rig, tiltOnly;
        auto s = DelayRig::neutral();
        s.revmix = c.revmix;
        auto x = listen::whiteNoise (960, 0.1f, 3);
        x[240] = 1.0f;       // would play in the second block
        x[480 + 100] = 1.0f; // recorded in the second block
        EXPECT_EQ (rig.runMono (x, s, 128, c.delayOn), tiltOnly.runMono (x, s, 128, false));

        s.revmix = 1.0f;
        const auto heard = rig.runMono (std::vector<float> (480, 0.0f), s, 128, true);
        EXPECT_EQ (listen::indexOfPeak (heard), 101);
        EXPECT_GT (std::abs (heard[101]), 0.5f);
    }
}

TEST (BlockDelay, ReverseSwitchedOnMidBlockKeepsRingModulationFinite)
{
    // Turning reverse on part-way through a block walks the read position below zero; the ring
    // modulator reads that position under a square root.
    for (const float squeeze : { 1000.0f, 3.0f })
    {
        SCOPED_TRACE (squeeze);
        DelayRig rig;
        auto s = DelayRig::neutral();
        s.time = 100.0f; // 4800 samples
        s.squeezeit = squeeze;
        s.fdbk = 0.5f;
        const auto x = listen::whiteNoise (4800 * 4, 1.0f, 11);
        rig.runMono ({ x.begin(), x.begin() + 512 }, s, 256);
        s.rev = 1.0f;
        const auto y = rig.runMono ({ x.begin() + 512, x.end() }, s, 256);
        EXPECT_TRUE (listen::allFinite (y));
        EXPECT_GT (listen::energy (y), 1.0);
    }
}
