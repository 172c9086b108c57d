// SPDX-License-Identifier: AGPL-3.0-or-later
// The program panel as a user works it: save, edit, save again, each write landing in the file the
// panel names, never over another preset, outside the library or nowhere without a word.
#include "BrowserFixture.h"

namespace
{
// An attribute of a preset file's child: the first of that tag, or the "PARAM" of that id.
juce::String attributeIn (const juce::File& file, const char* tagOrId, const char* attribute)
{
    const auto xml = juce::XmlDocument::parse (file);
    const auto* element = xml == nullptr ? nullptr : xml->getChildByName (tagOrId);
    if (xml != nullptr && element == nullptr)
        element = xml->getChildByAttribute ("id", tagOrId);
    return element != nullptr ? element->getStringAttribute (attribute) : "(none)";
}
} // namespace

TEST_F (BrowserFixture, SaveEditAndSaveAgainEachWriteLandsInTheFile)
{
    const auto alpha = writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", "0.2" } });
    writePreset ("b.xml", "Bravo", "Bass", "Bob");
    openEditor();
    manager().selectPreset (0);
    auto& program = programPanel();

    click (toolbar().saveButton);
    EXPECT_FALSE (program.updateButton.isEnabled()) << "nothing edited yet";
    EXPECT_FALSE (program.saveNewButton.isEnabled()) << "the program has a file";
    click (program.closeButton);

    panel().sliders[(size_t) ParameterIndex::volume]->setValue (0.65, juce::sendNotificationSync);
    tick();
    click (toolbar().saveButton);
    EXPECT_TRUE (program.updateButton.isEnabled());
    enterText (*program.typeProperty, "Keys");
    click (program.updateButton);
    EXPECT_EQ (attributeIn (alpha, "PROGRAM", "TYPE"), "Keys");
    EXPECT_NEAR (attributeIn (alpha, "volume", "value").getDoubleValue(), 0.65, 1e-6);
    EXPECT_FALSE (program.updateButton.isEnabled() || program.saveNewButton.isEnabled()) << "one click saves once";
    EXPECT_EQ (program.hint.getText(), "");

    // Another field edited after the save is offered and written too.
    enterText (*program.notesProperty, "warm & <round>");
    click (program.updateButton);
    EXPECT_EQ (attributeIn (alpha, "NOTES", "TEXT"), "warm & <round>");
    EXPECT_EQ (attributeIn (alpha, "PROGRAM", "NAME"), "Alpha");

    // The panel opens again on what was saved.
    click (program.closeButton);
    click (toolbar().saveButton);
    EXPECT_EQ (program.typeProperty->getText(), "Keys");
    EXPECT_EQ (program.notesProperty->getText(), "warm & <round>");

    // A new copy under a name that holds a separator: a file of the library, which the program now is.
    enterText (*program.nameProperty, "AC/DC");
    EXPECT_EQ (program.hint.getText(), "Filename for save new will be: ACDC.xml");
    click (program.saveNewButton);
    const auto acdc = library().getChildFile ("ACDC.xml");
    EXPECT_EQ (attributeIn (acdc, "PROGRAM", "NAME"), "AC/DC");
    EXPECT_EQ (toolbar().nameButton.getButtonText(), "AC/DC");
    enterText (*program.authorProperty, "Cid");
    click (program.updateButton);
    EXPECT_EQ (attributeIn (acdc, "PROGRAM", "AUTHOR"), "Cid");
    EXPECT_EQ (attributeIn (alpha, "PROGRAM", "AUTHOR"), "Ann");
    EXPECT_EQ (library().findChildFiles (juce::File::findFiles, true, "*").size(), 3) << "no temporary file is left";
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "AC/DC", "Bravo" }));
}

TEST_F (BrowserFixture, SaveNewMakesALibraryFileOfAnyNameAndSaysWhenItFails)
{
    // The state the plug-in started with has no file: it is offered under its own name at once, also
    // when it stands in for an empty library.
    openEditor();
    click (toolbar().saveButton);
    EXPECT_EQ (programPanel().hint.getText(), "Filename for save new will be: [init].xml");
    EXPECT_TRUE (programPanel().saveNewButton.isEnabled());

    writePreset ("a.xml", "Alpha", "Pad", "Ann");
    writePreset ("b.xml", "Bravo", "Bass", "Bob");
    openEditor();
    auto& program = programPanel();
    click (toolbar().saveButton);

    struct Case { const char* typed; const char* hint; };
    const Case cases[] = {
        { "Bravo", "Another preset already has this name" },
        { "bravo", "Filename for save new will be: bravo.xml" }, // names compare with case
        { "Pad: \"1\"?", "Filename for save new will be: Pad 1.xml" },
        { " ../x ", "Filename for save new will be: x.xml" },
        { "", "Filename for save new will be: untitled.xml" },
        { "Alpha", "Another preset already has this name" },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.typed);
        enterText (*program.nameProperty, c.typed);
        EXPECT_EQ (program.hint.getText(), c.hint);
        EXPECT_EQ (program.saveNewButton.isEnabled(), ! program.hint.getText().startsWith ("Another"));
        EXPECT_FALSE (program.updateButton.isEnabled()) << "no file to update";
    }

    // Two names of one file: the second gets a bracket number and the first stays as it was.
    enterText (*program.nameProperty, "  Lead  ");
    EXPECT_EQ (program.nameProperty->getText(), "Lead") << "the name is stored trimmed";
    click (program.saveNewButton);
    const auto lead = library().getChildFile ("Lead.xml");
    const auto bytes = lead.loadFileAsString();
    enterText (*program.nameProperty, "Lead?");
    EXPECT_EQ (program.hint.getText(), "Filename for save new will be: Lead(2).xml");
    click (program.saveNewButton);
    EXPECT_EQ (attributeIn (library().getChildFile ("Lead(2).xml"), "PROGRAM", "NAME"), "Lead?");
    EXPECT_EQ (lead.loadFileAsString(), bytes);
    EXPECT_EQ (library().getParentDirectory().findChildFiles (juce::File::findFiles, true, "*.xml").size(), 4);

    // A choice typed at an earlier opening and dropped enables nothing at the next.
    click (program.closeButton);
    manager().selectPreset (0);
    click (toolbar().saveButton);
    enterText (*program.nameProperty, "Zulu");
    click (program.closeButton);
    click (toolbar().saveButton);
    enterText (*program.typeProperty, "Keys");
    EXPECT_FALSE (program.saveNewButton.isEnabled());
    EXPECT_TRUE (program.updateButton.isEnabled());

    // A write that fails says so and keeps what was typed, for another try.
    enterText (*program.nameProperty, "Yankee");
    ASSERT_TRUE (library().deleteRecursively() && library().replaceWithText ("not a folder"));
    click (program.saveNewButton);
    EXPECT_EQ (program.hint.getText(), "failed!");
    EXPECT_EQ (program.nameProperty->getText(), "Yankee");
    EXPECT_TRUE (program.saveNewButton.isEnabled());
}
