// SPDX-License-Identifier: AGPL-3.0-or-later
// The main column of the preset browser: one row per preset of the list in force, with pending edits of
// the four text fields kept apart until the panel saves them.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include <juce_gui_basics/juce_gui_basics.h>

#include "presets/PresetManager.h"

namespace velkaro
{
class PresetsMetadataTable : public juce::Component, public juce::TableListBoxModel, public juce::ValueTree::Listener
{
public:
    // The table's cell editor: a refused text keeps the editor open for a moment and is then thrown away.
    class EditableTextComponent : public juce::Label, public juce::Timer
    {
    public:
        void textEditorReturnKeyPressed (juce::TextEditor& textEditor) override;
        void timerCallback() override;

        std::function<bool (const juce::String&)> validate = [] (const juce::String&) { return true; };
    };

    enum ColumnIds
    {
        nameColumn = 1,
        typeColumn = 2,
        authorColumn = 3,
        notesColumn = 4
    };

    static constexpr int rowHeight = 16;
    static constexpr int refusalMs = 2100;

    explicit PresetsMetadataTable (PresetManager& presetManager);
    ~PresetsMetadataTable() override;

    int getNumRows() override;
    void paintRowBackground (juce::Graphics& g, int rowNumber, int width, int height, bool rowIsSelected) override;
    void paintCell (juce::Graphics& g, int rowNumber, int columnId, int width, int height, bool rowIsSelected) override;
    void cellDoubleClicked (int rowNumber, int columnId, const juce::MouseEvent& event) override;
    void selectedRowsChanged (int lastRowSelected) override;

    void valueTreePropertyChanged (juce::ValueTree& tree, const juce::Identifier& property) override;

    void resized() override;

    // The text a cell shows: the pending edit of that field if there is one, else the preset's own.
    juce::String getCellText (int rowNumber, int columnId) const;
    bool hasPendingText (int rowNumber, int columnId) const;

    std::function<void()> onEdit = [] {};
    std::vector<Preset*> rows;
    bool autoload = false;
    std::map<Preset*, PresetInfo> edits; // an empty field means no edit of that field
    juce::TableListBox table;
    juce::Font font { juce::FontOptions (14.0f) };
    EditableTextComponent editor;
    juce::Label message;

private:
    static juce::String& fieldOf (PresetInfo& info, int columnId);
    static juce::String fieldOf (const Preset& preset, int columnId);

    PresetManager& manager;
    juce::ValueTree selection; // kept so that the listener stays registered
    bool followingManager = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetsMetadataTable)
};
} // namespace velkaro
