// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/PanelFade.h"

namespace velkaro
{
void fadePanelIn (juce::Component& panel, int fadeMs)
{
    juce::Desktop::getInstance().getAnimator().fadeIn (&panel, fadeMs);
    panel.grabKeyboardFocus();
    panel.setAlwaysOnTop (panel.isShowing());
}

void fadePanelOut (juce::Component& panel, int fadeMs)
{
    juce::Desktop::getInstance().getAnimator().fadeOut (&panel, fadeMs);
}

bool isPlainEscape (const juce::KeyPress& key)
{
    const auto anyModifier = juce::ModifierKeys::shiftModifier | juce::ModifierKeys::ctrlModifier
                             | juce::ModifierKeys::altModifier | juce::ModifierKeys::commandModifier;
    return key.getKeyCode() == juce::KeyPress::escapeKey && (key.getModifiers().getRawFlags() & anyModifier) == 0;
}
} // namespace velkaro
