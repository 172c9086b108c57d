// SPDX-License-Identifier: AGPL-3.0-or-later
// Edits collect in a map keyed by preset, so filtering or closing the browser never loses them.
#include "presets/PresetsMetadataTable.h"

#include "presets/PresetColours.h"

namespace velkaro
{
namespace
{
constexpr const char* indexProperty = "index";
} // namespace

//==============================================================================
void PresetsMetadataTable::EditableTextComponent::textEditorReturnKeyPressed (juce::TextEditor& textEditor)
{
    const auto trimmed = textEditor.getText().trim();

    if (validate (trimmed))
    {
        // A corrected text ends the refusal: its timer must not close a later edit.
        stopTimer();
        textEditor.setText (trimmed, false);
        juce::Label::textEditorReturnKeyPressed (textEditor);
        return;
    }

    // Focus loss arrives here too: keep the refused text on show until the timer throws it away.
    setWantsKeyboardFocus (true);
    startTimer (refusalMs);
}

void PresetsMetadataTable::EditableTextComponent::timerCallback()
{
    if (getTimerInterval() <= 1900)
        return;

    stopTimer();
    hideEditor (true);
}

//==============================================================================
PresetsMetadataTable::PresetsMetadataTable (PresetManager& presetManager)
    : manager (presetManager), selection (presetManager.getSelection())
{
    auto& header = table.getHeader();
    header.addColumn ("name", nameColumn, 150);
    header.addColumn ("type", typeColumn, 50);
    header.addColumn ("author", authorColumn, 100);
    header.addColumn ("notes", notesColumn, 200);
    header.setStretchToFitActive (true);

    table.setModel (this);
    table.setMultipleSelectionEnabled (false);
    table.setRowHeight (rowHeight);
    table.getViewport()->setSingleStepSizes (20, 16);
    addAndMakeVisible (table);

    editor.onEditorHide = [this]
    {
        editor.setVisible (false);
        message.setVisible (false);
    };
    addChildComponent (editor);

    message.setText ("Another preset already has this name", juce::dontSendNotification);
    addChildComponent (message);

    selection.addListener (this);
}

PresetsMetadataTable::~PresetsMetadataTable()
{
    selection.removeListener (this);
    editor.stopTimer();
    table.setModel (nullptr);
}

int PresetsMetadataTable::getNumRows()
{
    return (int) rows.size();
}

juce::String& PresetsMetadataTable::fieldOf (PresetInfo& info, int columnId)
{
    switch (columnId)
    {
        case typeColumn: return info.type;
        case authorColumn: return info.author;
        case notesColumn: return info.notes;
        default: return info.name;
    }
}

juce::String PresetsMetadataTable::fieldOf (const Preset& preset, int columnId)
{
    switch (columnId)
    {
        case typeColumn: return preset.type;
        case authorColumn: return preset.author;
        case notesColumn: return preset.notes;
        default: return preset.name;
    }
}

bool PresetsMetadataTable::hasPendingText (int rowNumber, int columnId) const
{
    if (! juce::isPositiveAndBelow (rowNumber, (int) rows.size()))
        return false;

    const auto found = edits.find (rows[(size_t) rowNumber]);
    if (found == edits.end())
        return false;

    auto info = found->second;
    return fieldOf (info, columnId).isNotEmpty();
}

juce::String PresetsMetadataTable::getCellText (int rowNumber, int columnId) const
{
    if (! juce::isPositiveAndBelow (rowNumber, (int) rows.size()))
        return {};

    auto* preset = rows[(size_t) rowNumber];
    if (const auto found = edits.find (preset); found != edits.end())
    {
        auto info = found->second;
        if (const auto& pending = fieldOf (info, columnId); pending.isNotEmpty())
            return pending;
    }
    return preset != nullptr ? fieldOf (*preset, columnId) : juce::String();
}

void PresetsMetadataTable::paintRowBackground (juce::Graphics& g, int rowNumber, int, int, bool rowIsSelected)
{
    if (rowIsSelected)
        g.fillAll (findColour (presetRowSelectedColourId));
    else if (rowNumber % 2 != 0)
        g.fillAll (findColour (presetRowAlternateColourId));
}

void PresetsMetadataTable::paintCell (juce::Graphics& g, int rowNumber, int columnId, int width, int height, bool)
{
    if (! juce::isPositiveAndBelow (rowNumber, (int) rows.size()))
        return;

    g.setColour (findColour (hasPendingText (rowNumber, columnId) ? presetPendingTextColourId : presetRowTextColourId));
    g.setFont (font);
    g.drawText (getCellText (rowNumber, columnId), 2, 0, width - 4, height, juce::Justification::centredLeft, true);
    g.drawRect (juce::Rectangle<float> (0.0f, 0.0f, (float) width, (float) height), 0.2f);
}

void PresetsMetadataTable::cellDoubleClicked (int rowNumber, int columnId, const juce::MouseEvent&)
{
    // A refusal still counting belongs to the edit before this one.
    editor.stopTimer();
    editor.setText (getCellText (rowNumber, columnId), juce::dontSendNotification);

    editor.validate = [this, columnId] (const juce::String& text)
    {
        if (columnId != nameColumn)
            return true;

        if (manager.names.find (text) != manager.names.end())
        {
            message.setVisible (true);
            message.toFront (false);
            return false;
        }
        message.setVisible (false);
        return true;
    };

    editor.onTextChange = [this, rowNumber, columnId]
    {
        const auto text = editor.getText();
        if (juce::isPositiveAndBelow (rowNumber, (int) rows.size()))
            fieldOf (edits[rows[(size_t) rowNumber]], columnId) = text;
        onEdit();
    };

    auto& header = table.getHeader();
    int columnX = 0;
    for (int i = 0; i < header.getNumColumns (true); ++i)
    {
        const auto id = header.getColumnIdOfIndex (i, true);
        if (id == columnId)
            break;
        columnX += header.getColumnWidth (id);
    }
    const auto columnWidth = header.getColumnWidth (columnId);
    const auto x = table.getX() + columnX - 2;
    const auto y = table.getY() + table.getRowPosition (rowNumber, false).getY() - table.getViewport()->getViewPositionY() - 1;

    editor.setBounds (x, y, columnWidth + 4, table.getRowHeight() + 4);
    editor.setVisible (true);
    editor.toFront (false);
    editor.showEditor();

    message.setBounds (table.getX() + columnX + columnWidth, y, 2 * columnWidth, table.getRowHeight());
    message.setColour (juce::Label::backgroundColourId, findColour (presetMessageBackgroundColourId));
}

void PresetsMetadataTable::selectedRowsChanged (int lastRowSelected)
{
    // A highlight moved to follow the manager is no user's choice, and the preset is loaded already.
    if (! autoload || followingManager)
        return;

    if (lastRowSelected < 0)
        manager.clearSelection();
    else
        manager.selectPreset ((size_t) lastRowSelected);
}

void PresetsMetadataTable::valueTreePropertyChanged (juce::ValueTree& tree, const juce::Identifier& property)
{
    // The index is removed whenever the manager forgets its selection; the highlight then stays where it is.
    if (property != juce::Identifier (indexProperty) || ! tree.hasProperty (indexProperty))
        return;

    const juce::ScopedValueSetter<bool> following (followingManager, true);
    const int row = tree[indexProperty];
    table.selectRow (row, false, true);
}

void PresetsMetadataTable::resized()
{
    table.setBounds (getLocalBounds());
}
} // namespace velkaro
