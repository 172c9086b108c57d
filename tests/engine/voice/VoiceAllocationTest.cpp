// SPDX-License-Identifier: AGPL-3.0-or-later
// Voices as the synthesiser hands them out: stealing, freeing, and each note's stereo placement.
#include <gtest/gtest.h>

#include <set>

#include "VoiceTestRig.h"

TEST (VoiceAllocation, NinthNoteStealsAVoiceThatGlidesFromItsPresentLevel)
{
    VoiceTestRig rig;
    rig.set (ParameterIndex::sustain, 0.5f);
    rig.set (ParameterIndex::attack, 0.05f);
    for (int note : { 48, 52, 55, 59, 62, 65, 69, 72 })
        rig.noteOn (note);
    rig.render (9600);
    ASSERT_EQ (rig.activeVoices(), 8);

    std::vector<float> levelsBefore;
    for (int i = 0; i < 8; ++i)
        levelsBefore.push_back (rig.voice (i)->getEnvelopeLevel());
    rig.noteOn (76);
    const auto start = rig.render (64, 64);
    EXPECT_EQ (rig.activeVoices(), 8);

    int stolen = -1, lowest = -1;
    for (int i = 0; i < 8; ++i)
    {
        stolen = rig.voice (i)->getCurrentlyPlayingNote() == 76 ? i : stolen;
        lowest = rig.voice (i)->getCurrentlyPlayingNote() == 48 ? i : lowest;
    }
    ASSERT_GE (stolen, 0);
    EXPECT_GE (lowest, 0) << "the lowest note is kept";
    // It rises from where it stood instead of restarting from silence.
    EXPECT_GE (rig.voice (stolen)->getEnvelopeLevel(), levelsBefore[(size_t) stolen]);

    // No click: the steepest step after the steal is no worse than a steady 76 could make.
    float steepest = 0.0f;
    for (size_t i = start; i < rig.left.size(); ++i)
        steepest = std::max (steepest, std::abs (rig.left[i] - rig.left[i - 1]));
    EXPECT_LT (steepest, 8.0 * 2.0 * juce::MathConstants<double>::pi * 660.0 / 48000.0);
}

TEST (VoiceAllocation, ReleasedVoicesFreeThemselvesAndFallSilent)
{
    struct Case { const char* name; float release, decay, sustain; double heldSeconds; bool allNotesOffWithoutTail; int after, active; };
    const Case cases[] = {
        { "release 0 ends the note at once", 0.0f, 0.0f, 1.0f, 0.05, false, 2, 0 },
        { "a key already silent ends the note at once", 0.1f, 0.01f, 0.0f, 0.5, false, 2, 0 },
        { "release 0.1 still sounds after 50 ms", 0.1f, 0.0f, 1.0f, 0.1, false, 2400, 1 },
        { "and has freed its voice a second later", 0.1f, 0.0f, 1.0f, 0.1, false, 2400 + 48000, 0 },
        { "a host asking for no tail-off still gets a release", 1.0f, 0.0f, 1.0f, 0.05, true, 256, 1 },
    };
    for (const auto& c : cases)
    {
        VoiceTestRig rig;
        rig.set (ParameterIndex::release, c.release);
        rig.set (ParameterIndex::decay, c.decay);
        rig.set (ParameterIndex::sustain, c.sustain);
        rig.noteOn (60);
        rig.render ((int) rig.seconds (c.heldSeconds));
        if (c.allNotesOffWithoutTail)
            rig.synth.allNotesOff (0, false);
        else
            rig.noteOff (60);
        rig.render (c.after, std::min (c.after, 256));
        EXPECT_EQ (rig.activeVoices(), c.active) << c.name;
        if (c.active == 0)
        {
            const auto start = rig.render (4800);
            EXPECT_TRUE (std::none_of (rig.left.begin() + (long) start, rig.left.end(), [] (float v) { return std::abs (v) > 0.0f; })) << c.name;
        }
    }
}

TEST (VoiceAllocation, EachNoteKeepsOnePlacementAndSuccessiveNotesMove)
{
    VoiceTestRig rig (48000.0, 1);
    std::set<double> placements;
    for (int n = 0; n < 12; ++n)
    {
        rig.noteOn (60 + n % 2);
        const auto start = rig.render (4800);
        rig.noteOff (60 + n % 2);
        rig.render (64);

        // Within the note, the channels differ by one constant factor; neither side drops under 0.55.
        const double ratio = (double) rig.left[start + 2000] / rig.right[start + 2000];
        EXPECT_TRUE (ratio >= 0.55 && ratio <= 1.0 / 0.55) << ratio;
        for (size_t i = start + 100; i < start + 4800; i += 97)
        {
            if (std::abs (rig.right[i]) > 1e-3f)
            {
                ASSERT_NEAR ((double) rig.left[i] / rig.right[i], ratio, 1e-5 * ratio);
            }
        }
        placements.insert (ratio);
    }
    EXPECT_GT (placements.size(), 6u) << "successive notes land in different places";
}
