// SPDX-License-Identifier: AGPL-3.0-or-later
// Block delay driven directly: timing of the repeats, reverse play, feedback decay, sync lengths, bypass
// behaviour and safety at the extremes of every setting.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "DelayRig.h"

TEST (BlockDelay, ImpulseReturnsOneBlockLaterForwardsAndMirroredInReverse)
{
    struct Case { float timeMs; float rev; int impulseAt; int hostBlock; int expectedAt; };
    // A 480-sample block (10 ms at 48 kHz). Forwards the copy plays one sample behind the write position;
    // backwards the block runs from its end, so sample k returns at 2L - 2 - k.
    const Case cases[] = {
        { 10.0f, 0.0f, 240, 256, 480 + 240 + 1 },
        { 10.0f, 0.0f, 100, 7, 480 + 100 + 1 },
        { 25.0f, 0.0f, 600, 4096, 1200 + 600 + 1 },
        { 10.0f, 1.0f, 240, 256, 480 + (480 - 2 - 240) },
        { 10.0f, 1.0f, 100, 1, 480 + (480 - 2 - 100) },
        { 25.0f, 1.0f, 600, 512, 1200 + (1200 - 2 - 600) },
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
        EXPECT_EQ (indexOfPeak (y), c.expectedAt);
        // Mid-block the window and the envelope are 1, so the peak is 1.1 times the tilt's first tap.
        if (c.impulseAt * 2 == (int) (c.timeMs * 48.0f))
        {
            EXPECT_NEAR (std::abs (y[(size_t) c.expectedAt]), 1.1 * (1.0 - std::exp (-2.0 * M_PI * 10000.0 / 48000.0)), 1e-3);
        }
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
        const int blockLength = 480;
        // A burst of noise in the first block, then silence for 60 repeats.
        auto x = whiteNoise (blockLength, 7);
        x.resize ((size_t) blockLength * 62, 0.0f);
        const auto y = rig.runMono (x, s, 256);

        std::vector<double> energy;
        for (int b = 1; b < 62; ++b)
        {
            double sum = 0.0;
            for (int i = 0; i < blockLength; ++i)
                sum += (double) y[(size_t) (b * blockLength + i)] * y[(size_t) (b * blockLength + i)];
            energy.push_back (sum);
        }
        ASSERT_GT (energy.front(), 1.0);
        for (size_t b = 1; b < energy.size(); ++b)
            EXPECT_LE (energy[b], energy[b - 1] * 1.0001) << "repeat " << b;
        EXPECT_LT (energy.back(), energy.front() * 1e-4);
    }
}

TEST (BlockDelay, SyncedLengthIsAFractionOfABarAtTheHostTempo)
{
    struct Case { double sampleRate; float time; float sync; double bpm; int expected; };
    const Case cases[] = {
        { 48000.0, 40.0f, 1.0f, 120.0, 6000 },       // "1/16" at 120 BPM: an eighth of a second
        { 48000.0, 2000.0f, 1.0f, 120.0, 24000 },    // "1/4"
        { 48000.0, 2000.0f, 1.0f, 90.0, 32000 },     // "1/4" at a slower tempo
        { 44100.0, 1000.0f, 1.0f, 120.0, 8269 },     // position 2, "1/16D": 0.09375 * 2 s * 44100
        { 48000.0, 40.0f, 1.0f, 999.0, 721 },        // absurdly fast host
        { 48000.0, 40.0f, 1.0f, 1.0, 262143 },       // absurdly slow host: held at the plane size
        { 48000.0, 2980.0f, 1.0f, 60.0, 262143 },    // "8/4" at 60 BPM is eight seconds
        { 48000.0, 2980.0f, 1.0f, 0.0, 262143 },     // a host reporting 0 BPM
        { 48000.0, 2980.0f, 1.0f, -5.0, 4 },         // or a negative tempo
        { 48000.0, 2980.0f, 0.0f, 120.0, 143040 },   // unsynced: plain milliseconds
        { 192000.0, 2980.0f, 0.0f, 120.0, 262143 },
        { 22050.0, 40.0f, 0.0f, 120.0, 882 },
        { 48000.0, 40.0f, 0.5f, 120.0, 1920 },       // sync counts as on only above 0.5
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << c.sampleRate << " Hz, time " << c.time << ", sync " << c.sync << ", " << c.bpm << " BPM");
        auto delay = std::make_unique<BlockDelay>();
        delay->reset (c.sampleRate);
        auto s = DelayRig::neutral (c.sampleRate);
        s.time = c.time;
        s.sync = c.sync;
        s.hostBpm = c.bpm;
        delay->setupBlock (s);
        EXPECT_EQ (delay->getBlockLength(), c.expected);
    }
}

