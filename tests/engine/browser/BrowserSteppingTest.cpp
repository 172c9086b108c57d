// SPDX-License-Identifier: AGPL-3.0-or-later
// The toolbar's arrows load presets in turn, wrapping around, inside the filtered list when the tree
// filters it, and the browser's table highlight follows them; a reopened tree starts a new filter.
#include "BrowserFixture.h"

#include "presets/FilterTreeItem.h"

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

    struct Step { bool next; const char* name; float volume; int row = 0; };
    const Step unfiltered[] = { { false, "Charlie", 0.3f }, // nothing selected: back to the last entry
                                { true, "Alpha", 0.1f },    { true, "Bravo", 0.2f },  { true, "Delta", 0.4f }, { true, "Charlie", 0.3f },
                                { true, "Alpha", 0.1f },    { false, "Charlie", 0.3f }, { false, "Delta", 0.4f } };
    for (const auto& step : unfiltered)
    {
        click (step.next ? toolbar().nextButton : toolbar().previousButton);
        EXPECT_EQ (toolbar().nameButton.getButtonText(), step.name);
        EXPECT_FLOAT_EQ (plainValue ("volume"), step.volume) << step.name;
    }

    // Open the browser and filter by the type "Pad", then widen by the author "Cyd".
    click (toolbar().nameButton);
    ASSERT_TRUE (browser().isVisible());
    tick();
    EXPECT_FALSE (toolbar().saveButton.isEnabled()) << "no program is saved while the browser is open";

    auto& tree = browser().filterTree;
    treeRow (tree, 0, 2).setSelected (true, true); // types: Bass, Lead, Pad
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Charlie" }));
    treeRow (tree, 1, 2).setSelected (true, false); // authors: Ann, Bob, Cyd, added as with Command
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Charlie", "Delta" }));
    EXPECT_EQ (browser().table.getNumRows(), 3);

    const Step filtered[] = { { true, "Alpha", 0.1f, 0 }, { true, "Charlie", 0.3f, 1 }, { true, "Delta", 0.4f, 2 },
                              { true, "Alpha", 0.1f, 0 }, { false, "Delta", 0.4f, 2 } };
    for (const auto& step : filtered)
    {
        click (step.next ? toolbar().nextButton : toolbar().previousButton);
        EXPECT_EQ (toolbar().nameButton.getButtonText(), step.name);
        EXPECT_FLOAT_EQ (plainValue ("volume"), step.volume);
        EXPECT_EQ (browser().table.table.getSelectedRow(), step.row) << "the table follows the arrows";
    }

    // A plain click on another row drops the others: only "Bass" is left.
    treeRow (tree, 0, 0).setSelected (true, true);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Bravo" }));

    // With autoload on, selecting a table row loads it.
    browser().table.table.selectRow (0);
    EXPECT_EQ (toolbar().nameButton.getButtonText(), "Bravo");
    EXPECT_FLOAT_EQ (plainValue ("volume"), 0.2f);

    click (browser().closeButton);
    EXPECT_FALSE (browser().isVisible());
    tick();
    EXPECT_TRUE (toolbar().saveButton.isEnabled());

    // Reopened, the tree marks nothing: a click filters by that row alone, "Bass" does not come back.
    click (toolbar().nameButton);
    treeRow (tree, 0, 1).setSelected (true, true);
    EXPECT_EQ (listedNames(), (std::vector<juce::String> { "Delta" }));
}
