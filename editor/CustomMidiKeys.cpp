// SPDX-License-Identifier: AGPL-3.0-or-later
// Overlays go over the framework's keys, so pressed and hovered keys keep their own colours beneath.
#include "editor/CustomMidiKeys.h"

CustomMidiKeys::CustomMidiKeys (juce::MidiKeyboardState& state, Orientation orientation)
    : juce::MidiKeyboardComponent (state, orientation)
{
}

void CustomMidiKeys::paint (juce::Graphics& g)
{
    juce::MidiKeyboardComponent::paint (g);

    const float width = (float) getWidth();
    for (int note = getLowestVisibleKey(); note <= getRangeEnd(); ++note)
    {
        const auto key = getRectangleForKey (note);
        if (key.getX() >= width)
            break;
        if (note < 36 || note >= 96)
        {
            g.setColour (juce::Colour (0x55111111));
            g.fillRect (key);
        }
        if (isBlackKey[(size_t) (note % 12)] == 1)
        {
            g.setColour (juce::Colour (0x55002244));
            g.fillRect (key);
        }
    }

    g.setColour (juce::Colour (0xff111111));
    g.drawRect (juce::Rectangle<float> (-1.0f, -2.0f, juce::jmax (width, -2.0f) + 2.0f,
                                        juce::jmax ((float) getHeight(), -4.0f) + 4.0f),
                2.0f);

    g.setColour (juce::Colour (0x55aa1111));
    g.fillRect (getRectangleForKey (markedNote));
}