TEST (BlockDelay, SwitchedOffStillRecordsSoSwitchingOnPlaysAtOnce)
{
    DelayRig rig;
    DelayRig tiltOnly;
    auto s = DelayRig::neutral();
    auto x = whiteNoise (480, 3);
    for (auto& v : x)
        v *= 0.1f;
    x[240] = 1.0f;

    // Off: the wet signal is only tilted, bit for bit, and the block is recorded all the same.
    auto offOut = rig.runMono (x, s, 480, false);
    juce::AudioBuffer<float> reference (2, 480);
    reference.copyFrom (0, 0, x.data(), 480);
    reference.copyFrom (1, 0, x.data(), 480);
    tiltOnly.tilt.setupBlock (0.0f, 48000.0);
    for (int i = 0; i < 480; ++i)
        EXPECT_EQ (offOut[(size_t) i], tiltOnly.tilt.processSample (0, x[(size_t) i])) << i;

    auto onOut = rig.runMono (std::vector<float> (480, 0.0f), s, 480, true);
    EXPECT_EQ (indexOfPeak (onOut), 241);
    EXPECT_GT (std::abs (onOut[241]), 0.5f);
}

TEST (BlockDelay, WetMixZeroSilencesTheRepeatsButKeepsRecording)
{
    DelayRig rig;
    DelayRig tiltOnly;
    auto s = DelayRig::neutral();
    s.revmix = 0.0f;
    std::vector<float> x (960, 0.0f);
    x[240] = 1.0f;       // frozen at the end of the first block
    x[480 + 100] = 1.0f; // recorded in the second block while the first one would play
    const auto dry = rig.runMono (x, s, 128);
    const auto reference = tiltOnly.runMono (x, s, 128, false);
    for (size_t i = 0; i < x.size(); ++i)
        EXPECT_EQ (dry[i], reference[i]) << i;

    s.revmix = 1.0f;
    const auto audible = rig.runMono (std::vector<float> (480, 0.0f), s, 128);
    EXPECT_EQ (indexOfPeak (audible), 101);
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
        auto x = whiteNoise (4800 * 4, 11);
        auto head = std::vector<float> (x.begin(), x.begin() + 512);
        rig.runMono (head, s, 256);
        s.rev = 1.0f;
        auto tail = std::vector<float> (x.begin() + 512, x.end());
        const auto y = rig.runMono (tail, s, 256);
        double energy = 0.0;
        for (float v : y)
        {
            ASSERT_TRUE (std::isfinite (v));
            energy += (double) v * v;
        }
        EXPECT_GT (energy, 1.0);
    }
}

TEST (BlockDelay, ExtremeSettingsKeepOutputFiniteAndBounded)
{
    struct Case { double sampleRate; float time; float sync; double bpm; float fmit; float squeezeit; float envms; float rev; int hostBlock; };
    const Case cases[] = {
        { 22050.0, 40.0f, 0.0f, 120.0, 1400.0f, 1000.0f, 160.0f, 1.0f, 1 },      // block shorter than the ramps
        { 22050.0, 40.0f, 1.0f, 999.0, 1400.0f, -1000.0f, 160.0f, 0.0f, 7 },
        { 192000.0, 40.0f, 0.0f, 120.0, 1400.0f, 1000.0f, 2.0f, 1.0f, 8192 },
        { 192000.0, 2980.0f, 0.0f, 120.0, 1400.0f, -1000.0f, 160.0f, 1.0f, 8192 }, // held at the plane size
        { 48000.0, 2980.0f, 1.0f, 1.0, 700.0f, 1.0f, 2.0f, 0.0f, 4096 },
        { 44100.0, 2980.0f, 1.0f, 999.0, 1.0f, -1.0f, 2.0f, 1.0f, 8192 },
        { 96000.0, 1500.0f, 1.0f, 33.3, 1400.0f, 500.0f, 80.0f, 1.0f, 333 },
        { 48000.0, 40.0f, 1.0f, 0.0, 1400.0f, 1000.0f, 2.0f, 1.0f, 64 },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << c.sampleRate << " Hz time " << c.time << " sync " << c.sync << " bpm " << c.bpm
                                         << " fmit " << c.fmit << " squeeze " << c.squeezeit << " block " << c.hostBlock);
        DelayRig rig (c.sampleRate, -1.0f);
        auto s = DelayRig::neutral (c.sampleRate);
        s.time = c.time;
        s.sync = c.sync;
        s.hostBpm = c.bpm;
        s.fmit = c.fmit;
        s.squeezeit = c.squeezeit;
        s.envms = c.envms;
        s.rev = c.rev;
        s.fdbk = 0.98f;

        // Long enough for two completed blocks at the longest length.
        auto x = whiteNoise (2 * BlockDelay::maxBlockLength + 1000, 5);
        auto right = whiteNoise ((int) x.size(), 6);
        rig.run (x, right, s, c.hostBlock);
        float peak = 0.0f;
        for (size_t i = 0; i < x.size(); ++i)
        {
            ASSERT_TRUE (std::isfinite (x[i]) && std::isfinite (right[i])) << "sample " << i;
            peak = std::max ({ peak, std::abs (x[i]), std::abs (right[i]) });
        }
        EXPECT_LT (peak, 20.0f);
    }
}
