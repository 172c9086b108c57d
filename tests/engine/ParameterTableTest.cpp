// SPDX-License-Identifier: AGPL-3.0-or-later
// The host-facing parameter list: ids, order, defaults and the texts a user reads in the host.
#include <gtest/gtest.h>

#include "core/KestruneAudioProcessor.h"
#include "support/TestProcessor.h"

namespace
{
juce::String textOf (KestruneAudioProcessor& p, const char* id, float value)
{
    auto* param = p.parameters.getParameter (id);
    return param->getText (param->convertTo0to1 (value), 1024);
}
} // namespace

TEST (ParameterTable, HasThirtyUniqueIdsInTableOrder)
{
    TestProcessor t;
    const auto& params = t.processor->getParameters();
    ASSERT_EQ (params.size(), 30);
    const char* expected[] = { "octave", "up", "bp1", "time", "sync", "fmit", "squeezeit", "fdbk", "envms", "revmix",
                               "rev", "bp2", "rate", "flangerit", "bp3", "pre", "tilt", "drywet", "pitch", "timbre",
                               "noise", "envmod", "ws", "attack", "decay", "sustain", "release", "vibrato", "volume",
                               "reverb" };
    std::set<juce::String> seen;
    for (int i = 0; i < 30; ++i)
    {
        auto* p = dynamic_cast<juce::AudioParameterFloat*> (params[i]);
        ASSERT_NE (p, nullptr);
        EXPECT_EQ (p->getParameterID(), juce::String (expected[i]));
        seen.insert (p->getParameterID());
        EXPECT_FLOAT_EQ (p->get(), (float) parameterTable[i].defaultValue) << expected[i];
    }
    EXPECT_EQ (seen.size(), 30u);
    int actives = 0;
    for (auto* p : params)
        actives += p->getName (64) == "active";
    EXPECT_EQ (actives, 3);
}

TEST (ParameterTable, TextsReadAsTheUserExpects)
{
    TestProcessor t;
    auto& p = *t.processor;
    EXPECT_EQ (textOf (p, "time", 1000.0f), "1000 ms");
    EXPECT_EQ (textOf (p, "fmit", 0.0f), "off");
    EXPECT_EQ (textOf (p, "fmit", 1400.0f), "1400 mult");
    EXPECT_EQ (textOf (p, "squeezeit", -1000.0f), "-1000 mult");
    EXPECT_EQ (textOf (p, "flangerit", 0.0f), "off");
    EXPECT_EQ (textOf (p, "flangerit", -0.5f), "-0.50");
    EXPECT_EQ (textOf (p, "reverb", 0.0f), "off");
    EXPECT_EQ (textOf (p, "reverb", 0.3f), "");
    EXPECT_EQ (textOf (p, "envms", 5.0f), "5 ms");
    EXPECT_EQ (textOf (p, "octave", 0.5f), "0.5000");
    EXPECT_EQ (textOf (p, "rate", 1.0f), "1.00");
    EXPECT_EQ (p.parameters.getParameter ("rate")->getLabel(), " Hz");
    EXPECT_EQ (textOf (p, "volume", 1.0f), "1.000");

    const char* pitchTexts[] = { "-24", "-19", "-16", "-12", "-7", "-5", "0", "+4", "+7", "+12", "+16", "+19", "+24" };
    for (int i = 0; i < 13; ++i)
        EXPECT_EQ (textOf (p, "pitch", (float) (-24 + 4 * i)), pitchTexts[i]);
}

TEST (ParameterTable, TimeTextFollowsSyncInStepsOf282)
{
    TestProcessor t;
    auto& p = *t.processor;
    p.parameters.getParameter ("sync")->setValueNotifyingHost (1.0f);
    EXPECT_EQ (textOf (p, "time", 1000.0f), "1/16D");
    struct Case { float time; const char* text; };
    const Case cases[] = { { 40, "1/16" }, { 441, "1/16" }, { 442, "1/8T" }, { 723, "1/8T" }, { 724, "1/16D" },
                           { 1005, "1/16D" }, { 1006, "1/8" }, { 1287, "1/8" }, { 2698, "4/4" }, { 2979, "4/4" },
                           { 2980, "8/4" } };
    for (const auto& c : cases)
        EXPECT_EQ (textOf (p, "time", c.time), c.text) << c.time;
}

TEST (ParameterTable, SyncFractionCoversEveryPosition)
{
    char text[16];
    EXPECT_DOUBLE_EQ (syncFractionFor (-1.0f, text), 0.0625);
    EXPECT_STREQ (text, "1/16");
    EXPECT_DOUBLE_EQ (syncFractionFor (10.0f, text), 2.0);
    EXPECT_STREQ (text, "8/4");
    EXPECT_DOUBLE_EQ (syncFractionFor (11.0f, text), 1.0);
    EXPECT_STREQ (text, " ");
    EXPECT_DOUBLE_EQ (syncFractionFor (-2.0f, text), 1.0);
    EXPECT_DOUBLE_EQ (syncFractionFor (std::numeric_limits<float>::quiet_NaN(), text), 1.0);
}
