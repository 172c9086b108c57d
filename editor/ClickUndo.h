// SPDX-License-Identifier: AGPL-3.0-or-later
// The undo and redo buttons of the preset toolbar: a vector arrow beside a right-aligned text.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class ClickUndo : public juce::TextButton
{
public:
    enum class Shape { undo, redo };

    ClickUndo (const juce::String& buttonName, Shape shape);

    void paint (juce::Graphics&) override;

    juce::Path icon;
};
