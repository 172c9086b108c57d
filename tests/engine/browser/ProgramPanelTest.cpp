// SPDX-License-Identifier: AGPL-3.0-or-later
// The program panel saves the loaded program over its own file or into a new one, offers each save
// only when it makes sense, and says why in its hint line.
#include "BrowserFixture.h"

namespace
{
int countOf (const std::vector<juce::String>& names, const juce::String& name)
{
    return (int) std::count (names.begin(), names.end(), name);
}
} // namespace

TEST_F (BrowserFixture, SaveNewChecksTheNameAsTypedAndNeverOverwritesAFile)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann");
    writePreset ("b.xml", "Bravo", "Bass", "Bob");
    openEditor();
    manager().selectPreset (0);
    panel().sliders[(size_t) ParameterIndex::volume]->setValue (0.77, juce::sendNotificationSync);
    tick();

    click (toolbar().saveButton);
    auto& program = programPanel();
    ASSERT_TRUE (program.isVisible());
    EXPECT_EQ (program.hint.getText(), "To save a new preset copy, edit the name");

    struct Case { const char* typed; const char* hint; bool saveNew; bool update; };
    const Case cases[] = {
        { "Bravo", "Another preset already has this name", false, false },
        { "Alpha", "Another preset already has this name", false, false }, // its own name is taken too
        { "bravo", "Filename for save new will be: bravo", true, true },   // names compare with case
        { "Pad: \"1\"?", "Filename for save new will be: Pad 1", true, true },
        { " a/b ", "Filename for save new will be: a/b", true, true },
        { "", "Filename for save new will be: ", true, true },              // an empty name is accepted
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.typed);
        enterText (*program.nameProperty, c.typed);
        EXPECT_EQ (program.hint.getText(), c.hint);
        EXPECT_EQ (program.saveNewButton.isEnabled(), c.saveNew);
        EXPECT_EQ (program.updateButton.isEnabled(), c.update);
    }
    // While the name is taken, editing another field offers no update either.
    enterText (*program.nameProperty, "Bravo");
    enterText (*program.typeProperty, "Keys");
    EXPECT_FALSE (program.updateButton.isEnabled());

    enterText (*program.nameProperty, "  Lead  ");
    EXPECT_EQ (program.nameProperty->getText(), "Lead") << "the name is stored trimmed";
    click (program.saveNewButton);
    const auto lead = library().getChildFile ("Lead.xml");
    const auto saved = juce::XmlDocument::parse (lead);
    ASSERT_NE (saved, nullptr);
    EXPECT_EQ (saved->getChildElement (0)->getStringAttribute ("NAME"), "Lead");
    EXPECT_EQ (saved->getChildByName ("NOTES")->getStringAttribute ("TEXT"), "notes of Alpha");
    EXPECT_NEAR (saved->getChildByAttribute ("id", "volume")->getDoubleAttribute ("value"), 0.77, 1e-6);
    EXPECT_FALSE (program.saveNewButton.isEnabled()) << "one click saves once";

    // A rescan finds the file once and renames nothing.
    const auto bytes = lead.loadFileAsString();
    manager().reload();
    EXPECT_EQ (countOf (listedNames(), "Lead"), 1);
    EXPECT_EQ (lead.loadFileAsString(), bytes);

    // A second name that maps onto the same file name gets a bracket number; nothing is overwritten.
    enterText (*program.nameProperty, "Lead?");
    EXPECT_EQ (program.hint.getText(), "Filename for save new will be: Lead");
    click (program.saveNewButton);
    EXPECT_TRUE (library().getChildFile ("Lead(2).xml").existsAsFile());
    EXPECT_EQ (lead.loadFileAsString(), bytes);
    EXPECT_EQ (countOf (listedNames(), "Lead?"), 1);
    EXPECT_EQ (library().findChildFiles (juce::File::findFiles, true, "*").size(), 4) << "no temporary file is left";
}

TEST_F (BrowserFixture, UpdateRewritesTheLoadedPresetInItsOwnFile)
{
    const auto bravo = writePreset ("b.xml", "Bravo", "Bass", "Bob", { { "volume", "0.2" } });
    openEditor();
    manager().selectPreset (0);

    auto& program = programPanel();
    click (toolbar().saveButton);
    EXPECT_FALSE (program.updateButton.isEnabled()) << "nothing edited yet";
    EXPECT_FALSE (program.saveNewButton.isEnabled()) << "the program has a file";
    click (program.closeButton);
    EXPECT_FALSE (program.isVisible());

    panel().sliders[(size_t) ParameterIndex::volume]->setValue (0.65, juce::sendNotificationSync);
    tick();
    ASSERT_TRUE (manager().getCurrentProgram().isModified);

    click (toolbar().saveButton);
    EXPECT_TRUE (program.updateButton.isEnabled());
    EXPECT_FALSE (program.saveNewButton.isEnabled());
    enterText (*program.typeProperty, "Keys");
    enterText (*program.notesProperty, "warm & <round>");
    click (program.updateButton);

    EXPECT_EQ (library().findChildFiles (juce::File::findFiles, true, "*").size(), 1) << "same file, no leftovers";
    const auto saved = juce::XmlDocument::parse (bravo);
    ASSERT_NE (saved, nullptr);
    EXPECT_EQ (saved->getChildElement (0)->getStringAttribute ("NAME"), "Bravo");
    EXPECT_EQ (saved->getChildElement (0)->getStringAttribute ("TYPE"), "Keys");
    EXPECT_EQ (saved->getChildByName ("NOTES")->getStringAttribute ("TEXT"), "warm & <round>");
    EXPECT_NEAR (saved->getChildByAttribute ("id", "volume")->getDoubleAttribute ("value"), 0.65, 1e-6);
    EXPECT_EQ (saved->getNumChildElements(), numParameters + 2);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Bravo" }));
    EXPECT_EQ (manager().getPresets()[0]->type, "Keys");

    // After the reload the program belongs to no file until a preset is selected again: it can be saved
    // as a new preset, but no edit of its fields offers an update over another file.
    click (program.closeButton);
    click (toolbar().saveButton);
    EXPECT_TRUE (program.saveNewButton.isEnabled());
    EXPECT_FALSE (program.updateButton.isEnabled());
    for (auto* property : { program.typeProperty, program.nameProperty, program.authorProperty })
    {
        enterText (*property, "Changed " + property->getName());
        EXPECT_FALSE (program.updateButton.isEnabled()) << property->getName();
    }
}
