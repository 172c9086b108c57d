// SPDX-License-Identifier: AGPL-3.0-or-later
// MIDI and silence through the VST3 wrapper: the mod wheel must survive it as the vibrato
// parameter, and a plug-in without notes must stay silent.
#include "hosted/HostedPlugin.h"

using hosted::HostedPluginTest;

TEST_F (HostedPluginTest, ModWheelThroughTheWrapperSetsVibratoAndNothingSoundsWithoutNotes)
{
    for (const int value : { 127, 0 })
    {
        host->scheduleMidi (host->getPosition() + 10, juce::MidiMessage::controllerEvent (1, 1, value));
        host->renderNext (host->getBlockSize());
        const auto state = hosted::stateXml (*host);
        ASSERT_NE (state, nullptr);
        EXPECT_EQ (hosted::stateValue (*state, "vibrato").getFloatValue(), (float) value / 127.0f);
    }
    // Without notes, silence.
    juce::AudioBuffer<float> silence (2, 48000);
    silence.clear();
    EXPECT_EQ (hosted::differingSamples (hosted::render (*host, 48000), silence), 0);
}
