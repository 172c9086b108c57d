// SPDX-License-Identifier: AGPL-3.0-or-later
// The close / minimise / maximise button of windows drawn with the panel's look.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
class DromelleLookAndFeel_V1_DocumentWindowButton : public juce::Button
{
public:
    DromelleLookAndFeel_V1_DocumentWindowButton (const juce::String& name, juce::Colour background, juce::Colour iconColour,
                                                 const juce::Path& normalShape, const juce::Path& toggledShape);

    void paintButton (juce::Graphics&, bool isMouseOverButton, bool isButtonDown) override;

private:
    juce::Colour background, colour;
    juce::Path normalShape, toggledShape;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (DromelleLookAndFeel_V1_DocumentWindowButton)
};
} // namespace velkaro
