// SPDX-License-Identifier: AGPL-3.0-or-later
// Drawn as the framework's round window button; the icon fades back when idle or disabled.
#include "editor/DromelleLookAndFeel_V1_DocumentWindowButton.h"

namespace velkaro
{
DromelleLookAndFeel_V1_DocumentWindowButton::DromelleLookAndFeel_V1_DocumentWindowButton (
    const juce::String& name, juce::Colour backgroundColour, juce::Colour iconColour, const juce::Path& normal,
    const juce::Path& toggled)
    : juce::Button (name), background (backgroundColour), colour (iconColour), normalShape (normal), toggledShape (toggled)
{
}

void DromelleLookAndFeel_V1_DocumentWindowButton::paintButton (juce::Graphics& g, bool isMouseOverButton, bool isButtonDown)
{
    const float cx = (float) getWidth() * 0.5f, cy = (float) getHeight() * 0.5f;
    const float diam = juce::jmin (cx, cy) * (isButtonDown ? 0.60f : 0.65f);

    g.setColour (background);
    g.fillEllipse (cx - diam, cy - diam, diam * 2.0f, diam * 2.0f);

    auto c = background.contrasting (colour, 0.6f);
    if (! isEnabled() || ! isMouseOverButton)
        c = c.withAlpha ((juce::uint8) 0x99);

    g.setColour (c);
    g.drawEllipse (cx - diam, cy - diam, diam * 2.0f, diam * 2.0f, diam * 0.2f);

    const auto& shape = getToggleState() ? toggledShape : normalShape;
    const float scale = 0.55f;
    g.fillPath (shape, shape.getTransformToScaleToFit (cx - diam * scale, cy - diam * scale, diam * 2.0f * scale,
                                                       diam * 2.0f * scale, true));
}
} // namespace velkaro
