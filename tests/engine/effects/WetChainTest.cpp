// SPDX-License-Identifier: AGPL-3.0-or-later
// The wet chain inside the real processor: tempo from the play head, flanger placement, the tilt-only
// path with every module off, state loads, and absurd host conditions.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "engine/support/TestProcessor.h"

namespace
{
struct TempoPlayHead : juce::AudioPlayHead
{
    juce::Optional<PositionInfo> getPosition() const override
    {
        if (! hasPosition)
            return {};
        PositionInfo info;
        if (bpm)
            info.setBpm (*bpm);
        return info;
    }

    bool hasPosition = true;
    std::optional<double> bpm;
};

void setParameter (KestruneAudioProcessor& p, const char* id, float value)
{
    auto* parameter = p.parameters.getParameter (id);
    ASSERT_NE (parameter, nullptr) << id;
    parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
}

// Plays one note from the first block on (unless told not to) and returns the left and right output.
std::pair<std::vector<float>, std::vector<float>> renderNote (KestruneAudioProcessor& p, int blocks, int blockSize,
                                                              bool startNote = true)
{
    std::vector<float> left, right;
    juce::AudioBuffer<float> buffer (2, blockSize);
    for (int b = 0; b < blocks; ++b)
    {
        juce::MidiBuffer midi;
        if (b == 0 && startNote)
            midi.addEvent (juce::MidiMessage::noteOn (1, 57, (juce::uint8) 100), 0);
        buffer.clear();
        p.processBlock (buffer, midi);
        left.insert (left.end(), buffer.getReadPointer (0), buffer.getReadPointer (0) + blockSize);
        right.insert (right.end(), buffer.getReadPointer (1), buffer.getReadPointer (1) + blockSize);
    }
    return { left, right };
}

double energy (const std::vector<float>& x)
{
    double sum = 0.0;
    for (float v : x)
        sum += (double) v * v;
    return sum;
}

void plainWetChain (KestruneAudioProcessor& p)
{
    for (const auto* id : { "bp1", "bp2", "bp3", "reverb", "flangerit" })
        setParameter (p, id, 0.0f);
}
} // namespace

TEST (WetChain, SyncedDelayFollowsTheHostTempo)
{
    TestProcessor t (48000.0, 256);
    auto& p = *t.processor;
    TempoPlayHead playHead;
    p.setPlayHead (&playHead);
    setParameter (p, "sync", 1.0f);
    setParameter (p, "time", 2000.0f); // "1/4"

    struct Step { bool hasPosition; std::optional<double> bpm; int expected; };
    const Step steps[] = {
        { true, 120.0, 24000 },
        { true, 90.0, 32000 },
        { true, std::nullopt, 32000 },  // a position without tempo keeps the last one
        { false, std::nullopt, 24000 }, // no position at all falls back to 120
        { true, 999.0, 2883 },
        { true, 1.0, 262143 },
    };
    juce::AudioBuffer<float> buffer (2, 256);
    for (const auto& s : steps)
    {
        playHead.hasPosition = s.hasPosition;
        playHead.bpm = s.bpm;
        juce::MidiBuffer midi;
        p.processBlock (buffer, midi);
        EXPECT_EQ (p.blockDelay.getBlockLength(), s.expected) << (s.bpm ? *s.bpm : -1.0);
    }
    p.setPlayHead (nullptr);
}

TEST (WetChain, EveryWetChainControlChangesTheSound)
{
    const std::pair<const char*, float> base[] = {
        { "bp1", 0.0f }, { "bp2", 1.0f }, { "bp3", 1.0f }, { "pre", 1.0f }, { "time", 100.0f }, { "sync", 0.0f },
        { "fmit", 0.0f }, { "squeezeit", 0.0f }, { "fdbk", 0.5f }, { "envms", 5.0f }, { "revmix", 0.8f }, { "rev", 1.0f },
        { "rate", 1.0f }, { "flangerit", 0.5f }, { "tilt", 0.0f }, { "drywet", 0.8f }, { "reverb", 0.0f },
    };
    auto render = [&] (const char* changedId, float changedValue)
    {
        TestProcessor t;
        for (const auto& [id, value] : base)
            setParameter (*t.processor, id, value);
        if (changedId != nullptr)
            setParameter (*t.processor, changedId, changedValue);
        return renderNote (*t.processor, 60, 256).first; // a little over three delay blocks
    };
    const auto reference = render (nullptr, 0.0f);
    ASSERT_GT (energy (reference), 0.0);

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
        {
            ASSERT_TRUE (std::isfinite (changed[i]));
            difference += std::pow ((double) changed[i] - reference[i], 2.0);
        }
        EXPECT_GT (difference, 1e-4 * energy (reference)) << id << " = " << value;
    }
}

