// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel inside a host: the built bundle's editor opens in a real window at the remembered width,
// and can be opened and closed a hundred times while the plug-in plays on. Needs an X display
// (run under xvfb-run); without one the tests are skipped.
#include "hosted/HostedPlugin.h"

using hosted::HostedPluginTest;

namespace
{
juce::File hostedSettingsFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Velkaro Data")
        .getChildFile ("ondrivelSettings.xml");
}

bool haveDisplay()
{
    return juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isNotEmpty();
}

std::unique_ptr<juce::AudioProcessorEditor> showEditor (juce::AudioPluginInstance& instance)
{
    std::unique_ptr<juce::AudioProcessorEditor> editor (instance.createEditor());
    if (editor != nullptr)
    {
        editor->setTopLeftPosition (20, 20);
        editor->addToDesktop (0);
        editor->setVisible (true);
        HostEnvironment::pumpMessages (50);
    }
    return editor;
}
} // namespace

TEST_F (HostedPluginTest, EditorOpensAtTheRememberedWidth)
{
    if (! haveDisplay())
        GTEST_SKIP() << "no X display";

    struct Case { const char* stored; int width; int height; };
    const Case cases[] = { { nullptr, 880, 486 }, { "1320", 1320, 729 }, { "440", 440, 243 } };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.stored != nullptr ? c.stored : "no file");
        hostedSettingsFile().deleteFile();
        if (c.stored != nullptr)
            hostedSettingsFile().replaceWithText (juce::String ("<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"")
                                                  + c.stored + "\"/></ALLSETTINGS>");
        auto editor = showEditor (host->getInstance());
        ASSERT_NE (editor, nullptr);
        EXPECT_EQ (editor->getWidth(), c.width);
        EXPECT_EQ (editor->getHeight(), c.height);
        editor.reset();
        HostEnvironment::pumpMessages (20);

        // Closing the panel stores its width again.
        const auto stored = juce::XmlDocument::parse (hostedSettingsFile());
        ASSERT_NE (stored, nullptr);
        EXPECT_TRUE (stored->toString().contains ("Value=\"" + juce::String (c.width) + "\""));
    }
    hostedSettingsFile().deleteFile();
}

TEST_F (HostedPluginTest, EditorOpenedAndClosedAHundredTimesLeavesThePluginPlaying)
{
    if (! haveDisplay())
        GTEST_SKIP() << "no X display";

    hostedSettingsFile().deleteFile();
    host->scheduleNote (60, 100, 0, 48000 * 60);
    for (int i = 0; i < 100; ++i)
    {
        auto editor = showEditor (host->getInstance());
        ASSERT_NE (editor, nullptr) << i;
        // A parameter change from the host while the panel is up.
        parameter ("drywet").setValueNotifyingHost ((float) (i % 10) / 10.0f);
        const auto levels = hosted::render (*host, 512);
        ASSERT_EQ (levels.nonFinite, 0) << i;
        editor.reset();
    }
    HostEnvironment::pumpMessages (50);
    const auto levels = hosted::render (*host, 4800);
    EXPECT_EQ (levels.nonFinite, 0);
    EXPECT_NEAR (parameter ("drywet").getValue(), 0.9f, 1e-6f);
    hostedSettingsFile().deleteFile();
}
