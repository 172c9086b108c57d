// SPDX-License-Identifier: AGPL-3.0-or-later
// Overlays go over the framework's keys, so pressed and hovered keys keep their own colours beneath.
#include "editor/CustomMidiKeys.h"

CustomMidiKeys::CustomMidiKeys (juce::MidiKeyboardState& state, Orientation orientation)
    : juce::MidiKeyboardComponent (state, orientation)
{
    // The framework's keyboard wakes 20 times a second to look for notes played elsewhere, even with
    // nothing playing. The window's refresh, which runs anyway, does that looking instead.
    stateTimer().stopTimer();
}

juce::Timer& CustomMidiKeys::stateTimer() noexcept
{
    // The framework keeps its timer as a private base; a C-style cast is the one way to reach it.
    return *(juce::Timer*) this;
}

void CustomMidiKeys::refreshFromState()
{
    stateTimer().timerCallback();
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
