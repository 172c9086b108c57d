// SPDX-License-Identifier: AGPL-3.0-or-later
// Envelope timing and sustain, observed on the rendered note.
#include <gtest/gtest.h>

#include "VoiceTestRig.h"

TEST (VoiceEnvelope, ZeroAttackStillRampsOverOnePointFourMilliseconds)
{
    // Within one block the attack is a straight line lasting the rate times 1.4 ms.
    for (const double rate : { 22050.0, 44100.0, 48000.0, 192000.0 })
    {
        const double expected = rate * 0.0014;
        for (const int length : { (int) (expected * 0.98), (int) expected + 1 })
        {
            VoiceTestRig rig (rate, 1);
            rig.noteOn (69);
            rig.render (length, length);
            EXPECT_EQ (rig.voice (0)->getEnvelopeState() == 0, length < expected) << rate << " after " << length;
        }
    }
}

TEST (VoiceEnvelope, DecayAndReleaseFallThirtyDecibelsInTheirTime)
{
    // The ratio scheme: the level falls by (1 + 0.032) / 0.032, about 30.2 dB, over the set time.
    struct Case { float decay; float release; };
    for (const auto& c : { Case { 0.5f, 0.0f }, Case { 0.0f, 0.5f }, Case { 0.0f, 1.0f } })
    {
        VoiceTestRig rig (48000.0, 1);
        rig.set (ParameterIndex::decay, c.decay);
        rig.set (ParameterIndex::sustain, c.decay > 0.0f ? 0.0f : 1.0f);
        rig.set (ParameterIndex::release, c.release);
        rig.noteOn (69);
        rig.render (4800);
        if (c.release > 0.0f)
            rig.noteOff (69);
        const float stage = c.decay + c.release;
        const auto start = rig.render ((int) rig.seconds (stage + 0.1));
        const double before = listen::rms (rig.left, start + rig.seconds (0.01), 1200);
        const double after = listen::rms (rig.left, start + rig.seconds (0.01 + stage), 1200);
        EXPECT_NEAR (20.0 * std::log10 (before / after), 20.0 * std::log10 (1.032 / 0.032), 0.5) << stage;
    }
}

TEST (VoiceEnvelope, SustainHoldsAndFollowsItsControlAndUnderOneThousandthEndsTheNote)
{
    for (const float sustain : { 0.0f, 0.0009f, 0.002f, 0.25f })
    {
        VoiceTestRig rig (48000.0, 1);
        rig.set (ParameterIndex::decay, 0.1f);
        rig.set (ParameterIndex::sustain, sustain);
        rig.noteOn (69);
        const auto held = rig.render (48000) + 43200;
        ASSERT_EQ (rig.activeVoices() == 1, sustain >= 0.001f) << sustain;
        if (sustain < 0.001f)
            continue;
        // Moved while the key is held, the level follows at the next block.
        rig.set (ParameterIndex::sustain, 1.0f);
        const auto full = rig.render (9600) + 4800;
        EXPECT_NEAR (listen::rms (rig.left, held, 4800) / listen::rms (rig.left, full, 4800), sustain, sustain * 0.02) << sustain;
    }
}
