// SPDX-License-Identifier: AGPL-3.0-or-later
// How the preset browser's overlay panels appear and go: a short fade, and Escape to close.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
// Fades the panel in, on top and with the keyboard focus.
void fadePanelIn (juce::Component& panel, int fadeMs);
void fadePanelOut (juce::Component& panel, int fadeMs);

// Escape alone closes a panel; with any modifier it is left to others.
bool isPlainEscape (const juce::KeyPress& key);
} // namespace velkaro
