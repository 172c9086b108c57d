// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel inside a host: the built bundle's editor opens in a real window at the remembered width,
// and opens and closes again and again while an audio thread plays on. Needs an X display (run
// under xvfb-run); without one the tests are skipped.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "hosted/HostedPlugin.h"

namespace
{
juce::File hostedSettingsFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory).getChildFile ("Velkaro Data/ondrivelSettings.xml");
}

// Lets the window and the framework's queued messages run for a while.
void pump (int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds);
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
        if (juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isEmpty())
            GTEST_SKIP() << "no X display";
        savedHome = juce::SystemStats::getEnvironmentVariable ("HOME", {});
        const auto home = juce::File (savedHome).getChildFile (juce::String ("hosted-") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        home.createDirectory();
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
        hosted::HostedPluginTest::SetUp();
        hostedSettingsFile().deleteFile();
    }

    void TearDown() override
    {
        if (savedHome.isEmpty())
            return;
        host.reset();
        hostedSettingsFile().deleteFile();
        setenv ("HOME", savedHome.toRawUTF8(), 1);
    }

    juce::String savedHome;
};
} // namespace

TEST_F (HostedEditorTest, EditorOpensAtTheRememberedWidth)
{
    struct Case { const char* stored; int width; int height; };
    const Case cases[] = { { nullptr, 880, 486 }, { "1320", 1320, 729 }, { "440", 440, 243 } };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.stored != nullptr ? c.stored : "no file");
        hostedSettingsFile().deleteFile();
        if (c.stored != nullptr)
            hostedSettingsFile().replaceWithText (juce::String ("<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"") + c.stored + "\"/></ALLSETTINGS>");
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
}

TEST_F (HostedEditorTest, EditorOpenedAndClosedWhileAudioRunsLeavesOutputFinite)
{
    // The test thread is the host's message thread; a second thread renders blocks at about the
    // pace of a sound card, as a host's audio thread does, while panels come and go and the host
    // moves parameters.
    for (int note : hosted::standardChord)
        host->scheduleNote (note, 100, 0, 48000 * 600);
    std::atomic<bool> running { true };
    hosted::Levels levels;
    std::thread audio ([&]
    {
        while (running.load())
        {
            levels.add (host->renderNext (256), 256);
            std::this_thread::sleep_for (std::chrono::milliseconds (2));
        }
    });

    int opened = 0;
    for (int i = 0; i < 50; ++i)
    {
        auto editor = showEditor (host->getInstance());
        opened += editor != nullptr ? 1 : 0;
        parameter ("drywet").setValueNotifyingHost ((float) (i % 10) / 10.0f);
        PluginHost::setParameterValue (parameter ("tilt"), i % 2 == 0 ? -1.0 : 1.0);
        pump (10);
        editor.reset();
    }
    pump (50);
    running = false;
    audio.join();

    std::printf ("hosted stress | editor open/close during audio | %6lld blocks | peak %9.4f | non-finite %lld\n", (long long) levels.blocks,
                 (double) levels.peak, (long long) levels.nonFinite);
    EXPECT_EQ (opened, 50);
    EXPECT_GT (levels.blocks, 200);
    EXPECT_EQ (levels.nonFinite, 0);
    EXPECT_GT (levels.peak, 0.0f) << "the chord stopped sounding";
    EXPECT_LT (levels.peak, 64.0f);
    EXPECT_NEAR (parameter ("drywet").getValue(), 0.9f, 1e-6f);
}
