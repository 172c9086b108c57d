// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor over a throw-away music folder, and helpers that act like a user on the preset toolbar
// and its panels.
#pragma once

#include "engine/editor/EditorFixture.h"
#include "presets/PresetsToolbar.h"

class BrowserFixture : public EditorFixture
{
protected:
    velkaro::PresetManager& manager() { return processor().presetManager; }
    juce::File library() const { return home.library(); }

    juce::File writePreset (const juce::String& fileName, const juce::String& name, const juce::String& type,
                            const juce::String& author, const ValueTexts& values = {})
    {
        return writePresetFile (library().getChildFile (fileName), name, type, author, values);
    }

    velkaro::PresetsToolbar& toolbar() { return panel().presetsToolbar; }
    velkaro::PresetsPanel& browser() { return toolbar().presetsPanel; }
    velkaro::ProgramPanel& programPanel() { return toolbar().programPanel; }

    // A click as the user makes it: nothing happens on a disabled button.
    static void click (juce::Button& button)
    {
        if (! button.isEnabled())
            return;
        button.triggerClick();
        pump();
    }

    // The event of a click, or a double click, on `component`.
    static juce::MouseEvent mouseEvent (juce::Component& component, int clicks)
    {
        const auto now = juce::Time::getCurrentTime();
        return { juce::Desktop::getInstance().getMainMouseSource(), { 1.0f, 1.0f }, {}, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f,
                 &component, &component, now, { 1.0f, 1.0f }, now, clicks, false };
    }

    // A mouse button let go over `component`, where a click ends.
    static void release (juce::Component& component) { component.mouseUp (mouseEvent (component, 1)); }

    // Lets the toolbar see the editing state as its timer would, after the parameters reached the tree.
    void tick()
    {
        processor().parameters.copyState();
        toolbar().timerCallback();
    }

    // Finishes editing a property row of the program panel with `text`, as typing and Return do.
    static void enterText (juce::TextPropertyComponent& property, const juce::String& text)
    {
        property.setText (text);
        property.textWasEdited();
    }

    // Double-clicks a cell of the browser's table, types `text` and presses Return.
    void editCell (int row, int columnId, const juce::String& text)
    {
        auto& table = browser().table;
        table.cellDoubleClicked (row, columnId, mouseEvent (table.table, 2));
        auto* textEditor = table.editor.getCurrentTextEditor();
        ASSERT_NE (textEditor, nullptr);
        textEditor->setText (text, false);
        table.editor.textEditorReturnKeyPressed (*textEditor);
    }

    float plainValue (const juce::String& id) { return processor().parameters.getRawParameterValue (id)->load(); }

    std::vector<juce::String> listedNames() { return namesOf (manager().getPresets()); }
};
