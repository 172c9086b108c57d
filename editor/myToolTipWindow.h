// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's tooltip window: it shows only the tips its panel's tooltips say are its own.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class PanelTooltips;

class myToolTipWindow : public juce::TooltipWindow
{
public:
    explicit myToolTipWindow (const PanelTooltips& owner);

    juce::String getTipFor (juce::Component&) override;

private:
    const PanelTooltips& tips;
};
