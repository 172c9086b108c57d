// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor opens at the remembered width with the panel's aspect, whatever the settings file holds,
// follows host resizes, paints at every scale, and leaves no look behind when it closes.
#include "EditorFixture.h"

namespace
{
float panelScale (MainWindow& panel) { return panel.getTransform().mat00; }
} // namespace

TEST_F (EditorFixture, OpensAtTheRememberedWidthWithThePanelAspect)
{
    struct Case { const char* stored; int width; int height; };
    const Case cases[] = {
        { nullptr, 880, 486 }, { "440", 440, 243 }, { "1320", 1320, 729 }, { "3520", 3520, 1944 }, { "1200", 1200, 662 },
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
        // The panel is laid out at 880 and scaled as a whole to cover the editor.
        EXPECT_EQ (panel().getBounds(), juce::Rectangle<int> (0, 0, 880, 486));
        EXPECT_FLOAT_EQ (panelScale (panel()), (float) c.width / 880.0f);
        EXPECT_EQ (panel().getBoundsInParent().getWidth(), c.width);
        closeEditor();
    }

    // A width the user chose is the next editor's width.
    openEditor().setSize (1500, 828);
    closeEditor();
    EXPECT_EQ (openEditor().getWidth(), 1500);
    EXPECT_EQ (editor->getHeight(), 828);
}

TEST_F (EditorFixture, BrokenSettingsFilesGiveDefinedValuesAndAUsableEditor)
{
    // The file as found, what the record reads from it, and the width the editor opens at.
    struct Case { const char* name; const char* content; int tooltips, width, openGL, colours, editorWidth; };
    const Case cases[] = {
        { "no file", nullptr, 1, 880, 0, 0, 880 },
        { "empty", "", 1, 880, 0, 0, 880 },
        { "not xml", "\x01\x02 not <<< xml >", 1, 880, 0, 0, 880 },
        { "wrong root", "<SETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></SETTINGS>", 1, 880, 0, 0, 880 },
        { "width only", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></ALLSETTINGS>", 1, 1200, 0, 0, 1200 },
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
        ed.createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
        ed.setSize (880, 486);
        closeEditor();

        EXPECT_EQ (storedSettings().windowWidth, 880) << "closing writes a clean file again";
    }
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
        EXPECT_EQ (ed.getWidth(), c.width);
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
    EXPECT_EQ (ed.getWidth(), 1320);
    EXPECT_EQ (ed.getHeight(), 729);
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
        // The process default look-and-feel never points at a panel that has gone.
        EXPECT_EQ (dynamic_cast<velkaro::DromelleLookAndFeel_V1*> (&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
    }
}
