// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's tooltips. A tooltip window polls the mouse several times a second, so it exists only
// while tips are on and the mouse is over the panel: a panel left alone wakes no timer for them.
#pragma once

#include <memory>

#include "editor/myToolTipWindow.h"

class PanelTooltips final : private juce::MouseListener
{
public:
    explicit PanelTooltips (juce::Component& panel);
    ~PanelTooltips() override;

    void setLookAndFeel (juce::LookAndFeel* look);
    void setEnabled (bool shouldShowTips);

    // Whether a tip of this component is this panel's to show: tips are on, and the component belongs
    // to the panel. Every tooltip window of the process looks at whatever is under the mouse.
    bool shows (const juce::Component& component) const;

    // The window, while there is one.
    myToolTipWindow* getWindow() const noexcept { return window.get(); }

private:
    void mouseEnter (const juce::MouseEvent&) override;
    void mouseExit (const juce::MouseEvent&) override;
    void update (bool mouseOverPanel);

    juce::Component& panel;
    juce::LookAndFeel* lookAndFeel = nullptr;
    bool enabled = true;
    std::unique_ptr<myToolTipWindow> window;
};
