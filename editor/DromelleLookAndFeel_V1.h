// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's base look: the dark indigo palette, the metal-faced knobs with their arc and ticks,
// thin bar sliders, small lit-corner buttons and a compact tooltip.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
class DromelleLookAndFeel_V1 : public juce::LookAndFeel_V3
{
public:
    DromelleLookAndFeel_V1();

    void drawRotarySlider (juce::Graphics&, int x, int y, int width, int height, float sliderPos,
                           float rotaryStartAngle, float rotaryEndAngle, juce::Slider&) override;
    void drawLinearSlider (juce::Graphics&, int x, int y, int width, int height, float sliderPos, float minSliderPos,
                           float maxSliderPos, juce::Slider::SliderStyle, juce::Slider&) override;
    int getSliderThumbRadius (juce::Slider&) override;
    juce::Label* createSliderTextBox (juce::Slider&) override;
    juce::Button* createSliderButton (juce::Slider&, bool isIncrement) override;
    juce::Slider::SliderLayout getSliderLayout (juce::Slider&) override;

    void drawButtonText (juce::Graphics&, juce::TextButton&, bool isMouseOverButton, bool isButtonDown) override;
    void drawButtonBackground (juce::Graphics&, juce::Button&, const juce::Colour& backgroundColour,
                               bool isMouseOverButton, bool isButtonDown) override;

    void drawTooltip (juce::Graphics&, const juce::String& text, int width, int height) override;
    juce::Rectangle<int> getTooltipBounds (const juce::String& tipText, juce::Point<int> screenPos,
                                           juce::Rectangle<int> parentArea) override;

    juce::Button* createDocumentWindowButton (int buttonType) override;

    void applyColourPalette();

    juce::Colour colour0 { 0xff323232 }, colour1 { 0x55111100 }, colour2 { 0xff323e44 }, colour3 { 0xff111111 },
        colour4 { 0xffcccccc }, colour5 { 0xffaaaadd }, colour6 { 0xffffffff }, colour7 { 0xff464e8a },
        colour8 { 0xffffffff }, colour9 { 0xff99aaff };

    juce::Image knobFace;

protected:
    // The knob drawing, with the number of tick marks as its only variable.
    void drawKnob (juce::Graphics&, int x, int y, int width, int height, float sliderPos, float rotaryStartAngle,
                   float rotaryEndAngle, juce::Slider&, int numTickIntervals);
    // Button text in the area 1, top, w - 2, h - 2 * inset.
    void drawButtonTextIn (juce::Graphics&, juce::TextButton&, int inset, int top);

private:
    juce::TextLayout layoutTooltip (const juce::String& text, juce::Colour colour) const;
};
} // namespace velkaro
