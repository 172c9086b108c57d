// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel's own art, drawn with the framework's vector renderer at the sizes the editor expects.
#pragma once

#include <juce_graphics/juce_graphics.h>

class PanelArt
{
public:
    explicit PanelArt (juce::Typeface::Ptr typeface);

    // Writes every image and shape file into the folder; false if one could not be written.
    bool writeAll (const juce::File& folder) const;

    // The whole panel at twice its logical size; the textured form is the default picture.
    juce::Image drawPanel (bool textured) const;
    juce::Image drawKnobFace() const;
    juce::Image drawModuleSwitch() const;
    juce::Image drawOctaveSwitch() const;
    juce::Image drawReverseSwitch() const;
    juce::Image drawPreSwitch() const;
    juce::Image drawTapButton() const;
    juce::Image drawBrandPicture() const;

    static juce::Path undoShape();
    static juce::Path redoShape();
    static juce::Path linkShape();

private:
    juce::Font font (float height, bool bold = false) const;
    void drawModuleFrame (juce::Graphics&, juce::Rectangle<float> area, const juce::String& title, bool textured) const;
    void drawLegend (juce::Graphics&, const juce::String& text, juce::Rectangle<float> area,
                     juce::Justification justification) const;
    void drawWordmark (juce::Graphics&, juce::Rectangle<float> area, bool textured) const;

    juce::Typeface::Ptr typeface;
};
