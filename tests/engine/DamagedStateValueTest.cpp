// SPDX-License-Identifier: AGPL-3.0-or-later
// A project whose stored values are not plain numbers must leave every parameter finite and inside
// its range; a value that does not read as a finite number gives the parameter its default.
#include <gtest/gtest.h>

#include "support/Listen.h"
#include "support/TestProcessor.h"

TEST (DamagedState, ValuesThatAreNotNumbersNeverReachTheAudio)
{
    // The parameter tree matches children by "id" whatever their type, so the type is varied too.
    struct Case { const char* text; const char* childType; float expected; };
    const Case cases[] = { { "nan", "PARAM", 1.0f },  { "NaN", "PARAM", 1.0f },  { "-nan", "PARAM", 1.0f },
                           { "  nan", "PARAM", 1.0f }, { "inf", "PARAM", 1.0f },  { "-inf", "PARAM", 1.0f },
                           { "1e39", "PARAM", 1.0f }, { "-1e39", "PARAM", 1.0f }, { "x", "PARAM", 0.0f },
                           { "", "PARAM", 0.0f },     { "0.25", "PARAM", 0.25f }, { "nan", "SOMETHING", 1.0f } };
    TestProcessor t;
    auto& p = *t.processor;
    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << c.childType << " \"" << c.text << '"');
        // Start from a value that none of the cases gives, so a kept old value shows.
        p.parameters.getParameter ("volume")->setValueNotifyingHost (0.5f);
        juce::XmlElement root ("ondrivel");
        auto* param = root.createNewChildElement (c.childType);
        param->setAttribute ("id", "volume");
        param->setAttribute ("value", c.text);
        juce::MemoryBlock block;
        juce::AudioProcessor::copyXmlToBinary (root, block);
        p.setStateInformation (block.getData(), (int) block.getSize());
        EXPECT_EQ (p.getParameterValue (ParameterIndex::volume), c.expected);

        EXPECT_TRUE (listen::allFinite (t.render (1, TestProcessor::noteOn (60))));
    }
}
