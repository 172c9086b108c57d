// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor opens at the remembered width with the panel's aspect, whatever the settings file holds,
// follows host resizes, paints at every scale, and keeps its own look beside another instance's panel.
#include "EditorFixture.h"
#include "HostEnvironment.h"

TEST_F (EditorFixture, OpensAtTheRememberedWidthWhateverTheSettingsFileHolds)
{
    // The file as found, what the record reads from it, and the width the editor opens at.
    struct Case { const char* name; const char* content; int tooltips, width, openGL, colours, editorWidth; };
    const Case cases[] = {
        { "no file", nullptr, 1, 880, 0, 0, 880 },
        { "empty", "", 1, 880, 0, 0, 880 },
        { "not xml", "\x01\x02 not <<< xml >", 1, 880, 0, 0, 880 },
        { "wrong root", "<SETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></SETTINGS>", 1, 880, 0, 0, 880 },
        { "width only", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"1320\"/></ALLSETTINGS>", 1, 1320, 0, 0, 1320 },
        { "not a number", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"wide\"/></ALLSETTINGS>", 1, 0, 0, 0, 880 },
        { "leading digits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\" 1500px\"/></ALLSETTINGS>", 1, 1500, 0, 0, 1500 },
        { "negative", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"-20\"/></ALLSETTINGS>", 1, -20, 0, 0, 880 },
        { "below limits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"100\"/></ALLSETTINGS>", 1, 100, 0, 0, 100 },
        { "above limits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"4000\"/></ALLSETTINGS>", 1, 4000, 0, 0, 4000 },
        { "missing value", "<ALLSETTINGS><SETTING ID=\"glb_stt\"/><SETTING ID=\"glb_ogl\" Value=\"7\"/></ALLSETTINGS>", 0, 880, 7, 0, 880 },
        { "unknown ids and tags", "<ALLSETTINGS><SETTING ID=\"GLB_WSZ\" Value=\"999\"/><OTHER ID=\"glb_col\" Value=\"1\"/>"
                                  "<SETTING ID=\"glb_col\" Value=\"1\"/></ALLSETTINGS>", 1, 880, 0, 1, 880 },
        { "truncated", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"12", 1, 880, 0, 0, 880 },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.name);
        settingsFile().deleteFile();
        if (c.content != nullptr)
            writeSettings (c.content);
        const auto s = storedSettings();
        EXPECT_EQ (std::vector<int> ({ s.showTooltips, s.windowWidth, s.useOpenGL, s.setColours }),
                   std::vector<int> ({ c.tooltips, c.width, c.openGL, c.colours }));

        auto& ed = openEditor();
        EXPECT_EQ (ed.getLocalBounds(), juce::Rectangle<int> (c.editorWidth, (int) ((float) c.editorWidth * 0.55227274f)));
        // The panel is laid out at 880 and scaled as a whole to cover the editor.
        EXPECT_EQ (panel().getBounds(), juce::Rectangle<int> (0, 0, 880, 486));
        EXPECT_FLOAT_EQ (panel().getTransform().mat00, (float) c.editorWidth / 880.0f);
        ed.createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
        ed.setSize (880, 486);
        closeEditor();
        EXPECT_EQ (storedSettings().windowWidth, 880) << "closing writes a clean file again";
    }

    // A width the user chose is the next editor's width.
    openEditor().setSize (1500, 828);
    closeEditor();
    EXPECT_EQ (openEditor().getLocalBounds(), juce::Rectangle<int> (1500, 828));
}

TEST_F (EditorFixture, HostResizeKeepsTheAspectAndThePanelPaintsAtEveryScale)
{
    auto& ed = openEditor();
    for (const auto& [width, height, expectedHeight] : { std::tuple (1000, 700, 552), std::tuple (440, 100, 243), std::tuple (3520, 10, 1944),
                                                         std::tuple (880, 486, 486), std::tuple (1760, 0, 972) })
    {
        ed.setSize (width, height);
        EXPECT_EQ (ed.getHeight(), expectedHeight);
        EXPECT_FLOAT_EQ (panel().getTransform().mat00, (float) width / 880.0f);
        // The background picture covers the editor's blue fill everywhere.
        const auto image = ed.createComponentSnapshot (ed.getLocalBounds(), true, 1.0f);
        for (const auto& p : std::array<juce::Point<int>, 3> { { { 2, 2 }, { width / 2, expectedHeight / 2 }, { width - 3, expectedHeight - 3 } } })
            EXPECT_NE (image.getPixelAt (p.x, p.y).getARGB(), 0xff0000ffu) << width << " at " << p.toString();
    }

    // A host that forces its own size without telling the editor gets the remembered size back.
    ed.setSize (1320, 729);
    ed.setBounds (0, 0, 900, 300);
    panel().scaledWidth = 1320;
    panel().timerCallback();
    EXPECT_EQ (ed.getBounds(), juce::Rectangle<int> (0, 0, 1320, 729));
}

