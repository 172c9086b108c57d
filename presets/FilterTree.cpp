// SPDX-License-Identifier: AGPL-3.0-or-later
// Keys and multi-selection are the tree view's own: click, Command to toggle, Shift to extend.
#include "presets/FilterTree.h"

#include "presets/FilterTreeItem.h"

namespace velkaro
{
FilterTree::FilterTree (PresetManager& presetManager)
    : root (std::make_unique<FilterTreeHeading> (juce::String())), manager (presetManager)
{
    tree.setIndentSize (10);
    tree.setDefaultOpenness (true);
    tree.setMultiSelectEnabled (true);
    tree.setRootItem (root.get());
    tree.setRootItemVisible (false);
    addAndMakeVisible (tree);
    setSize (500, 500);
}

FilterTree::~FilterTree()
{
    tree.setRootItem (nullptr);
}

void FilterTree::reload()
{
    root->clearSubItems();

    auto* types = new FilterTreeHeading ("Types");
    auto* authors = new FilterTreeHeading ("Authors");
    root->addSubItem (types);
    root->addSubItem (authors);

    // Each callback is read when it fires, so the panel may assign it after the rows exist.
    for (const auto& type : manager.types)
    {
        auto* item = new FilterTreeItem (type);
        item->onSelectionChanged = [this] (bool selected, juce::String& value) { onTypeFilterChanged (selected, value); };
        types->addSubItem (item);
    }

    for (const auto& author : manager.authors)
    {
        auto* item = new FilterTreeItem (author);
        item->onSelectionChanged = [this] (bool selected, juce::String& value) { onAuthorFilterChanged (selected, value); };
        authors->addSubItem (item);
    }
}

void FilterTree::resized()
{
    tree.setBounds (getLocalBounds());
}
} // namespace velkaro
