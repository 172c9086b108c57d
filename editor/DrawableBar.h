// SPDX-License-Identifier: AGPL-3.0-or-later
// The brand bar under the toolbar: brand picture, product name, a web link and the version text.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class DrawableBar : public juce::Component
{
public:
    DrawableBar();
    ~DrawableBar() override;

    void mouseEnter (const juce::MouseEvent&) override;
    void mouseExit (const juce::MouseEvent&) override;
    void mouseDown (const juce::MouseEvent&) override;
    void mouseUp (const juce::MouseEvent&) override;
    bool hitTest (int x, int y) override;
    void paint (juce::Graphics&) override;

    juce::String versionText;
    const juce::Image* brandImage = nullptr;
    juce::URL link;
    juce::String productName { "Ondrivel" };
    juce::Font font { juce::FontOptions (14.0f) };
    juce::Colour nameColour { 0xff111111 };
    juce::Rectangle<float> linkArea;
    juce::Path logo;

private:
    juce::GlyphArrangement nameLayout;
};
