// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel inside a host: the built bundle's editor opens and closes again and again while an audio
// thread plays on. Needs an X display (run under xvfb-run); without one the test is skipped.
#include <atomic>
#include <cmath>
#include <chrono>
#include <thread>

#include "hosted/HostedPlugin.h"

namespace
{
// The plug-in is loaded with a home folder of the test's own, so that no other test run in
// parallel shares the settings file that every closing panel writes.
class HostedEditorTest : public hosted::HostedPluginTest
{
protected:
    void SetUp() override
    {
        if (juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isEmpty())
            GTEST_SKIP() << "no X display";
        hosted::HostedPluginTest::SetUp();
    }
    void TearDown() override { host.reset(); }

    ScopedHome home;
};

// Lets the window and the framework's queued messages run for a while.
void pump (int milliseconds) { juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds); }
} // namespace

TEST_F (HostedEditorTest, EditorOpenedAndClosedWhileAudioRunsLeavesOutputFinite)
{
    // The test thread is the host's message thread; a second thread renders blocks at about the
    // pace of a sound card, as a host's audio thread does, while panels come and go and the host
    // moves parameters.
    for (int note : hosted::standardChord)
        host->scheduleNote (note, 100, 0, 48000 * 600);
    std::atomic<bool> running { true };
    int blocks = 0, nonFinite = 0;
    float peak = 0.0f;
    std::thread audio ([&]
    {
        for (; running.load(); ++blocks)
        {
            const auto& block = host->renderNext (256);
            for (int ch = 0; ch < 2; ++ch)
                for (int i = 0; i < 256; ++i)
                    nonFinite += std::isfinite (block.getSample (ch, i)) ? 0 : 1, peak = std::max (peak, std::abs (block.getSample (ch, i)));
            std::this_thread::sleep_for (std::chrono::milliseconds (2));
        }
    });

    int opened = 0;
    for (int i = 0; i < 50; ++i)
    {
        std::unique_ptr<juce::AudioProcessorEditor> editor (host->getInstance().createEditor());
        if (editor != nullptr)
        {
            ++opened;
            editor->setTopLeftPosition (20, 20);
            editor->addToDesktop (0);
            editor->setVisible (true);
        }
        parameter ("drywet").setValueNotifyingHost ((float) (i % 10) / 10.0f);
        PluginHost::setParameterValue (parameter ("tilt"), i % 2 == 0 ? -1.0 : 1.0);
        pump (60);
        editor.reset();
    }
    pump (50);
    running = false;
    audio.join();

    EXPECT_EQ (opened, 50);
    EXPECT_GT (blocks, 200);
    EXPECT_EQ (nonFinite, 0);
    EXPECT_GT (peak, 0.0f) << "the chord stopped sounding";
    EXPECT_LT (peak, 64.0f);
    EXPECT_NEAR (parameter ("drywet").getValue(), 0.9f, 1e-6f);
}
