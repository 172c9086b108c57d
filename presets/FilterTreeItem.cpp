// SPDX-License-Identifier: AGPL-3.0-or-later
// The row reports every change of its own selection; the panel keeps the set of chosen values.
#include "presets/FilterTreeItem.h"

#include "presets/PresetColours.h"

namespace velkaro
{
FilterTreeItem::FilterTreeItem (const juce::String& itemValue)
    : value (itemValue), text (itemValue.isEmpty() ? juce::String::fromUTF8 ("«") + " None " + juce::String::fromUTF8 ("»") : itemValue)
{
}

void FilterTreeItem::paintItem (juce::Graphics& g, int width, int height)
{
    auto* view = getOwnerView();
    if (view == nullptr)
        return;

    if (isSelected())
        g.fillAll (view->findColour (presetRowSelectedColourId));
    g.setColour (view->findColour (presetItemTextColourId));
    g.setFont (juce::FontOptions (12.0f));
    g.drawText (text, 4, 0, width - 4, height, juce::Justification::centredLeft, true);
}

void FilterTreeItem::itemSelectionChanged (bool isNowSelected)
{
    if (onSelectionChanged)
        onSelectionChanged (isNowSelected, value);
}
} // namespace velkaro
