// SPDX-License-Identifier: AGPL-3.0-or-later
// The voices under every extreme at once, at the edges of the supported sample rates and block sizes,
// and a note through the whole plug-in.
#include <gtest/gtest.h>

#include "VoiceTestRig.h"
#include "engine/support/TestProcessor.h"

TEST (VoiceRobustness, ExtremeSettingsStayFiniteAndBoundedAtAllRates)
{
    struct Case { double rate; int blockSize; };
    const Case cases[] = { { 22050.0, 7 }, { 44100.0, 1 }, { 192000.0, 4096 }, { 11025.0, 256 }, { 96000.0, 33 } };
    for (const auto& c : cases)
    {
        for (const float pitch : { -24.0f, -20.0f, -8.0f, 0.0f, 16.0f, 24.0f })
        {
            VoiceTestRig rig (c.rate);
            for (int index : { ParameterIndex::timbre, ParameterIndex::noise, ParameterIndex::envmod, ParameterIndex::ws,
                               ParameterIndex::vibrato })
                rig.set (index, 1.0f);
            rig.set (ParameterIndex::pitch, pitch);
            rig.set (ParameterIndex::release, 0.05f);
            for (int note : { 0, 21, 48, 60, 72, 96, 108, 127, 64, 30 })
                rig.noteOn (note, 1.0f);
            rig.pitchWheel (16383);
            rig.render ((int) rig.seconds (0.3), c.blockSize);
            rig.pitchWheel (0);
            rig.set (ParameterIndex::ws, 0.0f);
            rig.render ((int) rig.seconds (0.1), c.blockSize);
            for (int note : { 0, 21, 48, 60, 72, 96, 108, 127, 64, 30 })
                rig.noteOff (note);
            rig.render ((int) rig.seconds (0.3), c.blockSize);

            ASSERT_TRUE (listen::allFinite (rig.left) && listen::allFinite (rig.right)) << c.rate << " pitch " << pitch;
            float peak = 0.0f;
            for (auto v : rig.left)
                peak = std::max (peak, std::abs (v));
            EXPECT_LT (peak, 16.0f) << c.rate;
            EXPECT_GT (peak, 0.01f) << c.rate;
            EXPECT_EQ (rig.activeVoices(), 0) << c.rate;
        }
    }
}

TEST (VoiceRobustness, PluginPlaysACleanNoteWithItsEnvelope)
{
    TestProcessor test (48000.0, 256);
    auto& processor = *test.processor;
    // Dry path only, so the note can be judged on its own.
    for (const auto& [id, value] : { std::pair<const char*, float> { "drywet", 0.0f }, { "reverb", 0.0f } })
        processor.parameters.getParameter (id)->setValueNotifyingHost (processor.parameters.getParameter (id)->convertTo0to1 (value));

    std::vector<float> out;
    juce::AudioBuffer<float> buffer (2, 256);
    const int total = 48000 * 2;
    for (int done = 0; done < total; done += 256)
    {
        juce::MidiBuffer midi;
        if (done == 0)
            midi.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
        if (done == 256 * 188)
            midi.addEvent (juce::MidiMessage::noteOff (1, 60), 0);
        processor.processBlock (buffer, midi);
        out.insert (out.end(), buffer.getReadPointer (0), buffer.getReadPointer (0) + 256);
    }
    ASSERT_TRUE (listen::allFinite (out));

    // Defaults: pitch -12 and no timbre, so a plain tone at the key's frequency.
    const double c4 = 440.0 * std::pow (2.0, -9.0 / 12.0);
    EXPECT_NEAR (listen::frequency (out, 24000, 12000, 48000.0), c4, 0.2);
    // Decay 0.5 s to sustain 0.5, held, then a 0.1 s release.
    const double peak = listen::rms (out, 0, 1200), held = listen::rms (out, 36000, 9000);
    EXPECT_GT (peak, held * 1.5);
    EXPECT_GT (held, 0.01);
    EXPECT_LT (listen::rms (out, 48000 + 24000, 9000), held * 1e-2);
}
