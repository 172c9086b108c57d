// SPDX-License-Identifier: AGPL-3.0-or-later
// Silencing by an empty tip keeps every control's tooltip text in place for when tips come back.
#include "editor/myToolTipWindow.h"

#include "editor/PanelTooltips.h"

myToolTipWindow::myToolTipWindow (const PanelTooltips& owner)
    : juce::TooltipWindow (nullptr, 100), tips (owner)
{
}

juce::String myToolTipWindow::getTipFor (juce::Component& component)
{
    if (! tips.shows (component))
        return {};
    return juce::TooltipWindow::getTipFor (component);
}
