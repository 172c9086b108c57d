// SPDX-License-Identifier: AGPL-3.0-or-later
// A project saved by a host must come back exactly, and damaged project data must change nothing.
#include "hosted/HostedPlugin.h"

using hosted::HostedPluginTest;

TEST_F (HostedPluginTest, ProjectStateComesBackExactlyAndDamagedBlocksChangeNothing)
{
    // A value inside each range, away from the default, that exercises skewed and stepped ranges.
    for (const auto& row : parameterTable)
    {
        const double span = row.max - row.min;
        double value = row.min + span * (row.defaultValue - row.min < span * 0.5 ? 0.73 : 0.21);
        if (row.interval > 0)
            value = row.min + std::round ((value - row.min) / row.interval) * row.interval;
        PluginHost::setParameterValue (parameter (row.id), value);
    }
    host->renderNext (host->getBlockSize());

    const auto saved = host->getState();
    const auto savedXml = juce::AudioProcessor::getXmlFromBinary (saved.getData(), (int) saved.getSize());
    ASSERT_NE (savedXml, nullptr);
    EXPECT_TRUE (savedXml->hasTagName ("ondrivel"));
    auto other = hosted::loadBuiltPlugin();
    ASSERT_NE (other, nullptr);
    other->setState (saved.getData(), saved.getSize());

    const auto expectSavedValues = [&] (const char* after)
    {
        const auto restoredXml = hosted::stateXml (*other);
        ASSERT_NE (restoredXml, nullptr) << after;
        for (const auto& row : parameterTable)
        {
            const auto savedValue = hosted::stateValue (*savedXml, row.id);
            EXPECT_NE (savedValue.getDoubleValue(), row.defaultValue) << row.id;
            EXPECT_EQ (hosted::stateValue (*restoredXml, row.id), savedValue) << after << ", " << row.id;
            // The host's view follows the restored state too.
            auto* restored = other->findParameter (row.id);
            EXPECT_EQ (restored->getText (restored->getValue(), 128), parameter (row.id).getText (parameter (row.id).getValue(), 128))
                << after << ", " << row.id;
        }
    };
    expectSavedValues ("the restore");

    // Then blocks no host should hand over, each of which must leave the restored values alone.
    juce::MemoryBlock valid;
    juce::AudioProcessor::copyXmlToBinary (juce::XmlElement ("ondrivel"), valid);
    const auto* bytes = static_cast<const char*> (valid.getData());
    const std::string notXml = std::string ("VC2!") + std::string ("\x0b\0\0\0", 4) + "not xml at" + '\0';
    const std::pair<const char*, juce::MemoryBlock> damaged[] = {
        { "empty", {} },
        { "eight bytes", { bytes, 8 } },
        { "nine bytes, wrong magic", { "XXXX\x01\0\0\0a", 9 } },
        { "zero stored length", { "VC2!\0\0\0\0\0", 9 } },
        { "text that is not XML", { notXml.data(), notXml.size() } },
        { "truncated", { bytes, valid.getSize() / 2 } },
        { "random bytes", { "\x13\x37\xca\xfe\xba\xbe\xde\xad\xbe\xef\x00\x01", 12 } },
    };
    for (const auto& [name, block] : damaged)
    {
        other->setState (block.getData(), block.getSize());
        expectSavedValues (name);
    }
}
