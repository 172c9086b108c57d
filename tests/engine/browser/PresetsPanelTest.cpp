// SPDX-License-Identifier: AGPL-3.0-or-later
// The browser's table collects edits of many presets and writes them all at once; each file stays a
// whole preset, a refused name never becomes an edit, and a rebuilt tree starts a new filter.
#include "BrowserFixture.h"

#include "presets/FilterTreeItem.h"
#include "presets/PresetColours.h"

using Column = velkaro::PresetsMetadataTable::ColumnIds;

TEST_F (BrowserFixture, BulkEditOfTypeAndAuthorLeavesEveryFileWhole)
{
    const char* names[] = { "Alpha", "Bravo", "Charlie", "Delta", "Echo" };
    const auto volumeOf = [] (int i) { return ValueTexts { { "volume", juce::String (0.1 * (i + 1)) } }; };
    std::vector<juce::File> files;
    for (int i = 0; i < 5; ++i)
        files.push_back (writePreset (juce::String (i) + ".xml", names[i], "Pad", "Ann", volumeOf (i)));

    openEditor();
    click (toolbar().nameButton);
    auto& table = browser().table;
    ASSERT_EQ (table.getNumRows(), 5);

    for (const int row : { 0, 1, 2 })
        editCell (row, Column::typeColumn, "Keys");
    for (const int row : { 2, 3, 4 })
        editCell (row, Column::authorColumn, "  Zed ");
    EXPECT_EQ (table.getCellText (2, Column::authorColumn), "Zed") << "typed text is trimmed";
    EXPECT_TRUE (browser().unsavedLabel.isVisible());
    const auto untouched = snapshotFiles (library());

    // Filtering and closing the browser keep the pending edits.
    auto& types = *browser().filterTree.root->getSubItem (0);
    types.getSubItem (0)->setSelected (true, true);
    EXPECT_EQ (table.getNumRows(), 5);
    click (browser().closeButton);
    click (toolbar().nameButton);
    EXPECT_EQ (table.edits.size(), 5u);
    EXPECT_EQ (snapshotFiles (library()), untouched) << "nothing is written before save changes";

    click (browser().saveChangesButton);

    EXPECT_TRUE (table.edits.empty());
    EXPECT_FALSE (browser().unsavedLabel.isVisible());
    EXPECT_FALSE (manager().hasActiveFilter()) << "the whole library shows again";
    EXPECT_EQ (library().findChildFiles (juce::File::findFiles, true, "*").size(), 5) << "no temporary file is left";

    // Each file holds the whole preset with only its two fields changed.
    for (int i = 0; i < 5; ++i)
    {
        const auto expected = makePresetXml (names[i], i <= 2 ? "Keys" : "Pad", i >= 2 ? "Zed" : "Ann", volumeOf (i));
        EXPECT_EQ (files[(size_t) i].loadFileAsString(), expected->toString (velkaro::Preset::fileFormat())) << names[i];
    }
    EXPECT_EQ (manager().authors, (std::set<juce::String> { "Ann", "Zed" }));

    // The rebuilt tree marks nothing, and a click filters by that row alone: "Pad" does not come back.
    browser().filterTree.root->getSubItem (1)->getSubItem (0)->setSelected (true, true);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Bravo" }));
}

