// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's tooltip window, which the tooltips switch can silence.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class myToolTipWindow : public juce::TooltipWindow
{
public:
    using juce::TooltipWindow::TooltipWindow;

    juce::String getTipFor (juce::Component&) override;

    bool enabled = true;
};
