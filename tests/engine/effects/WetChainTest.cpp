// SPDX-License-Identifier: AGPL-3.0-or-later
// The wet chain: the tilt equaliser's response against a band-pass of two first-order corners, and
// inside the real processor tempo from the play head, every control audible, the tilt-only path with
// every module off, and hosts that break their promises.
#include <gtest/gtest.h>

#include "effects/TiltEqualiser.h"
#include "engine/support/Listen.h"
#include "engine/support/TestProcessor.h"

namespace
{
struct TempoPlayHead : juce::AudioPlayHead
{
    juce::Optional<PositionInfo> getPosition() const override
    {
        PositionInfo info;
        info.setBpm (bpm);
        return hasPosition ? juce::Optional<PositionInfo> (info) : juce::nullopt;
    }

    bool hasPosition = true;
    juce::Optional<double> bpm;
};
} // namespace

TEST (WetChain, DelayLengthFollowsTimeSyncAndTheHostTempo)
{
    TestProcessor t (48000.0, 256);
    auto& p = *t.processor;
    TempoPlayHead playHead;
    p.setPlayHead (&playHead);

    struct Step { float time, sync; bool hasPosition; juce::Optional<double> bpm; int expected; };
    const Step steps[] = {
        { 40, 1, true, 120.0, 6000 },             // "1/16" at 120 BPM: an eighth of a second
        { 2000, 1, true, 90.0, 32000 },           // "1/4" at 90 BPM
        { 2000, 1, true, juce::nullopt, 32000 },   // a position without tempo keeps the last one
        { 2000, 1, false, juce::nullopt, 24000 },  // no position at all falls back to 120
        { 1000, 1, true, 120.0, 9000 },           // "1/16D"
        { 40, 1, true, 999.0, 721 },              // absurdly fast host
        { 2980, 1, true, 60.0, 262143 },          // "8/4" at 60 BPM is eight seconds: held at the plane size
        { 2980, 1, true, 0.0, 262143 },           // a host reporting 0 BPM
        { 2980, 1, true, -5.0, 4 },               // or a negative tempo
        { 2980, 0, true, 120.0, 143040 },         // unsynced: plain milliseconds
    };
    for (const auto& s : steps)
    {
        t.set ({ { "time", s.time }, { "sync", s.sync } });
        playHead.hasPosition = s.hasPosition;
        playHead.bpm = s.bpm;
        t.render (1);
        EXPECT_EQ (p.blockDelay.getBlockLength(), s.expected) << s.time << " ms, sync " << s.sync << ", " << (s.bpm ? *s.bpm : -1.0) << " BPM";
    }
    p.setPlayHead (nullptr);
}

TEST (WetChain, EveryWetChainControlChangesTheSound)
{
    const std::initializer_list<std::pair<const char*, float>> base = {
        { "bp1", 0.0f }, { "bp2", 1.0f }, { "bp3", 1.0f }, { "pre", 1.0f }, { "time", 100.0f }, { "sync", 0.0f },
        { "fmit", 0.0f }, { "squeezeit", 0.0f }, { "fdbk", 0.5f }, { "envms", 5.0f }, { "revmix", 0.8f }, { "rev", 1.0f },
        { "rate", 1.0f }, { "flangerit", 0.5f }, { "tilt", 0.0f }, { "drywet", 0.8f }, { "reverb", 0.0f },
    };
    auto render = [&] (const char* changedId, float changedValue)
    {
        TestProcessor t;
        t.set (base);
        if (changedId != nullptr)
            t.set ({ { changedId, changedValue } });
        return t.render (60, TestProcessor::noteOn (57)); // a little over three delay blocks
    };
    const auto reference = render (nullptr, 0.0f);
    ASSERT_GT (listen::energy (reference), 0.0);

    const std::pair<const char*, float> changes[] = {
        { "time", 60.0f }, { "sync", 1.0f }, { "fmit", 300.0f }, { "squeezeit", 500.0f }, { "squeezeit", -500.0f },
        { "fdbk", 0.95f }, { "envms", 120.0f }, { "revmix", 0.2f }, { "rev", 0.0f }, { "bp2", 0.0f }, { "rate", 8.0f },
        { "flangerit", -0.5f }, { "bp3", 0.0f }, { "pre", 0.0f }, { "tilt", -1.0f }, { "tilt", 0.6f }, { "drywet", 0.3f },
    };
    for (const auto& [id, value] : changes)
    {
        const auto changed = render (id, value);
        double difference = 0.0;
        for (size_t i = 0; i < reference.size(); ++i)
            difference += std::pow ((double) changed[i] - reference[i], 2.0);
        EXPECT_GT (difference, 1e-4 * listen::energy (reference)) << id << " = " << value;
    }
}

