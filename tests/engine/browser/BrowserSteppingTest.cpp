// SPDX-License-Identifier: AGPL-3.0-or-later
// The toolbar's arrows load presets in turn, wrapping around, inside the filtered list when the tree
// filters it, and the browser's table highlight follows them.
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
    writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", 0.1f } });
    writePreset ("b.xml", "Bravo", "Bass", "Bob", { { "volume", 0.2f } });
    writePreset ("sub/c.xml", "Charlie", "Pad", "Bob", { { "volume", 0.3f } });
    writePreset ("d.xml", "Delta", "Lead", "Cyd", { { "volume", 0.4f } });

    openEditor();
    ASSERT_EQ (listedNames(), (std::vector<juce::String> { "Alpha", "Bravo", "Delta", "Charlie" }));

    struct Step { bool next; const char* name; float volume; };
    const Step unfiltered[] = {
        { false, "Charlie", 0.3f }, // nothing selected: back to the last entry
        { true, "Alpha", 0.1f }, { true, "Bravo", 0.2f }, { true, "Delta", 0.4f }, { true, "Charlie", 0.3f },
        { true, "Alpha", 0.1f }, { false, "Charlie", 0.3f }, { false, "Delta", 0.4f },
    };
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

    const Step filtered[] = {
        { true, "Alpha", 0.1f }, { true, "Charlie", 0.3f }, { true, "Delta", 0.4f }, { true, "Alpha", 0.1f },
        { false, "Delta", 0.4f },
    };
    const int highlight[] = { 0, 1, 2, 0, 2 };
    for (size_t i = 0; i < std::size (filtered); ++i)
    {
        click (filtered[i].next ? toolbar().nextButton : toolbar().previousButton);
        EXPECT_EQ (toolbar().nameButton.getButtonText(), filtered[i].name);
        EXPECT_FLOAT_EQ (plainValue ("volume"), filtered[i].volume);
        EXPECT_EQ (browser().table.table.getSelectedRow(), highlight[i]) << "the table follows the arrows";
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
}

TEST_F (BrowserFixture, ToolbarTextsAreTheirOwnCharacters)
{
    openEditor();
    EXPECT_EQ (toolbar().previousButton.getButtonText(), juce::String (juce::CharPointer_UTF8 ("\xc2\xab")));
    EXPECT_EQ (toolbar().nextButton.getButtonText(), juce::String (juce::CharPointer_UTF8 ("\xc2\xbb")));
    EXPECT_EQ (toolbar().statusLabel.getName(), "compare");
    EXPECT_EQ (toolbar().undoArea.getTooltip(), "Undo");
    EXPECT_EQ (toolbar().redoArea.getTooltip(), "Redo or see number of modifications");
    EXPECT_EQ (toolbar().statusLabel.getTooltip(),
               "Warning! Click here to delete all modifications. Use Undo to go back without loosing them.");
    // Toolbar of 776 x 24: the name takes what the right-hand controls leave.
    EXPECT_EQ (toolbar().nameButton.getBounds(), juce::Rectangle<int> (1, 0, 549, 24));
    EXPECT_EQ (toolbar().statusLabel.getBounds(), juce::Rectangle<int> (647, 13, 50, 11));
    EXPECT_EQ (toolbar().modificationsLabel.getBounds(), juce::Rectangle<int> (699, 0, 76, 13));
}

TEST_F (BrowserFixture, EscapeClosesTheHelpLayerFirstThenTheBrowser)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann");
    openEditor();
    click (toolbar().nameButton);
    click (browser().helpButton);
    ASSERT_TRUE (browser().help.isVisible());
    EXPECT_NEAR (browser().titleLabel.getAlpha(), 229.0f / 255.0f, 1e-6f);

    const juce::KeyPress escape (juce::KeyPress::escapeKey);
    const juce::KeyPress shiftEscape (juce::KeyPress::escapeKey, juce::ModifierKeys::shiftModifier, 0);
    EXPECT_FALSE (browser().help.keyPressed (shiftEscape, &browser().help));
    EXPECT_FALSE (browser().help.keyPressed (juce::KeyPress ('a'), &browser().help));
    EXPECT_TRUE (browser().help.keyPressed (escape, &browser().help));
    EXPECT_FALSE (browser().help.isVisible());
    EXPECT_TRUE (browser().isVisible());
    EXPECT_EQ (browser().titleLabel.getAlpha(), 0.0f) << "once help was shown, the title only shows with it";

    EXPECT_TRUE (browser().keyPressed (escape, &browser()));
    EXPECT_FALSE (browser().isVisible());
}
