// SPDX-License-Identifier: AGPL-3.0-or-later
// Drags and pop-up clicks are not clicks: the label neither lights nor acts on them.
#include "editor/ClickLabel.h"

namespace
{
const juce::Colour hoverColour (0xffff0000);
}

bool ClickLabel::acceptsPointer (const juce::MouseEvent& e) const
{
    // isEnabled() is false as soon as any parent is disabled.
    return isEnabled() && getLocalBounds().contains (e.getPosition()) && ! e.mouseWasDraggedSinceMouseDown()
           && ! e.mods.isPopupMenu();
}

void ClickLabel::mouseEnter (const juce::MouseEvent& e)
{
    if (! acceptsPointer (e))
        return;
    savedTextColour = findColour (juce::Label::textColourId);
    setColour (juce::Label::textColourId, hoverColour);
}

void ClickLabel::mouseExit (const juce::MouseEvent& e)
{
    // Only a colour that mouseEnter set is given back, so a label never loses its own colour.
    if (isEnabled() && ! e.mouseWasDraggedSinceMouseDown() && ! e.mods.isPopupMenu()
        && findColour (juce::Label::textColourId) == hoverColour)
        setColour (juce::Label::textColourId, savedTextColour);
}

void ClickLabel::mouseUp (const juce::MouseEvent& e)
{
    if (acceptsPointer (e) && onClick)
        onClick();
}