TEST_F (BrowserFixture, ARefusedNameWaitsForItsCorrectionAndNeverClosesALaterEdit)
{
    writePreset ("a.xml", "Alpha", "", "");
    writePreset ("b.xml", "Bravo", "", "");
    openEditor();
    click (toolbar().nameButton);
    auto& table = browser().table;
    auto& cell = table.editor;
    EXPECT_EQ (dynamic_cast<velkaro::FilterTreeItem*> (browser().filterTree.root->getSubItem (1)->getSubItem (0))->text,
               juce::String (juce::CharPointer_UTF8 ("\xc2\xab None \xc2\xbb")));

    struct Case { int column; const char* typed; bool refused; };
    const Case cases[] = {
        { Column::nameColumn, "Bravo", true },
        { Column::nameColumn, "Alpha", true }, // its own name
        { Column::nameColumn, "alpha", false },
        { Column::notesColumn, "Bravo", false }, // notes may say anything
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.typed);
        table.edits.clear();
        editCell (0, c.column, c.typed);
        EXPECT_EQ (table.message.isVisible() && table.message.getText() == "Another preset already has this name", c.refused);
        EXPECT_EQ (cell.isBeingEdited(), c.refused) << "a refused text stays on show";
        EXPECT_EQ (table.edits.empty(), c.refused);
        if (c.refused)
        {
            cell.timerCallback();
            EXPECT_FALSE (cell.isBeingEdited() || table.message.isVisible());
            EXPECT_TRUE (table.edits.empty()) << "the refused text is thrown away";
        }
        else
            EXPECT_EQ (table.getCellText (0, c.column), c.typed);
    }

    // Refused, then corrected while the refusal counts: the correction is taken at once, and a cell
    // opened next stays open past the refusal's time for as long as the user types.
    const auto typeAndReturn = [&cell] (const juce::String& text)
    {
        cell.getCurrentTextEditor()->setText (text, false);
        cell.textEditorReturnKeyPressed (*cell.getCurrentTextEditor());
    };
    editCell (1, Column::nameColumn, "Alpha");
    ASSERT_TRUE (cell.isBeingEdited());
    typeAndReturn ("Bravissimo");
    EXPECT_EQ (table.getCellText (1, Column::nameColumn), "Bravissimo");
    EXPECT_FALSE (table.message.isVisible());
    const auto now = juce::Time::getCurrentTime();
    table.cellDoubleClicked (0, Column::authorColumn, { juce::Desktop::getInstance().getMainMouseSource(), {}, {}, 0, 0, 0, 0, 0,
                                                        &table.table, &table.table, now, {}, now, 2, false });
    pump (velkaro::PresetsMetadataTable::refusalMs + 300);
    ASSERT_TRUE (cell.isBeingEdited()) << "the refusal's timer closed a later edit";
    typeAndReturn ("Ann");
    EXPECT_EQ (table.getCellText (0, Column::authorColumn), "Ann");
}

TEST_F (BrowserFixture, SnapshotOfTheOpenPresetsPanel)
{
    writePreset ("01 Glass Bells.xml", "Glass Bells", "Keys", "Ann", { { "volume", "0.7" } });
    writePreset ("02 Night Drone.xml", "Night Drone", "Pad", "Bob");
    writePreset ("03 Rubber Bass.xml", "Rubber Bass", "Bass", "Ann");
    writePreset ("04 Tin Choir.xml", "Tin Choir", "Pad", "");
    writePreset ("05 Soft Reed.xml", "Soft Reed", "Lead", "Cyd");
    openEditor();
    click (toolbar().nameButton);
    click (toolbar().nextButton);
    editCell (3, Column::authorColumn, "Dee");
    juce::Desktop::getInstance().getAnimator().cancelAllAnimations (true);

    auto& p = panel();
    const auto image = p.createComponentSnapshot (p.getLocalBounds(), true, 2.0f);
    ASSERT_TRUE (image.isValid());

    // The strip along the top has the browser's edge colour, and the toolbar stays below the browser.
    const auto edge = browser().findColour (velkaro::presetPanelEdgeColourId);
    EXPECT_EQ (image.getPixelAt (400, 1).toDisplayString (false), edge.toDisplayString (false));
    EXPECT_EQ (browser().getBottom(), toolbar().getY());

    // The picture for the README goes to the home folder the tests were started with.
    juce::MemoryOutputStream png;
    ASSERT_TRUE (juce::PNGImageFormat().writeImageToStream (image, png));
    const auto out = juce::File (home.previous).getChildFile ("presets-panel.png");
    out.getParentDirectory().createDirectory();
    EXPECT_TRUE (out.replaceWithData (png.getData(), png.getDataSize()));
}
