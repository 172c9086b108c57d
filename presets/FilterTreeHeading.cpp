// SPDX-License-Identifier: AGPL-3.0-or-later
// Headings draw on their own band so that the two lists of the tree stand apart.
#include "presets/FilterTreeHeading.h"

#include "presets/PresetColours.h"

namespace velkaro
{
FilterTreeHeading::FilterTreeHeading (const juce::String& headingText) : text (headingText) {}

void FilterTreeHeading::paintItem (juce::Graphics& g, int width, int height)
{
    auto* view = getOwnerView();
    if (view == nullptr)
        return;

    g.fillAll (view->findColour (presetHeadingBackgroundColourId));
    g.setColour (view->findColour (presetHeadingTextColourId));
    g.setFont (juce::FontOptions (12.0f));
    g.drawText (text, 4, 0, width - 4, height, juce::Justification::centredLeft, true);
}
} // namespace velkaro
