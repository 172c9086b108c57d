// SPDX-License-Identifier: AGPL-3.0-or-later
// Silencing by an empty tip keeps every control's tooltip text in place for when tips come back.
#include "editor/myToolTipWindow.h"

juce::String myToolTipWindow::getTipFor (juce::Component& component)
{
    if (! enabled)
        return {};
    return juce::TooltipWindow::getTipFor (component);
}
