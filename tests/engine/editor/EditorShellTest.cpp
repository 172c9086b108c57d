// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor opens at the remembered width with the panel's aspect, whatever the settings file holds,
// follows host resizes, paints at every scale, and keeps its own look beside another instance's panel.
#include "EditorFixture.h"

namespace
{
float panelScale (MainWindow& panel) { return panel.getTransform().mat00; }
} // namespace

TEST_F (EditorFixture, OpensAtTheRememberedWidthWhateverTheSettingsFileHolds)
{
    // The file as found, what the record reads from it, and the width the editor opens at.
    struct Case { const char* name; const char* content; int tooltips, width, openGL, colours, editorWidth; };
    const Case cases[] = {
        { "no file", nullptr, 1, 880, 0, 0, 880 },
        { "empty", "", 1, 880, 0, 0, 880 },
        { "not xml", "\x01\x02 not <<< xml >", 1, 880, 0, 0, 880 },
        { "wrong root", "<SETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></SETTINGS>", 1, 880, 0, 0, 880 },
        { "half", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"440\"/></ALLSETTINGS>", 1, 440, 0, 0, 440 },
        { "width only", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"1320\"/></ALLSETTINGS>", 1, 1320, 0, 0, 1320 },
        { "largest", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"3520\"/></ALLSETTINGS>", 1, 3520, 0, 0, 3520 },
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
        EXPECT_EQ (ed.getWidth(), c.editorWidth);
        EXPECT_EQ (ed.getHeight(), (int) ((float) c.editorWidth * 0.55227274f));
        // The panel is laid out at 880 and scaled as a whole to cover the editor.
        EXPECT_EQ (panel().getBounds(), juce::Rectangle<int> (0, 0, 880, 486));
        EXPECT_FLOAT_EQ (panelScale (panel()), (float) c.editorWidth / 880.0f);
        ed.createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
        ed.setSize (880, 486);
        closeEditor();
        EXPECT_EQ (storedSettings().windowWidth, 880) << "closing writes a clean file again";
    }

    // A width the user chose is the next editor's width.
    openEditor().setSize (1500, 828);
    closeEditor();
    EXPECT_EQ (openEditor().getWidth(), 1500);
    EXPECT_EQ (editor->getHeight(), 828);
}

TEST_F (EditorFixture, HostResizeKeepsTheAspectAndThePanelPaintsAtEveryScale)
{
    struct Case { int width; int height; int expectedHeight; };
    const Case cases[] = { { 1000, 700, 552 }, { 440, 100, 243 }, { 3520, 10, 1944 }, { 880, 486, 486 }, { 1760, 0, 972 } };
    auto& ed = openEditor();
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.width);
        ed.setSize (c.width, c.height);
        EXPECT_EQ (ed.getHeight(), c.expectedHeight);
        EXPECT_FLOAT_EQ (panelScale (panel()), (float) c.width / 880.0f);

        // The background picture covers the editor's blue fill everywhere.
        const auto image = ed.createComponentSnapshot (ed.getLocalBounds(), true, 1.0f);
        for (const auto& p : { juce::Point<int> (2, 2), juce::Point<int> (c.width / 2, image.getHeight() / 2),
                               juce::Point<int> (c.width - 3, image.getHeight() - 3) })
            EXPECT_NE (image.getPixelAt (p.x, p.y).getARGB(), 0xff0000ffu) << p.toString();
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
    // What a user sees of a panel's look: the look-and-feel its controls draw with, and the font and
    // box of a value text.
    const auto lookOf = [] (MainWindow& w)
    {
        juce::Label* box = nullptr;
        for (auto* child : w.sliders[ParameterIndex::time]->getChildren())
            if (auto* label = dynamic_cast<juce::Label*> (child))
                box = label;
        return std::make_tuple (&w.sliders[ParameterIndex::time]->getLookAndFeel(), &w.presetsToolbar.nameButton.getLookAndFeel(),
                                box->getFont().getHeight(), box->getBounds());
    };
    TestProcessor second;
    for (const bool firstClosesFirst : { true, false })
    {
        SCOPED_TRACE (firstClosesFirst ? "first closes first" : "second closes first");
        openEditor();
        std::unique_ptr<PelvaneAudioProcessorEditor> other (dynamic_cast<PelvaneAudioProcessorEditor*> (second.processor->createEditor()));
        auto& stays = firstClosesFirst ? *other : *editor;
        auto& w = *stays.getMainWindow();
        const auto before = lookOf (w);
        EXPECT_EQ (std::get<0> (before), w.defaultLookAndFeel.get());
        EXPECT_EQ (std::get<2> (before), 20.0f);

        // Each panel's tooltips switch governs its own panel only.
        auto& otherWindow = firstClosesFirst ? *editor->getMainWindow() : *other->getMainWindow();
        otherWindow.tooltipsButton.triggerClick();
        pump();
        EXPECT_FALSE (otherWindow.tooltipWindow.shows (*otherWindow.sliders[ParameterIndex::time]));
        EXPECT_TRUE (w.tooltipWindow.shows (*w.sliders[ParameterIndex::time]));
        EXPECT_FALSE (w.tooltipWindow.shows (*otherWindow.sliders[ParameterIndex::time])) << "another panel's tip";
        otherWindow.tooltipsButton.triggerClick();
        pump();

        // Closing one panel changes the process default; an on-screen panel hears of it as this does.
        if (firstClosesFirst)
            closeEditor();
        else
            other.reset();
        stays.sendLookAndFeelChange();
        EXPECT_EQ (lookOf (w), before);
        EXPECT_EQ (&juce::LookAndFeel::getDefaultLookAndFeel(), w.defaultLookAndFeel.get());
        stays.createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
        if (firstClosesFirst)
            other.reset();
        else
            closeEditor();
        // The process default never points at a panel that has gone.
        EXPECT_EQ (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
    }
}

TEST_F (EditorFixture, BrandBarShowsTheBuildDateWithoutAPaddedDay)
{
    const std::pair<const char*, const char*> cases[] = { { "Mar  9 2025", "9 Mar 2025" }, { "Jan  1 2026", "1 Jan 2026" },
                                                          { "Dec 25 2024", "25 Dec 2024" }, { "Oct 10 2030", "10 Oct 2030" } };
    for (const auto& [compiler, shown] : cases)
        EXPECT_EQ (MainWindow::displayDate (compiler), shown) << compiler;
    openEditor();
    EXPECT_TRUE (panel().brandBar.versionText.contains (" [" + MainWindow::displayDate (__DATE__) + "] "));
    EXPECT_FALSE (panel().brandBar.versionText.trimEnd().contains ("  "));
}
