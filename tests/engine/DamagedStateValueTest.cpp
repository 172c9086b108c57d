// SPDX-License-Identifier: AGPL-3.0-or-later
// A project whose stored values are not plain numbers must leave every parameter finite and inside
// its range; a value that does not read as a finite number gives the parameter its default.
#include <gtest/gtest.h>

#include <cmath>

#include "support/TestProcessor.h"

namespace
{
juce::MemoryBlock stateWithVolume (const juce::String& text, const char* childType = "PARAM")
{
    juce::XmlElement root ("ondrivel");
    auto* param = root.createNewChildElement (childType);
    param->setAttribute ("id", "volume");
    param->setAttribute ("value", text);
    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (root, block);
    return block;
}
} // namespace

TEST (DamagedState, ValuesThatAreNotNumbersNeverReachTheAudio)
{
    struct Case
    {
        const char* text;
        float expected;
    };
    const Case cases[] = { { "nan", 1.0f },  { "NaN", 1.0f },  { "-nan", 1.0f }, { "  nan", 1.0f },
                           { "inf", 1.0f },  { "-inf", 1.0f }, { "1e39", 1.0f }, { "-1e39", 1.0f },
                           { "x", 0.0f },    { "", 0.0f },     { "0.25", 0.25f } };

    TestProcessor t;
    auto& p = *t.processor;
    for (const auto& c : cases)
    {
        // Start from a value that none of the cases gives, so a kept old value shows.
        p.parameters.getParameter ("volume")->setValueNotifyingHost (0.5f);
        const auto block = stateWithVolume (c.text);
        p.setStateInformation (block.getData(), (int) block.getSize());
        EXPECT_EQ (p.getParameterValue (ParameterIndex::volume), c.expected) << '"' << c.text << '"';

        juce::AudioBuffer<float> buffer (2, 256);
        juce::MidiBuffer midi;
        midi.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
        buffer.clear();
        p.processBlock (buffer, midi);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < 256; ++i)
                ASSERT_TRUE (std::isfinite (buffer.getSample (ch, i))) << '"' << c.text << '"';
    }
}

TEST (DamagedState, NaNUnderAChildOfAnotherTypeStillFallsBackToTheDefault)
{
    // The parameter tree matches children by "id" whatever their type.
    TestProcessor t;
    auto& p = *t.processor;
    p.parameters.getParameter ("volume")->setValueNotifyingHost (0.5f);
    const auto block = stateWithVolume ("nan", "SOMETHING");
    p.setStateInformation (block.getData(), (int) block.getSize());
    EXPECT_EQ (p.getParameterValue (ParameterIndex::volume), 1.0f);
}
