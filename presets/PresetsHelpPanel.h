// SPDX-License-Identifier: AGPL-3.0-or-later
// A translucent layer over the preset browser with one help line for each of its parts.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include "presets/PanelFade.h"

namespace velkaro
{
class PresetsHelpPanel : public juce::Component, public juce::KeyListener
{
public:
    PresetsHelpPanel();
    ~PresetsHelpPanel() override;

    // Fades the layer in (taking the keyboard focus) or out.
    void toggle();

    void paint (juce::Graphics& g) override;
    void resized() override;
    bool keyPressed (const juce::KeyPress& key, juce::Component* originatingComponent) override;
    using juce::Component::keyPressed;

    juce::Label filterHelp, tableHelp, autoloadHelp;
    juce::TextButton closeButton { "X" };
    int margin = 0; // the width of the browser's controls right of the autoload line's arrow
    int stripHeight = 18;
    int fadeMs = 120;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetsHelpPanel)
};
} // namespace velkaro
