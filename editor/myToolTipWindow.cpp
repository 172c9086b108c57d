// SPDX-License-Identifier: AGPL-3.0-or-later
// Silencing by an empty tip keeps every control's tooltip text in place for when tips come back.
#include "editor/myToolTipWindow.h"

juce::String myToolTipWindow::getTipFor (juce::Component& component)
{
    if (! shows (component))
        return {};
    return juce::TooltipWindow::getTipFor (component);
}

bool myToolTipWindow::shows (const juce::Component& component) const
{
    return enabled && (panel == nullptr || panel == &component || panel->isParentOf (&component));
}
