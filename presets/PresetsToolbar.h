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
class PresetsToolbar : public juce::Component,
                       public juce::Timer,
                       private juce::ChangeListener,
                       private juce::ComponentListener
{
public:
    PresetsToolbar (PresetManager& presetManager, juce::UndoManager* undoManagerToUse);
    ~PresetsToolbar() override;

    void parentHierarchyChanged() override;
    void resized() override;
    void parentSizeChanged() override;
    void lookAndFeelChanged() override;
    // Shows the editing state; it stops once a tick finds nothing new, and whatever can change that
    // state (the history, a load, an edit, the browser opening or closing) starts it again.
    void timerCallback() override;

    // Stored undo steps, one per gesture: it follows the history, not the distance from the preset.
    // Counted again only after the history has changed.
    int getModificationCount();

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
    void changeListenerCallback (juce::ChangeBroadcaster*) override;
    void componentVisibilityChanged (juce::Component&) override { wake(); }
    void wake();
    // True if the colour had to change.
    bool updateUndoColour (bool force = false);
    void layOutPanels();

    PresetManager& manager;
    juce::UndoManager* undoManager = nullptr;
    bool undoShowsOnColour = false;
    bool historyChanged = true;
    int modificationCount = 0, shownModifications = -1, saveOffered = -1;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetsToolbar)
};
} // namespace velkaro