TEST_F (EditorFixture, TwoInstancesPanelsKeepTheirOwnLookAndTooltipsWhicheverCloses)
{
    // What a user sees of a panel's look: the look-and-feels its controls draw with, and the font and
    // box of a value text.
    const auto lookOf = [] (MainWindow& w)
    {
        auto& time = *w.sliders[ParameterIndex::time];
        const auto* box = dynamic_cast<juce::Label*> (time.getChildComponent (time.getNumChildComponents() - 1));
        return std::make_tuple (&time.getLookAndFeel(), &w.presetsToolbar.nameButton.getLookAndFeel(), box->getFont().getHeight(), box->getBounds());
    };
    TestProcessor second;
    for (const bool firstClosesFirst : { true, false })
    {
        openEditor();
        std::unique_ptr<PelvaneAudioProcessorEditor> other (dynamic_cast<PelvaneAudioProcessorEditor*> (second.processor->createEditor()));
        auto& stays = firstClosesFirst ? *other : *editor;
        auto& w = *stays.getMainWindow();
        auto& closing = firstClosesFirst ? *editor->getMainWindow() : *other->getMainWindow();
        const auto before = lookOf (w);
        EXPECT_TRUE (std::get<0> (before) == w.defaultLookAndFeel.get() && juce::approximatelyEqual (std::get<2> (before), 20.0f)) << firstClosesFirst;

        // Each panel's tooltips switch governs its own panel only.
        closing.tooltipsButton.triggerClick();
        pump();
        EXPECT_FALSE (closing.tooltips.shows (*closing.sliders[ParameterIndex::time]));
        EXPECT_TRUE (w.tooltips.shows (*w.sliders[ParameterIndex::time]));
        EXPECT_FALSE (w.tooltips.shows (*closing.sliders[ParameterIndex::time])) << "another panel's tip";

        // Closing one panel changes the process default; an on-screen panel hears of it as this one does.
        firstClosesFirst ? closeEditor() : other.reset();
        stays.sendLookAndFeelChange();
        EXPECT_EQ (lookOf (w), before);
        EXPECT_EQ (&juce::LookAndFeel::getDefaultLookAndFeel(), w.defaultLookAndFeel.get());
        firstClosesFirst ? other.reset() : closeEditor();
        EXPECT_EQ (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr)
            << "the process default never points at a panel that has gone";
    }
}

TEST_F (EditorFixture, BrandBarShowsTheBuildDateWithoutAPaddedDay)
{
    for (const auto& [compiler, shown] : { std::pair ("Mar  9 2025", "9 Mar 2025"), std::pair ("Dec 25 2024", "25 Dec 2024") })
        EXPECT_EQ (MainWindow::displayDate (compiler), shown);
    openEditor();
    const auto date = panel().brandBar.versionText.fromFirstOccurrenceOf ("[", false, false).upToFirstOccurrenceOf ("]", false, false);
    EXPECT_TRUE (juce::CharacterFunctions::isDigit (date[0]) && ! date.contains ("  ") && date.length() >= 10) << date;
}

// On a screen, the panel's tooltip window (which polls the mouse) exists only while the mouse is over
// the panel, and serves the control under it.
TEST_F (EditorFixture, OnScreenTheTooltipWindowComesWithTheMouseAndGoesWithIt)
{
    if (juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isEmpty())
        GTEST_SKIP() << "needs an X display";
    const HostEnvironment lenientXErrors;
    auto& shown = openEditor();
    // Away from the screen's corner, where the pointer outside the panel rests.
    shown.setTopLeftPosition (200, 200);
    shown.addToDesktop (0);
    shown.setVisible (true);
    pump (300);
    // The pointer moved, and the move as the window system reports it to the panel's window.
    const auto moveMouseTo = [&shown] (juce::Point<float> position)
    {
        juce::Desktop::getInstance().getMainMouseSource().setScreenPosition (shown.localPointToGlobal (position));
        shown.getPeer()->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse, position, {},
                                           juce::MouseInputSource::defaultPressure, juce::MouseInputSource::defaultOrientation,
                                           juce::Time::currentTimeMillis());
    };
    const juce::Point<float> outside { -150.0f, -150.0f };
    moveMouseTo (outside);
    pump (300);
    EXPECT_EQ (panel().tooltips.getWindow(), nullptr);

    auto& knob = *panel().sliders[ParameterIndex::time];
    moveMouseTo (shown.getLocalPoint (&knob, knob.getLocalBounds().getCentre()).toFloat());
    pump (300);
    auto* window = panel().tooltips.getWindow();
    ASSERT_NE (window, nullptr);
    EXPECT_TRUE (panel().tooltips.shows (knob) && knob.getTooltip().isNotEmpty());
    auto& nextKnob = *panel().sliders[ParameterIndex::rate];
    moveMouseTo (shown.getLocalPoint (&nextKnob, nextKnob.getLocalBounds().getCentre()).toFloat());
    pump (100);
    EXPECT_EQ (panel().tooltips.getWindow(), window) << "from control to control the same window serves";
    moveMouseTo (outside);
    pump (300);
    EXPECT_EQ (panel().tooltips.getWindow(), nullptr);
}
