// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset browser's own colours, derived from the window background of whatever look-and-feel is in use.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
enum PresetColourIds
{
    presetPanelFillColourId = 0x4244444,
    presetPanelEdgeColourId = 0x4244445,
    presetHeadingBackgroundColourId = 0x4244446,
    presetClearColourId = 0x4244447,
    presetRowSelectedColourId = 0x4244448,
    presetRowAlternateColourId = 0x4244449,
    presetRowTextColourId = 0x424444A,
    presetHeadingTextColourId = 0x424444B,
    presetItemTextColourId = 0x424444C,
    presetPendingTextColourId = 0x424444D,
    presetMessageBackgroundColourId = 0x424444E
};

// Writes the browser colours into the look-and-feel; run again whenever the background may have changed.
void updatePresetColours (juce::LookAndFeel& lookAndFeel);
} // namespace velkaro