TEST (WetChain, WithEveryModuleOffTheWetPathIsTheTiltOnly)
{
    // dry/wet 0 gives the dry signal D; dry/wet 1 gives tilt(D). Everything after the mix is linear and
    // time-invariant with the reverb at 0, so the tilt may be applied to the first render afterwards.
    for (const float tiltValue : { -1.0f, 0.0f, 0.7f })
    {
        SCOPED_TRACE (tiltValue);
        std::vector<float> rendered[2];
        for (int wet = 0; wet < 2; ++wet)
        {
            TestProcessor t;
            t.set ({ { "bp1", 0 }, { "bp2", 0 }, { "bp3", 0 }, { "reverb", 0 }, { "flangerit", 0 }, { "tilt", tiltValue }, { "drywet", (float) wet } });
            rendered[wet] = t.render (40, TestProcessor::noteOn (57));
        }
        TiltEqualiser reference;
        reference.setupBlock (tiltValue, 48000.0);
        double error = 0.0;
        for (size_t i = 0; i < rendered[0].size(); ++i)
            error += std::pow ((double) reference.processSample (0, rendered[0][i]) - rendered[1][i], 2.0);
        ASSERT_GT (listen::energy (rendered[1]), 0.0);
        EXPECT_LT (error, 1e-8 * listen::energy (rendered[1]));
    }
}

TEST (WetChain, LongestDelayReplaysUnderBlocksLongerThanPrepared)
{
    // A host that passes longer blocks than it prepared for, at a tempo that holds the delay at its
    // longest: the output stays finite until the longest block has been recorded and replayed.
    TestProcessor t (48000.0, 64);
    auto& p = *t.processor;
    TempoPlayHead playHead;
    playHead.bpm = 1.0;
    p.setPlayHead (&playHead);
    t.set ({ { "bp2", 1.0f }, { "bp3", 1.0f }, { "pre", 1.0f }, { "sync", 1.0f }, { "time", 2980.0f }, { "fmit", 1400.0f },
            { "squeezeit", 1000.0f }, { "fdbk", 0.98f }, { "rate", 10.0f }, { "flangerit", -1.0f }, { "tilt", 1.0f },
            { "drywet", 1.0f } });
    const auto out = t.render ((2 * BlockDelay::maxBlockLength + 4096) / 1000 + 1, TestProcessor::noteOn (57), 1000);
    EXPECT_TRUE (listen::allFinite (out));
    EXPECT_EQ (p.blockDelay.getBlockLength(), BlockDelay::maxBlockLength);
    EXPECT_GT (listen::energy (out, 2 * BlockDelay::maxBlockLength - 48000, 2 * BlockDelay::maxBlockLength), 0.0);
    p.setPlayHead (nullptr);
}

TEST (TiltEqualiser, ResponseFollowsItsCornersFromLowsToHighs)
{
    // Neutral passes 20 Hz to 10 kHz; -1 pulls the top corner down to 400 Hz, +1 lifts the bottom
    // one to 420 Hz. Near the top corner the sampled filters fall short of the analogue shape.
    struct Case { float tilt; double lowCornerHz, highCornerHz; };
    for (const auto& c : { Case { -1.0f, 20.0, 400.0 }, Case { 0.0f, 20.0, 10000.0 }, Case { 1.0f, 420.0, 10000.0 } })
    {
        for (const double hz : { 20.0, 100.0, 1000.0, 5000.0, 10000.0 })
        {
            TiltEqualiser tilt;
            tilt.setupBlock (c.tilt, 48000.0);
            std::vector<float> x (96000), y (x.size());
            for (size_t i = 0; i < x.size(); ++i)
            {
                x[i] = (float) std::sin (2.0 * M_PI * hz * (double) i / 48000.0);
                y[i] = tilt.processSample (1, x[i]);
            }
            const double measuredDb = 10.0 * std::log10 (listen::energy (y, 48000) / listen::energy (x, 48000));
            const double low = hz / c.lowCornerHz, high = hz / c.highCornerHz;
            const double modelDb = 10.0 * std::log10 (low * low / (1.0 + low * low) / (1.0 + high * high));
            EXPECT_NEAR (measuredDb, modelDb, hz >= 5000.0 ? 1.0 : 0.3) << "tilt " << c.tilt << " at " << hz << " Hz";
        }
    }
}
