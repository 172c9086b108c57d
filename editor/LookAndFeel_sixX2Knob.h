// SPDX-License-Identifier: AGPL-3.0-or-later
// The look of the `pitch` knob: one tick per step of its 13 positions.
#pragma once

#include "editor/DromelleLookAndFeel_V1.h"

namespace velkaro
{
class LookAndFeel_sixX2Knob : public DromelleLookAndFeel_V1
{
public:
    void drawRotarySlider (juce::Graphics&, int x, int y, int width, int height, float sliderPos,
                           float rotaryStartAngle, float rotaryEndAngle, juce::Slider&) override;
};
} // namespace velkaro