TEST (WetChain, ReleaseResourcesSilencesTheDelayUntilItsNextBlock)
{
    TestProcessor t (48000.0, 256);
    auto& p = *t.processor;
    plainWetChain (p);
    setParameter (p, "bp2", 1.0f);
    setParameter (p, "revmix", 1.0f); // the wet path carries the repeats only
    setParameter (p, "drywet", 1.0f);
    setParameter (p, "fdbk", 0.0f);
    setParameter (p, "rev", 0.0f);
    setParameter (p, "time", 100.0f); // 4800 samples

    const auto before = renderNote (p, 40, 256).first; // two blocks and 640 samples of a third
    const auto lastBefore = std::vector<float> (before.end() - 256, before.end());
    ASSERT_GT (energy (lastBefore), 0.0);

    p.releaseResources();
    EXPECT_EQ (p.blockDelay.getBlockLength(), 4800);
    // The block in progress keeps recording; its frozen predecessor is gone.
    const auto after = renderNote (p, 20, 256, false).first;
    // Past the tails of the tilt and DC filters, up to the end of that block at 14400.
    const auto gap = std::vector<float> (after.begin() + 2048, after.begin() + (14400 - 10240));
    const auto next = std::vector<float> (after.begin() + (14400 - 10240) + 256, after.end());
    const double powerBefore = energy (lastBefore) / 256.0;
    EXPECT_LT (energy (gap) / (double) gap.size(), 1e-4 * powerBefore);
    EXPECT_GT (energy (next) / (double) next.size(), 0.1 * powerBefore);
}

TEST (WetChain, FlangerBeforeOrAfterTheDelaySoundsDifferent)
{
    std::vector<float> out[2];
    for (int pre = 0; pre < 2; ++pre)
    {
        TestProcessor t;
        auto& p = *t.processor;
        plainWetChain (p);
        setParameter (p, "bp2", 1.0f);
        setParameter (p, "bp3", 1.0f);
        setParameter (p, "pre", (float) pre);
        setParameter (p, "flangerit", 0.9f);
        setParameter (p, "rate", 3.0f);
        setParameter (p, "time", 50.0f);
        setParameter (p, "rev", 1.0f);
        setParameter (p, "drywet", 1.0f);
        out[pre] = renderNote (p, 80, 256).first;
        for (float v : out[pre])
            ASSERT_TRUE (std::isfinite (v));
    }
    std::vector<float> difference (out[0].size());
    for (size_t i = 0; i < difference.size(); ++i)
        difference[i] = out[0][i] - out[1][i];
    ASSERT_GT (energy (out[1]), 0.0);
    EXPECT_GT (energy (difference), 0.05 * energy (out[1]));
}

TEST (WetChain, WithEveryModuleOffTheWetPathIsTheTiltOnly)
{
    // dry/wet 0 gives the dry signal D; dry/wet 1 gives tilt(D). Everything after the mix is linear and
    // time-invariant with the reverb at 0, so the tilt may be applied to the first render afterwards.
    const float tilts[] = { -1.0f, 0.0f, 0.7f };
    for (const float tiltValue : tilts)
    {
        SCOPED_TRACE (tiltValue);
        std::vector<float> rendered[2];
        for (int wet = 0; wet < 2; ++wet)
        {
            TestProcessor t;
            auto& p = *t.processor;
            plainWetChain (p);
            setParameter (p, "tilt", tiltValue);
            setParameter (p, "drywet", (float) wet);
            rendered[wet] = renderNote (p, 40, 256).first;
        }
        TiltEqualiser reference;
        reference.setupBlock (tiltValue, 48000.0);
        double error = 0.0;
        for (size_t i = 0; i < rendered[0].size(); ++i)
        {
            const float expected = reference.processSample (0, rendered[0][i]);
            error += std::pow ((double) expected - rendered[1][i], 2.0);
        }
        ASSERT_GT (energy (rendered[1]), 0.0);
        EXPECT_LT (error, 1e-8 * energy (rendered[1]));
    }
}

TEST (WetChain, AbsurdHostConditionsKeepTheOutputFinite)
{
    // The last case is a host that passes longer blocks than it prepared for.
    struct Case { double sampleRate; int preparedBlock; int blockSize; double bpm; };
    const Case cases[] = { { 22050.0, 1, 1, 999.0 }, { 192000.0, 8192, 8192, 1.0 }, { 44100.0, 7, 7, 1.0 },
                           { 96000.0, 4096, 4096, 999.0 }, { 48000.0, 64, 1000, 120.0 } };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << c.sampleRate << " Hz, block " << c.blockSize << ", " << c.bpm << " BPM");
        TestProcessor t (c.sampleRate, c.preparedBlock);
        auto& p = *t.processor;
        TempoPlayHead playHead;
        playHead.bpm = c.bpm;
        p.setPlayHead (&playHead);
        for (const auto& [id, value] : std::initializer_list<std::pair<const char*, float>> {
                 { "bp2", 1.0f }, { "bp3", 1.0f }, { "pre", 1.0f }, { "sync", 1.0f }, { "time", 2980.0f }, { "fmit", 1400.0f },
                 { "squeezeit", 1000.0f }, { "fdbk", 0.98f }, { "rate", 10.0f }, { "flangerit", -1.0f }, { "tilt", 1.0f },
                 { "drywet", 1.0f } })
            setParameter (p, id, value);
        // Long enough to complete and replay the longest block the planes hold.
        const int blocks = (2 * BlockDelay::maxBlockLength + 4096) / c.blockSize + 1;
        const auto out = renderNote (p, blocks, c.blockSize);
        for (size_t i = 0; i < out.first.size(); ++i)
            ASSERT_TRUE (std::isfinite (out.first[i]) && std::isfinite (out.second[i])) << i;
        p.setPlayHead (nullptr);
    }
}
