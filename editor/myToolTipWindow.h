// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's tooltip window, which the tooltips switch can silence; it serves its own panel only.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class myToolTipWindow : public juce::TooltipWindow
{
public:
    using juce::TooltipWindow::TooltipWindow;

    juce::String getTipFor (juce::Component&) override;

    // Whether a tip of this component is this window's to show: tips are on, and the component belongs
    // to its panel. Every tooltip window of the process looks at whatever is under the mouse.
    bool shows (const juce::Component& component) const;

    bool enabled = true;
    juce::Component* panel = nullptr;
};
