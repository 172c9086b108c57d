// SPDX-License-Identifier: AGPL-3.0-or-later
// Pitch and tone as a listener hears them: note frequency, bend range, the ratio switch, vibrato and low
// sample rates; the waveshaping switch, how it fades, and that it adds nothing on silence.
#include <gtest/gtest.h>

#include <numeric>

#include "VoiceTestRig.h"

namespace
{
double noteHz (int note) { return 440.0 * std::pow (2.0, (note - 69) / 12.0); }
} // namespace

TEST (VoicePitch, NoteSoundsAtItsFrequencyAndTheWheelBendsTwoSemitones)
{
    struct Case { double rate; int note, wheel; double expectedHz; };
    const Case cases[] = {
        { 48000.0, 69, 8192, 440.0 }, { 48000.0, 60, 8192, noteHz (60) }, { 44100.0, 33, 8192, noteHz (33) },
        { 96000.0, 96, 8192, noteHz (96) }, { 22050.0, 81, 8192, noteHz (81) }, { 192000.0, 45, 8192, noteHz (45) },
        // Below 16 kHz the oscillators are rate-limited, so notes play flat by rate / 16000.
        { 12000.0, 69, 8192, 440.0 * 12000.0 / 16000.0 },
        { 48000.0, 69, 0, 440.0 * std::pow (2.0, -2.0000407 / 12.0) }, { 48000.0, 69, 16383, 440.0 * std::pow (2.0, 2.0000326 / 12.0) },
        { 48000.0, 69, 12288, 440.0 * std::pow (2.0, 0.9998 / 12.0) },
    };
    for (const auto& c : cases)
    {
        VoiceTestRig rig (c.rate);
        rig.noteOn (c.note);
        rig.render ((int) rig.seconds (0.1));
        rig.pitchWheel (c.wheel);
        const auto start = rig.render ((int) rig.seconds (1.5)) + rig.seconds (0.4);
        EXPECT_NEAR (listen::frequency (rig.left, start, rig.seconds (1.0), c.rate), c.expectedHz, c.expectedHz * 2e-4)
            << "note " << c.note << " at " << c.rate << ", wheel " << c.wheel;
        // With no modulation depth the tone is the plain polynomial sine.
        EXPECT_LT (listen::impurity (rig.left, start, rig.seconds (0.2), c.expectedHz, c.rate), 1e-3) << c.rate;
    }
}

TEST (VoicePitch, RatioSwitchOctaveDropReachesOnlyNewNotes)
{
    // The sounding note keeps its pitch when the switch moves to a dropping position...
    VoiceTestRig held;
    held.noteOn (69);
    held.render (4800);
    held.set (ParameterIndex::pitch, -8.0f);
    const auto heldStart = held.render ((int) held.seconds (1.0));
    EXPECT_NEAR (listen::frequency (held.left, heldStart + 4800, held.seconds (0.8), 48000.0), 440.0, 0.1);

    // ...and the next note sounds a fourth under its key.
    held.noteOff (69);
    held.noteOn (69);
    const auto nextStart = held.render ((int) held.seconds (1.0));
    EXPECT_NEAR (listen::frequency (held.left, nextStart + 4800, held.seconds (0.8), 48000.0), noteHz (64), 0.1);
}

TEST (VoicePitch, VibratoSwaysAtFiveHertzAndSlowsBelowThirtyTwoKilohertz)
{
    struct Case { double rate; double expectedHz; };
    const Case cases[] = { { 48000.0, 5.0 }, { 96000.0, 5.0 }, { 22050.0, 5.0 * 22050.0 / 32000.0 } };
    for (const auto& c : cases)
    {
        VoiceTestRig rig (c.rate);
        rig.set (ParameterIndex::vibrato, 1.0f);
        rig.noteOn (81);
        rig.render ((int) rig.seconds (4.0));

        // Pitch over windows of 5 ms, then how often it crosses its mean going up.
        std::vector<double> pitch;
        for (size_t i = rig.seconds (1.0); i + rig.seconds (0.005) <= rig.left.size(); i += rig.seconds (0.005))
            pitch.push_back (listen::frequency (rig.left, i, rig.seconds (0.005), c.rate));
        const double mean = std::accumulate (pitch.begin(), pitch.end(), 0.0) / (double) pitch.size();
        const auto [minimum, maximum] = std::minmax_element (pitch.begin(), pitch.end());
        int swings = 0;
        for (size_t i = 1; i < pitch.size(); ++i)
            swings += (pitch[i - 1] < mean && pitch[i] >= mean) ? 1 : 0;
        EXPECT_NEAR (swings / 3.0, c.expectedHz, 0.7) << c.rate;
        // Full depth moves the pitch by several percent.
        EXPECT_GT ((*maximum - *minimum) / mean, 0.05) << c.rate;
    }
}

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
