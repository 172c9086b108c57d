// SPDX-License-Identifier: AGPL-3.0-or-later
// The waveshaping switch: what it does to the tone, how it fades, and that it adds nothing on silence.
#include <gtest/gtest.h>

#include "VoiceTestRig.h"

TEST (VoiceFolder, SwitchTurnsAPlainToneRich)
{
    struct Case { float ws; float timbre; bool rich; };
    for (const auto& c : { Case { 0.0f, 0.0f, false }, Case { 1.0f, 0.0f, true } })
    {
        VoiceTestRig rig;
        rig.set (ParameterIndex::ws, c.ws);
        rig.set (ParameterIndex::timbre, c.timbre);
        rig.set (ParameterIndex::pitch, -24.0f);
        rig.noteOn (69);
        rig.render ((int) rig.seconds (0.5));
        const double value = listen::impurity (rig.left, rig.seconds (0.3), rig.seconds (0.1), 440.0, 48000.0);
        EXPECT_EQ (value > 0.05, c.rich) << c.ws << " " << c.timbre << ": " << value;
    }
}

TEST (VoiceFolder, FadeTakesFiftyMillisecondsAndReversesFromWhereItIs)
{
    VoiceTestRig rig (48000.0, 1);
    rig.noteOn (69);
    rig.render (4800, 48);

    // On for 25 ms, then off: the way back from half-way takes another full 50 ms.
    rig.set (ParameterIndex::ws, 1.0f);
    rig.render (1200, 48);
    rig.set (ParameterIndex::ws, 0.0f);
    const auto reversal = rig.render ((int) rig.seconds (0.2), 48);

    const auto impurityAt = [&] (double fromMs, double toMs)
    {
        return listen::impurity (rig.left, reversal + rig.seconds (fromMs / 1000.0), rig.seconds ((toMs - fromMs) / 1000.0), 440.0, 48000.0);
    };
    EXPECT_GT (impurityAt (30.0, 45.0), 1e-3) << "still partly folded 30 to 45 ms after reversing";
    EXPECT_LT (impurityAt (80.0, 180.0), 1e-3) << "plain again once the 50 ms have passed";

    // A switch held on settles on the folded sound alone.
    VoiceTestRig on (48000.0, 1);
    on.set (ParameterIndex::ws, 1.0f);
    on.noteOn (69);
    on.render (4800);
    const auto settledStart = on.render (4800);
    EXPECT_GT (listen::impurity (on.left, settledStart, 4800, 440.0, 48000.0), 0.05);
}

TEST (VoiceFolder, FolderConstantOnSilenceIsFilteredAway)
{
    VoiceTestRig rig;
    rig.set (ParameterIndex::ws, 1.0f);
    // A note of velocity 0 sounds nothing, but keeps the voice, and so the folder, running.
    rig.synth.noteOn (1, 60, 0.0f);
    rig.render ((int) rig.seconds (2.0));
    ASSERT_EQ (rig.activeVoices(), 1);

    float early = 0.0f, late = 0.0f;
    for (size_t i = 0; i < rig.seconds (0.05); ++i)
        early = std::max (early, std::abs (rig.left[i]));
    for (size_t i = rig.seconds (1.5); i < rig.left.size(); ++i)
        late = std::max (late, std::abs (rig.left[i]));
    EXPECT_GT (early, 1e-3f) << "the folder's constant comes through at first";
    EXPECT_LT (late, 1e-5f) << "and is gone once the filters settle";
}
