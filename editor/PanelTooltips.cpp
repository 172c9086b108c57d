// SPDX-License-Identifier: AGPL-3.0-or-later
// Enter and exit events of the panel and all its controls decide whether the window is wanted.
#include "editor/PanelTooltips.h"

PanelTooltips::PanelTooltips (juce::Component& panelToWatch) : panel (panelToWatch)
{
    panel.addMouseListener (this, true);
}

PanelTooltips::~PanelTooltips()
{
    panel.removeMouseListener (this);
}

void PanelTooltips::setLookAndFeel (juce::LookAndFeel* look)
{
    lookAndFeel = look;
    if (window != nullptr)
        window->setLookAndFeel (look);
}

void PanelTooltips::setEnabled (bool shouldShowTips)
{
    enabled = shouldShowTips;
    update (panel.isMouseOver (true));
}

bool PanelTooltips::shows (const juce::Component& component) const
{
    return enabled && (&panel == &component || panel.isParentOf (&component));
}

void PanelTooltips::mouseEnter (const juce::MouseEvent&)
{
    update (true);
}

void PanelTooltips::mouseExit (const juce::MouseEvent& event)
{
    // Moving from one control to the next exits one and enters the other: the panel still has the mouse.
    update (panel.getLocalBounds().contains (panel.getLocalPoint (nullptr, event.getScreenPosition())));
}

void PanelTooltips::update (bool mouseOverPanel)
{
    const bool wanted = enabled && mouseOverPanel && panel.isShowing();
    if (wanted && window == nullptr)
    {
        window = std::make_unique<myToolTipWindow> (*this);
        window->setLookAndFeel (lookAndFeel);
    }
    else if (! wanted && window != nullptr)
    {
        window->setLookAndFeel (nullptr);
        window.reset();
    }
}
