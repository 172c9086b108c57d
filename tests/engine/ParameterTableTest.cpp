// SPDX-License-Identifier: AGPL-3.0-or-later
// The host-facing parameter list: ids in the order projects and automation rely on, and the bar
// fractions the delay time reads as once synced.
#include <gtest/gtest.h>

#include <limits>

#include "support/TestProcessor.h"

TEST (ParameterTable, HostSeesThirtyIdsInTheOrderProjectsRelyOn)
{
    TestProcessor t;
    juce::StringArray ids;
    for (auto* parameter : t.processor->getParameters())
        ids.add (dynamic_cast<juce::AudioProcessorParameterWithID&> (*parameter).paramID);
    EXPECT_EQ (ids.joinIntoString (" "), "octave up bp1 time sync fmit squeezeit fdbk envms revmix rev bp2 rate flangerit bp3 pre "
                                         "tilt drywet pitch timbre noise envmod ws attack decay sustain release vibrato volume reverb");
}

TEST (ParameterTable, SyncedTimeReadsAsABarFractionInStepsOf282)
{
    TestProcessor t;
    auto* time = t.processor->parameters.getParameter ("time");
    t.processor->parameters.getParameter ("sync")->setValueNotifyingHost (1.0f);
    // Each of the eleven fractions spans 282 ms of the range.
    for (const auto& [ms, text] : { std::pair { 40.0f, "1/16" }, { 441.0f, "1/16" }, { 442.0f, "1/8T" }, { 1006.0f, "1/8" }, { 2979.0f, "4/4" }, { 2980.0f, "8/4" } })
        EXPECT_EQ (time->getText (time->convertTo0to1 (ms), 1024), text) << ms;

    // Positions outside the eleven, NaN among them, read as blank and a whole bar.
    struct Position { float position; double fraction; const char* text; };
    const Position positions[] = { { -1.0f, 0.0625, "1/16" }, { 10.0f, 2.0, "8/4" }, { 11.0f, 1.0, " " }, { -2.0f, 1.0, " " },
                                   { std::numeric_limits<float>::quiet_NaN(), 1.0, " " }, { 1e30f, 1.0, " " } };
    for (const auto& p : positions)
    {
        char text[16];
        EXPECT_DOUBLE_EQ (syncFractionFor (p.position, text), p.fraction) << p.position;
        EXPECT_STREQ (text, p.text) << p.position;
    }
}
