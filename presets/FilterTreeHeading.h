// SPDX-License-Identifier: AGPL-3.0-or-later
// A heading row of the filter tree ("Types", "Authors"): always open, never selectable.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
class FilterTreeHeading : public juce::TreeViewItem
{
public:
    explicit FilterTreeHeading (const juce::String& headingText);

    bool mightContainSubItems() override { return true; }
    int getItemHeight() const override { return 13; }
    bool canBeSelected() const override { return false; }
    void paintItem (juce::Graphics& g, int width, int height) override;

    juce::String text;
};
} // namespace velkaro
