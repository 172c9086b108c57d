// SPDX-License-Identifier: AGPL-3.0-or-later
// The settings file: what is written, what is read back, and what broken files give. Whatever a
// file holds, the editor opens, paints and closes.
#include "EditorFixture.h"

TEST_F (EditorFixture, SettingsFileRoundTrip)
{
    GlobalSettings written;
    written.dataFolder = processor().dataFolder;
    written.showTooltips = 0;
    written.windowWidth = 1234;
    written.useOpenGL = 1;
    written.setColours = 1;
    ASSERT_TRUE (written.write());

    EXPECT_EQ (settingsFile().getFileName(), "ondrivelSettings.xml");
    EXPECT_EQ (settingsFile().getParentDirectory().getFileName(), "Velkaro Data");
    const auto text = settingsFile().loadFileAsString();
    EXPECT_TRUE (text.contains ("<ALLSETTINGS>"));
    EXPECT_TRUE (text.contains ("<SETTING ID=\"glb_wsz\" Value=\"1234\">Window Width</SETTING>"));
    EXPECT_TRUE (text.contains ("<SETTING ID=\"glb_stt\" Value=\"0\">Show Tool Tips</SETTING>"));
    EXPECT_TRUE (text.contains ("\r\n"));
    EXPECT_LT (text.indexOf ("glb_stt"), text.indexOf ("glb_wsz"));
    EXPECT_LT (text.indexOf ("glb_ogl"), text.indexOf ("glb_col"));

    GlobalSettings read;
    read.dataFolder = processor().dataFolder;
    read.read();
    EXPECT_EQ (read.showTooltips, 0);
    EXPECT_EQ (read.windowWidth, 1234);
    EXPECT_EQ (read.useOpenGL, 1);
    EXPECT_EQ (read.setColours, 1);

    // Without a data folder nothing is read or written.
    GlobalSettings detached;
    detached.windowWidth = 5;
    detached.read();
    EXPECT_EQ (detached.windowWidth, 5);
}

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

        GlobalSettings s;
        s.dataFolder = processor().dataFolder;
        s.read();
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

        // Closing writes a clean file again.
        GlobalSettings after;
        after.dataFolder = processor().dataFolder;
        after.read();
        EXPECT_EQ (after.windowWidth, 880);
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
    EXPECT_FALSE (panel().pictureButton.getToggleState());
    EXPECT_EQ (panel().backgroundImage.getPixelAt (1, 1), juce::Colours::green);
    panel().pictureButton.setToggleState (true, juce::sendNotificationSync);
    EXPECT_EQ (panel().backgroundImage.getPixelAt (1, 1), juce::Colours::red);
    EXPECT_EQ (savedBackgroundFile().loadFileAsString(), "picture_key.png");

    // A picture that has gone falls back to the embedded one.
    resources.getChildFile ("plain_key.png").deleteFile();
    panel().pictureButton.setToggleState (false, juce::sendNotificationSync);
    EXPECT_EQ (panel().backgroundImage.getWidth(), 1760);
    closeEditor();

    // A choice file naming a missing picture leaves only the plain fill; the panel still paints.
    resources.getChildFile ("picture_key.png").deleteFile();
    savedBackgroundFile().replaceWithText ("picture_key.png", false, false, nullptr);
    openEditor();
    EXPECT_FALSE (panel().backgroundImage.isValid());
    const auto snapshot = editor->createComponentSnapshot ({ 0, 0, 16, 16 }, true, 1.0f);
    EXPECT_EQ (snapshot.getPixelAt (4, 4), juce::Colour (0xff111144));
}
