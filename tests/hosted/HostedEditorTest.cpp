// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel inside a host: the built bundle's editor opens in a real window at the remembered width,
// and can be opened and closed a hundred times while the plug-in plays on. Needs an X display
// (run under xvfb-run); without one the tests are skipped.
#include <cstdlib>

#include "hosted/HostedPlugin.h"

namespace
{
juce::File hostedSettingsFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Velkaro Data")
        .getChildFile ("ondrivelSettings.xml");
}

// Lets the window and the framework's queued messages run for a while.
void pump (int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds);
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
        pump (50);
    }
    return editor;
}
// The plug-in is loaded with a home folder of the test's own, so that tests run in parallel never
// share the settings file that every closing panel writes.
class HostedEditorTest : public hosted::HostedPluginTest
{
protected:
    void SetUp() override
    {
        savedHome = juce::SystemStats::getEnvironmentVariable ("HOME", {});
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        const auto home = juce::File (savedHome).getChildFile (juce::String ("hosted-") + info->name());
        home.createDirectory();
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
        hosted::HostedPluginTest::SetUp();
    }

    void TearDown() override
    {
        host.reset();
        setenv ("HOME", savedHome.toRawUTF8(), 1);
    }

    juce::String savedHome;
};
} // namespace

TEST_F (HostedEditorTest, EditorOpensAtTheRememberedWidth)
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
        pump (20);

        // Closing the panel stores its width again.
        const auto stored = juce::XmlDocument::parse (hostedSettingsFile());
        ASSERT_NE (stored, nullptr);
        EXPECT_TRUE (stored->toString().contains ("Value=\"" + juce::String (c.width) + "\""));
    }
    hostedSettingsFile().deleteFile();
}

TEST_F (HostedEditorTest, EditorOpenedAndClosedAHundredTimesLeavesThePluginPlaying)
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
    pump (50);
    const auto levels = hosted::render (*host, 4800);
    EXPECT_EQ (levels.nonFinite, 0);
    EXPECT_NEAR (parameter ("drywet").getValue(), 0.9f, 1e-6f);
    hostedSettingsFile().deleteFile();
}
