// SPDX-License-Identifier: AGPL-3.0-or-later
// The browser: the toolbar's arrows step through the library and inside a filter with the table's
// highlight following; the table collects edits of many presets and writes them all at once, each file
// staying a whole preset; a refused name never becomes an edit; a rebuilt tree starts a new filter.
#include "BrowserFixture.h"

#include "presets/FilterTreeItem.h"

using Column = velkaro::PresetsMetadataTable::ColumnIds;

namespace
{
velkaro::FilterTreeItem& treeRow (velkaro::FilterTree& tree, int heading, int row)
{
    return *dynamic_cast<velkaro::FilterTreeItem*> (tree.root->getSubItem (heading)->getSubItem (row));
}
} // namespace

TEST_F (BrowserFixture, ArrowsStepThroughTheLibraryAndInsideAFilter)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", "0.1" } });
    writePreset ("b.xml", "Bravo", "Bass", "Bob", { { "volume", "0.2" } });
    writePreset ("sub/c.xml", "Charlie", "Pad", "Bob", { { "volume", "0.3" } });
    writePreset ("d.xml", "Delta", "Lead", "Cyd", { { "volume", "0.4" } });

    openEditor();
    // The arrows are their own UTF-8 characters, not the bytes of them read as Latin-1.
    EXPECT_EQ (toolbar().previousButton.getButtonText(), juce::String (juce::CharPointer_UTF8 ("\xc2\xab")));
    EXPECT_EQ (toolbar().nextButton.getButtonText(), juce::String (juce::CharPointer_UTF8 ("\xc2\xbb")));
    ASSERT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Bravo", "Delta", "Charlie" }));

    // Each step: the arrow, the preset it loads, and the table row then highlighted (-1: browser closed).
    struct Step { bool next; const char* name; float volume; int row = -1; };
    const auto play = [this] (std::initializer_list<Step> steps)
    {
        for (const auto& step : steps)
        {
            click (step.next ? toolbar().nextButton : toolbar().previousButton);
            EXPECT_EQ (toolbar().nameButton.getButtonText(), step.name);
            EXPECT_FLOAT_EQ (plainValue ("volume"), step.volume) << step.name;
            if (step.row >= 0)
                EXPECT_EQ (browser().table.table.getSelectedRow(), step.row) << "the table follows the arrows";
        }
    };
    play ({ { false, "Charlie", 0.3f }, // nothing selected: back to the last entry
            { true, "Alpha", 0.1f }, { true, "Bravo", 0.2f }, { true, "Delta", 0.4f }, { true, "Charlie", 0.3f },
            { true, "Alpha", 0.1f }, { false, "Charlie", 0.3f }, { false, "Delta", 0.4f } });

    // Open the browser and filter by the type "Pad", then widen by the author "Cyd".
    click (toolbar().nameButton);
    auto& tree = browser().filterTree;
    treeRow (tree, 0, 2).setSelected (true, true); // types: Bass, Lead, Pad
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Charlie" }));
    treeRow (tree, 1, 2).setSelected (true, false); // authors: Ann, Bob, Cyd, added as with Command
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Charlie", "Delta" }));
    EXPECT_EQ (browser().table.getNumRows(), 3);
    play ({ { true, "Alpha", 0.1f, 0 }, { true, "Charlie", 0.3f, 1 }, { true, "Delta", 0.4f, 2 }, { true, "Alpha", 0.1f, 0 },
            { false, "Delta", 0.4f, 2 } });

    // A plain click on another row drops the others: only "Bass" is left.
    treeRow (tree, 0, 0).setSelected (true, true);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Bravo" }));

    // With autoload on, selecting a table row loads it.
    browser().table.table.selectRow (0);
    EXPECT_EQ (toolbar().nameButton.getButtonText(), "Bravo");
    EXPECT_FLOAT_EQ (plainValue ("volume"), 0.2f);

    click (browser().closeButton);
    EXPECT_FALSE (browser().isVisible());

    // Reopened, the tree marks nothing: a click filters by that row alone, "Bass" does not come back.
    click (toolbar().nameButton);
    treeRow (tree, 0, 1).setSelected (true, true);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Delta" }));
}

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
    treeRow (browser().filterTree, 0, 0).setSelected (true, true);
    EXPECT_EQ (table.getNumRows(), 5);
    click (browser().closeButton);
    click (toolbar().nameButton);
    EXPECT_EQ (table.edits.size(), 5u);
    EXPECT_EQ (snapshotFiles (library()), untouched) << "nothing is written before save changes";

    click (browser().saveChangesButton);
    EXPECT_FALSE (! table.edits.empty() || browser().unsavedLabel.isVisible());
    EXPECT_FALSE (manager().hasActiveFilter()) << "the whole library shows again";
    EXPECT_EQ (library().findChildFiles (juce::File::findFiles, true, "*").size(), 5) << "no temporary file is left";

    // Each file holds the whole preset with only its two fields changed.
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ (files[(size_t) i].loadFileAsString(), makePresetXml (names[i], i <= 2 ? "Keys" : "Pad", i >= 2 ? "Zed" : "Ann", volumeOf (i))
                                                             ->toString (velkaro::Preset::fileFormat())) << names[i];
    EXPECT_EQ (manager().authors, (std::set<juce::String> { "Ann", "Zed" }));

    // The rebuilt tree marks nothing, and a click filters by that row alone: "Pad" does not come back.
    treeRow (browser().filterTree, 1, 0).setSelected (true, true);
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
    EXPECT_EQ (treeRow (browser().filterTree, 1, 0).text, juce::String (juce::CharPointer_UTF8 ("\xc2\xab None \xc2\xbb")));

    struct Case { int column; const char* typed; bool refused; };
    const Case cases[] = { { Column::nameColumn, "Bravo", true },  { Column::nameColumn, "Alpha", true }, // its own name
                           { Column::nameColumn, "alpha", false }, { Column::notesColumn, "Bravo", false } }; // notes say anything
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.typed);
        table.edits.clear();
        editCell (0, c.column, c.typed);
        EXPECT_EQ (table.message.isVisible() && table.message.getText() == "Another preset already has this name", c.refused);
        EXPECT_EQ (cell.isBeingEdited(), c.refused) << "a refused text stays on show";
        EXPECT_EQ (table.edits.empty(), c.refused);
        cell.timerCallback(); // the refusal's time is over
        EXPECT_FALSE (cell.isBeingEdited() || table.message.isVisible());
        EXPECT_EQ (table.getCellText (0, c.column), c.refused ? "Alpha" : c.typed) << "a refused text is thrown away";
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
    table.cellDoubleClicked (0, Column::authorColumn, mouseEvent (table.table, 2));
    pump (velkaro::PresetsMetadataTable::refusalMs + 300);
    ASSERT_TRUE (cell.isBeingEdited()) << "the refusal's timer closed a later edit";
    typeAndReturn ("Ann");
    EXPECT_EQ (table.getCellText (0, Column::authorColumn), "Ann");
}
