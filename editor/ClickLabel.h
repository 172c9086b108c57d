// SPDX-License-Identifier: AGPL-3.0-or-later
// A label that lights red under the pointer and acts on a click.
#pragma once

#include <functional>

#include <juce_gui_basics/juce_gui_basics.h>

class ClickLabel : public juce::Label
{
public:
    using juce::Label::Label;

    void mouseEnter (const juce::MouseEvent&) override;
    void mouseExit (const juce::MouseEvent&) override;
    void mouseUp (const juce::MouseEvent&) override;

    std::function<void()> onClick;
    juce::Colour savedTextColour;

private:
    bool acceptsPointer (const juce::MouseEvent&) const;
};
