// SPDX-License-Identifier: AGPL-3.0-or-later
// Voices as the synthesiser hands them out: stealing, freeing, and each note's stereo placement.
#include <gtest/gtest.h>

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

    float levelsBefore[8];
    for (int i = 0; i < 8; ++i)
        levelsBefore[i] = rig.voice (i)->getEnvelopeLevel();

    rig.noteOn (76);
    const auto start = rig.render (64, 64);
    EXPECT_EQ (rig.activeVoices(), 8);

    int stolen = -1;
    bool lowestKept = false;
    for (int i = 0; i < 8; ++i)
    {
        stolen = rig.voice (i)->getCurrentlyPlayingNote() == 76 ? i : stolen;
        lowestKept = lowestKept || rig.voice (i)->getCurrentlyPlayingNote() == 48;
    }
    ASSERT_GE (stolen, 0);
    EXPECT_TRUE (lowestKept);
    // It rises from where it stood instead of restarting from silence.
    EXPECT_GE (rig.voice (stolen)->getEnvelopeLevel(), levelsBefore[stolen]);

    // No click: the steepest step after the steal is no worse than a steady 76 could make.
    float steepest = 0.0f;
    for (size_t i = start; i < rig.left.size(); ++i)
        steepest = std::max (steepest, std::abs (rig.left[i] - rig.left[i - 1]));
    const double bound = 8.0 * 2.0 * juce::MathConstants<double>::pi * 660.0 / 48000.0;
    EXPECT_LT (steepest, bound);
}

TEST (VoiceAllocation, ReleasedVoicesFreeThemselvesAndFallSilent)
{
    VoiceTestRig rig;
    rig.set (ParameterIndex::release, 0.1f);
    for (int note : { 48, 52, 55, 59, 62, 65, 69, 72 })
        rig.noteOn (note);
    rig.render (4800);
    for (int note : { 48, 52, 55, 59, 62, 65, 69, 72 })
        rig.noteOff (note);
    rig.render (2400);
    EXPECT_EQ (rig.activeVoices(), 8) << "still releasing";

    rig.render ((int) rig.seconds (1.0));
    EXPECT_EQ (rig.activeVoices(), 0);
    const auto start = rig.render (4800);
    for (size_t i = start; i < rig.left.size(); ++i)
        ASSERT_EQ (rig.left[i], 0.0f);

    // A key already silent when released ends the note at once.
    rig.set (ParameterIndex::decay, 0.01f);
    rig.set (ParameterIndex::sustain, 0.0f);
    rig.noteOn (60);
    rig.render ((int) rig.seconds (0.5));
    rig.noteOff (60);
    rig.render (2, 2);
    EXPECT_EQ (rig.activeVoices(), 0);
}

TEST (VoiceAllocation, EachNoteKeepsOnePlacementAndOnlyTheLouderSideMoves)
{
    VoiceTestRig rig (48000.0, 1);
    float previousLeft = 1.0f, previousRight = 1.0f;
    for (int n = 0; n < 12; ++n)
    {
        rig.noteOn (60 + n);
        const auto start = rig.render (4800);
        rig.noteOff (60 + n);
        rig.render (64);

        // Within the note, the channels differ by one constant factor.
        const double ratio = (double) rig.left[start + 2000] / rig.right[start + 2000];
        for (size_t i = start + 100; i < start + 4800; i += 97)
        {
            if (std::abs (rig.right[i]) > 1e-3f)
            {
                ASSERT_NEAR ((double) rig.left[i] / rig.right[i], ratio, 1e-5 * ratio);
            }
        }

        const float left = rig.voice (0)->getPanGainLeft(), right = rig.voice (0)->getPanGainRight();
        EXPECT_NEAR (ratio, (double) left / right, 1e-5);
        if (n == 0)
        {
            EXPECT_EQ (left, 1.0f);
            EXPECT_EQ (right, 0.8f);
        }
        else
        {
            const bool leftMoved = previousLeft > previousRight;
            EXPECT_EQ (leftMoved ? right : left, leftMoved ? previousRight : previousLeft) << "note " << n;
            const float drawn = leftMoved ? left : right;
            EXPECT_GE (drawn, 0.55f);
            EXPECT_LE (drawn, 1.0f);
        }
        previousLeft = left;
        previousRight = right;
    }
}

TEST (VoiceAllocation, SuccessiveNotesLandInDifferentPlaces)
{
    VoiceTestRig rig (48000.0, 1);
    std::vector<float> placements;
    for (int n = 0; n < 8; ++n)
    {
        rig.noteOn (60);
        rig.render (512);
        rig.noteOff (60);
        rig.render (64);
        placements.push_back (rig.voice (0)->getPanGainLeft() / rig.voice (0)->getPanGainRight());
    }
    std::sort (placements.begin(), placements.end());
    EXPECT_GT (std::unique (placements.begin(), placements.end()) - placements.begin(), 4);
}
