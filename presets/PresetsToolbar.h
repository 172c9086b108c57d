// SPDX-License-Identifier: AGPL-3.0-or-later
// The always-visible strip of presets: name (opens the browser), stepping, save, undo, redo and the
// count of modifications. It owns the program panel and the browser and places them in its parent.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include "editor/ClickLabel.h"
#include "editor/ClickUndo.h"
#include "presets/PresetManager.h"
#include "presets/PresetsPanel.h"
#include "presets/ProgramPanel.h"

namespace velkaro
{
class PresetsToolbar : public juce::Component, public juce::Timer
{
public:
    PresetsToolbar (PresetManager& presetManager, juce::UndoManager* undoManagerToUse);
    ~PresetsToolbar() override;

    void parentHierarchyChanged() override;
    void resized() override;
    void parentSizeChanged() override;
    void lookAndFeelChanged() override;
    void timerCallback() override;

    // Stored undo steps, one per gesture: it follows the history, not the distance from the preset.
    int getModificationCount() const;

    void undoClicked();
    void redoClicked();
    // Drops every stored edit for good: back to the start of the history, which is then cleared.
    void deleteAllModifications();

    static constexpr int timerMs = 60;

    juce::TextButton nameButton;
    juce::TextButton nextButton { juce::String::fromUTF8 ("»") };
    juce::TextButton previousButton { juce::String::fromUTF8 ("«") };
    juce::TextButton saveButton { "save" };
    ClickUndo undoArea { {}, ClickUndo::Shape::undo };
    ClickUndo redoArea { {}, ClickUndo::Shape::redo };
    juce::Label modificationsLabel;
    ClickLabel statusLabel { "compare" };
    ProgramPanel programPanel;
    PresetsPanel presetsPanel;

private:
    void updateUndoColour();
    void layOutPanels();

    PresetManager& manager;
    juce::UndoManager* undoManager = nullptr;
    bool undoShowsOnColour = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetsToolbar)
};
} // namespace velkaro
