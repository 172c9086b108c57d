// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor opens at the remembered width with the panel's aspect, follows host resizes and can be
// opened and closed many times while the processor keeps playing.
#include "EditorFixture.h"

namespace
{
float panelScale (MainWindow& panel)
{
    const auto t = panel.getTransform();
    return t.mat00;
}
} // namespace

TEST_F (EditorFixture, OpensAtStoredWidthWithThePanelAspect)
{
    struct Case { const char* stored; int width; int height; };
    const Case cases[] = {
        { nullptr, 880, 486 }, { "440", 440, 243 }, { "1320", 1320, 729 }, { "1760", 1760, 972 },
        { "3520", 3520, 1944 }, { "1200", 1200, 662 },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.stored != nullptr ? c.stored : "no file");
        settingsFile().deleteFile();
        if (c.stored != nullptr)
            writeSettings (juce::String ("<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"") + c.stored + "\"/></ALLSETTINGS>");

        auto& ed = openEditor();
        EXPECT_EQ (ed.getWidth(), c.width);
        EXPECT_EQ (ed.getHeight(), c.height);
        EXPECT_EQ (panel().getBounds(), juce::Rectangle<int> (0, 0, 880, 486));
        EXPECT_FLOAT_EQ (panelScale (panel()), (float) c.width / 880.0f);
        // The scaled panel covers the editor.
        EXPECT_EQ (panel().getBoundsInParent().getWidth(), c.width);
        closeEditor();
    }
}

TEST_F (EditorFixture, HostResizeKeepsTheAspectAndRescalesThePanel)
{
    struct Case { int width; int height; int expectedHeight; };
    const Case cases[] = { { 1000, 700, 552 }, { 440, 100, 243 }, { 3520, 10, 1944 }, { 880, 486, 486 }, { 1320, 1000, 729 } };
    auto& ed = openEditor();
    for (const auto& c : cases)
    {
        ed.setSize (c.width, c.height);
        EXPECT_EQ (ed.getWidth(), c.width);
        EXPECT_EQ (ed.getHeight(), c.expectedHeight) << c.width;
        EXPECT_FLOAT_EQ (panelScale (panel()), (float) c.width / 880.0f);
        EXPECT_EQ (panel().scaledWidth, c.width);
    }
}

TEST_F (EditorFixture, TimerRestoresTheRememberedWidthWhenTheHostRefusedIt)
{
    auto& ed = openEditor();
    ed.setSize (1320, 729);
    // A host that forces its own size without telling the editor's resized().
    panel().scaledWidth = 1320;
    ed.setBounds (0, 0, 900, 300);
    panel().scaledWidth = 1320;
    panel().timerCallback();
    EXPECT_EQ (ed.getWidth(), 1320);
    EXPECT_EQ (ed.getHeight(), 729);
}

TEST_F (EditorFixture, WidthIsRememberedFromOneEditorToTheNext)
{
    openEditor().setSize (1500, 828);
    closeEditor();
    ASSERT_TRUE (settingsFile().existsAsFile());
    EXPECT_EQ (openEditor().getWidth(), 1500);
    EXPECT_EQ (editor->getHeight(), 828);
}

TEST_F (EditorFixture, OpeningAndClosingAHundredTimesLeavesTheProcessorPlaying)
{
    juce::AudioBuffer<float> buffer (2, 256);
    juce::MidiBuffer midi;
    midi.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);

    for (int i = 0; i < 100; ++i)
    {
        auto& ed = openEditor();
        ed.setSize (440 + (i * 31) % 3081, 300);
        if (i % 25 == 0)
            ed.createComponentSnapshot ({ 0, 0, 64, 64 }, true, 0.25f);
        closeEditor();
        // The process default look-and-feel never points at a panel that has gone.
        EXPECT_EQ (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);

        buffer.clear();
        processor().processBlock (buffer, midi);
        midi.clear();
    }

    // Still alive: it plays, it takes parameter changes and it saves its state.
    parameter ("volume").setValueNotifyingHost (0.5f);
    EXPECT_FLOAT_EQ (processor().getParameterValue (ParameterIndex::volume), parameter ("volume").convertFrom0to1 (0.5f));
    juce::MemoryBlock state;
    processor().getStateInformation (state);
    EXPECT_GT (state.getSize(), 0u);
    buffer.clear();
    processor().processBlock (buffer, midi);
    for (int ch = 0; ch < 2; ++ch)
        for (int s = 0; s < buffer.getNumSamples(); ++s)
            ASSERT_TRUE (std::isfinite (buffer.getSample (ch, s)));
}

TEST_F (EditorFixture, PanelPaintsAtEveryScale)
{
    auto& ed = openEditor();
    for (const int width : { 440, 880, 1760 })
    {
        ed.setSize (width, 0);
        const auto image = ed.createComponentSnapshot (ed.getLocalBounds(), true, 1.0f);
        ASSERT_EQ (image.getWidth(), width);
        // The background picture covers the editor's blue fill everywhere.
        for (const auto& p : { juce::Point<int> (2, 2), juce::Point<int> (width / 2, image.getHeight() / 2),
                               juce::Point<int> (width - 3, image.getHeight() - 3) })
            EXPECT_NE (image.getPixelAt (p.x, p.y).getARGB(), 0xff0000ffu) << width << " " << p.toString();
    }
}

TEST_F (EditorFixture, TwoPanelsOpenAtOnceCloseInEitherOrder)
{
    KestruneAudioProcessor second;
    for (const bool firstClosesFirst : { true, false })
    {
        openEditor();
        std::unique_ptr<juce::AudioProcessorEditor> other (second.createEditor());
        if (firstClosesFirst)
        {
            closeEditor();
            // The other panel's look stays the default while it is open.
            EXPECT_NE (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
            other->createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
            other.reset();
        }
        else
        {
            other.reset();
            editor->createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
            closeEditor();
        }
        EXPECT_EQ (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
    }
}
