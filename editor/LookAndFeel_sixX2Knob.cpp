// SPDX-License-Identifier: AGPL-3.0-or-later
// Twelve intervals of four semitones, so each tick marks a position the knob can rest on.
#include "editor/LookAndFeel_sixX2Knob.h"

namespace velkaro
{
void LookAndFeel_sixX2Knob::drawRotarySlider (juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                              float rotaryStartAngle, float rotaryEndAngle, juce::Slider& slider)
{
    drawKnob (g, x, y, width, height, sliderPos, rotaryStartAngle, rotaryEndAngle, slider, 12);
}
} // namespace velkaro
