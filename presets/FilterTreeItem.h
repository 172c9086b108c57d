// SPDX-License-Identifier: AGPL-3.0-or-later
// One selectable value of the filter tree: a type or an author of the library.
#pragma once

#include <functional>

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
class FilterTreeItem : public juce::TreeViewItem
{
public:
    // The empty value stands for presets without that field and shows as "« None »".
    explicit FilterTreeItem (const juce::String& itemValue);

    bool mightContainSubItems() override { return false; }
    int getItemHeight() const override { return 13; }
    bool canBeSelected() const override { return true; }
    void paintItem (juce::Graphics& g, int width, int height) override;
    void itemSelectionChanged (bool isNowSelected) override;

    std::function<void (bool, juce::String&)> onSelectionChanged = [] (bool, juce::String&) {};
    juce::String value;
    juce::String text;
};
} // namespace velkaro
