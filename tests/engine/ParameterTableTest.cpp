// SPDX-License-Identifier: AGPL-3.0-or-later
// The host-facing parameter list: ids in the order projects and automation rely on.
#include <gtest/gtest.h>

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
