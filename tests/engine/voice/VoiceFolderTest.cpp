// SPDX-License-Identifier: AGPL-3.0-or-later
// The waveshaping switch: what it does to the tone, how it fades, and that it adds nothing on silence.
#include <gtest/gtest.h>

#include "VoiceTestRig.h"

TEST (VoiceFolder, SwitchFoldsThePlainToneAndFadesOverFiftyMilliseconds)
{
    const auto impurity = [] (VoiceTestRig& rig, size_t from, double fromMs, double toMs)
    { return listen::impurity (rig.left, from + rig.seconds (fromMs / 1000.0), rig.seconds ((toMs - fromMs) / 1000.0), 440.0, 48000.0); };

    // Held on, the plain tone turns rich.
    VoiceTestRig on (48000.0, 1);
    on.set (ParameterIndex::ws, 1.0f);
    on.noteOn (69);
    EXPECT_GT (impurity (on, on.render (9600) + 4800, 0.0, 100.0), 0.05);

    // On for 25 ms, then off: the way back from half-way takes another full 50 ms.
    VoiceTestRig rig (48000.0, 1);
    rig.noteOn (69);
    rig.render (4800, 48);
    rig.set (ParameterIndex::ws, 1.0f);
    rig.render (1200, 48);
    rig.set (ParameterIndex::ws, 0.0f);
    const auto reversal = rig.render ((int) rig.seconds (0.2), 48);
    EXPECT_GT (impurity (rig, reversal, 30.0, 45.0), 1e-3) << "still partly folded 30 to 45 ms after reversing";
    EXPECT_LT (impurity (rig, reversal, 80.0, 180.0), 1e-3) << "plain again once the 50 ms have passed";
}

TEST (VoiceFolder, FolderConstantOnSilenceIsFilteredAway)
{
    VoiceTestRig rig;
    rig.set (ParameterIndex::ws, 1.0f);
    // A note of velocity 0 sounds nothing, but keeps the voice, and so the folder, running.
    rig.synth.noteOn (1, 60, 0.0f);
    rig.render ((int) rig.seconds (2.0));
    ASSERT_EQ (rig.activeVoices(), 1);

    EXPECT_GT (listen::rms (rig.left, 0, rig.seconds (0.05)), 1e-3) << "the folder's constant comes through at first";
    EXPECT_LT (listen::rms (rig.left, rig.seconds (1.5), rig.seconds (0.5)), 1e-5) << "and is gone once the filters settle";
}
