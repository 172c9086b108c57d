// SPDX-License-Identifier: AGPL-3.0-or-later
// Every browser colour follows the panel background, so that a new look-and-feel recolours the browser too.
#include "presets/PresetColours.h"

namespace velkaro
{
void updatePresetColours (juce::LookAndFeel& lookAndFeel)
{
    const auto base = lookAndFeel.findColour (juce::ResizableWindow::backgroundColourId).darker (0.1f);

    lookAndFeel.setColour (presetPanelFillColourId, base);
    lookAndFeel.setColour (presetPanelEdgeColourId, base.darker (0.5f));
    lookAndFeel.setColour (presetHeadingBackgroundColourId, base.withMultipliedBrightness (1.2f));
    lookAndFeel.setColour (presetClearColourId, juce::Colours::transparentBlack);
    lookAndFeel.setColour (presetRowSelectedColourId, base.contrasting (juce::Colour (0xff4444ff), 0.05f)
                                                          .withMultipliedSaturation (9.5f)
                                                          .withAlpha ((juce::uint8) 0x4c));
    lookAndFeel.setColour (presetRowAlternateColourId, base.withMultipliedLightness (1.2f));
    lookAndFeel.setColour (presetRowTextColourId, juce::Colours::black);
    lookAndFeel.setColour (presetHeadingTextColourId, juce::Colours::black.withAlpha ((juce::uint8) 0xb2));
    lookAndFeel.setColour (presetItemTextColourId, juce::Colours::black);
    lookAndFeel.setColour (presetPendingTextColourId, base.contrasting (juce::Colour (0xff884400), 0.05f));
    lookAndFeel.setColour (presetMessageBackgroundColourId,
                           juce::Colours::black.contrasting (juce::Colour (0xff550000), 0.5f));
}
} // namespace velkaro
