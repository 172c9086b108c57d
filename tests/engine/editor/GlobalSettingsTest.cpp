// SPDX-License-Identifier: AGPL-3.0-or-later
// What broken settings files give, and the remembered background picture. Whatever a file holds, the
// editor opens, paints and closes.
#include "EditorFixture.h"

TEST_F (EditorFixture, BrokenSettingsFilesGiveDefinedValuesAndAUsableEditor)
{
    struct Case
    {
        const char* name;
        const char* content; // nullptr: no file
        int tooltips, width, openGL, colours;
        int editorWidth;
    };
    const Case cases[] = {
        { "no file", nullptr, 1, 880, 0, 0, 880 },
        { "empty", "", 1, 880, 0, 0, 880 },
        { "not xml", "\x01\x02 not <<< xml >", 1, 880, 0, 0, 880 },
        { "wrong root", "<SETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></SETTINGS>", 1, 880, 0, 0, 880 },
        { "no child", "<ALLSETTINGS/>", 1, 880, 0, 0, 880 },
        { "width only", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"1200\"/></ALLSETTINGS>", 1, 1200, 0, 0, 1200 },
        { "not a number", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"wide\"/></ALLSETTINGS>", 1, 0, 0, 0, 880 },
        { "leading digits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\" 1500px\"/></ALLSETTINGS>", 1, 1500, 0, 0, 1500 },
        { "negative", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"-20\"/></ALLSETTINGS>", 1, -20, 0, 0, 880 },
        { "below limits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"100\"/></ALLSETTINGS>", 1, 100, 0, 0, 100 },
        { "above limits", "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"4000\"/></ALLSETTINGS>", 1, 4000, 0, 0, 4000 },
        { "missing value", "<ALLSETTINGS><SETTING ID=\"glb_stt\"/><SETTING ID=\"glb_ogl\" Value=\"7\"/></ALLSETTINGS>", 0, 880, 7, 0, 880 },
        { "unknown ids and tags",
          "<ALLSETTINGS><SETTING ID=\"GLB_WSZ\" Value=\"999\"/><OTHER ID=\"glb_col\" Value=\"1\"/>"
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
        EXPECT_EQ (s.showTooltips, c.tooltips);
        EXPECT_EQ (s.windowWidth, c.width);
        EXPECT_EQ (s.useOpenGL, c.openGL);
        EXPECT_EQ (s.setColours, c.colours);

        auto& ed = openEditor();
        EXPECT_EQ (ed.getWidth(), c.editorWidth);
        EXPECT_EQ (ed.getHeight(), (int) ((float) c.editorWidth * 0.55227274f));
        ed.createComponentSnapshot ({ 0, 0, 32, 32 }, true, 0.5f);
        ed.setSize (880, 486);
        closeEditor();

        EXPECT_EQ (storedSettings().windowWidth, 880) << "closing writes a clean file again";
    }
}

TEST_F (EditorFixture, BackgroundPictureChoiceIsRemembered)
{
    const auto resources = bundleResourcesFolder();
    resources.createDirectory();
    const auto writeSwatch = [&resources] (const char* name, juce::Colour colour)
    {
        juce::Image image (juce::Image::ARGB, 8, 8, false);
        image.clear (image.getBounds(), colour);
        const auto file = resources.getChildFile (name);
        file.deleteFile();
        juce::FileOutputStream out (file);
        juce::PNGImageFormat().writeImageToStream (image, out);
    };
    writeSwatch ("picture_key.png", juce::Colours::red);
    writeSwatch ("plain_key.png", juce::Colours::green);

    // A fresh install: an empty choice file, the embedded picture, the button on.
    openEditor();
    EXPECT_TRUE (savedBackgroundFile().existsAsFile());
    EXPECT_TRUE (panel().pictureButton.getToggleState());
    EXPECT_EQ (panel().backgroundImage.getWidth(), 1760);

    panel().pictureButton.setToggleState (false, juce::sendNotificationSync);
    EXPECT_EQ (savedBackgroundFile().loadFileAsString(), "plain_key.png");
    EXPECT_EQ (panel().backgroundImage.getPixelAt (1, 1), juce::Colours::green);
    closeEditor();

    openEditor();
    EXPECT_FALSE (panel().pictureButton.getToggleState()) << "the choice is remembered";
    EXPECT_EQ (panel().backgroundImage.getPixelAt (1, 1), juce::Colours::green);
    closeEditor();

    // A choice file naming a missing picture leaves only the plain fill; the panel still paints.
    resources.getChildFile ("picture_key.png").deleteFile();
    savedBackgroundFile().replaceWithText ("picture_key.png", false, false, nullptr);
    openEditor();
    EXPECT_FALSE (panel().backgroundImage.isValid());
    const auto snapshot = editor->createComponentSnapshot ({ 0, 0, 16, 16 }, true, 1.0f);
    EXPECT_EQ (snapshot.getPixelAt (4, 4), juce::Colour (0xff111144));
}
