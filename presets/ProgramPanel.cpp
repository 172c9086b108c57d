// SPDX-License-Identifier: AGPL-3.0-or-later
// Names are checked as they are entered, so that neither save can produce a second preset of one name.
#include "presets/ProgramPanel.h"

#include "presets/PanelFade.h"
#include "presets/PresetIds.h"

namespace velkaro
{
ProgramPanel::ProgramPanel (PresetManager& presetManager) : manager (presetManager)
{
    nameProperty = new juce::TextPropertyComponent (nameValue, "Name", 40, false);
    typeProperty = new juce::TextPropertyComponent (typeValue, "Type", 40, false);
    authorProperty = new juce::TextPropertyComponent (authorValue, "Author", 40, false);
    notesProperty = new juce::TextPropertyComponent (notesValue, "Notes", 200, false);
    for (auto* property : { nameProperty, typeProperty, authorProperty, notesProperty })
        property->addListener (this);
    properties.addProperties ({ nameProperty, typeProperty, authorProperty, notesProperty });

    reloadLibrary = [this] { manager.reload(); };

    updateButton.onClick = [this] { update(); };
    saveNewButton.onClick = [this] { saveNew(); };
    closeButton.onClick = [this] { toggle(); };

    addAndMakeVisible (properties);
    addAndMakeVisible (hint);
    addAndMakeVisible (updateButton);
    addAndMakeVisible (saveNewButton);
    addAndMakeVisible (closeButton);
}

ProgramPanel::~ProgramPanel()
{
    for (auto* property : { nameProperty, typeProperty, authorProperty, notesProperty })
        property->removeListener (this);
}

void ProgramPanel::toggle()
{
    if (isVisible())
        fadePanelOut (*this, fadeMs);
    else
        fadePanelIn (*this, fadeMs);
}

void ProgramPanel::visibilityChanged()
{
    if (! isVisible())
        return;

    const auto& program = manager.getCurrentProgram();
    nameValue = program.name;
    fileValue = program.preset != nullptr ? program.preset->file.getFullPathName() : juce::String();
    typeValue = program.type;
    authorValue = program.author;
    notesValue = program.notes;

    hasFile = fileValue.toString().isNotEmpty();
    updateButton.setEnabled (program.isModified && hasFile);
    saveNewButton.setEnabled (! hasFile);
    hint.setText ("To save a new preset copy, edit the name", juce::dontSendNotification);
    properties.refreshAll();
}

void ProgramPanel::textPropertyComponentChanged (juce::TextPropertyComponent* property)
{
    const auto text = property->getText().trim();
    property->setText (text);

    if (property != nameProperty)
    {
        canUpdate = hasFile && ! nameTaken;
    }
    else if (manager.names.find (text) != manager.names.end())
    {
        hint.setText ("Another preset already has this name", juce::dontSendNotification);
        canUpdate = false;
        canSaveNew = false;
        nameTaken = true;
    }
    else
    {
        // A program without a file has nothing to update, whatever its name.
        canUpdate = hasFile;
        canSaveNew = true;
        nameTaken = false;

        const auto fileName = juce::File::createLegalPathName (text);
        fileValue = fileName;
        hint.setText ("Filename for save new will be: " + fileName, juce::dontSendNotification);
    }

    saveNewButton.setEnabled (canSaveNew);
    updateButton.setEnabled (canUpdate);
}

PresetInfo ProgramPanel::readFields() const
{
    return { nameValue.toString(), authorValue.toString(), typeValue.toString(), notesValue.toString() };
}

void ProgramPanel::writeProgram (const juce::ValueTree& parameterState, const PresetInfo& info, const juce::File& file)
{
    // The result is not examined: a failed write leaves the old file as it was and says nothing.
    if (const auto xml = withInfo (info, parameterState).createXml())
        xml->writeTo (file, Preset::fileFormat());
}

void ProgramPanel::update()
{
    const auto info = readFields();

    if (const auto* preset = manager.getCurrentProgram().preset; preset != nullptr && preset->file.getFullPathName().isNotEmpty())
        writeProgram (manager.getState().copyState(), info, preset->file);

    afterSave();
}

void ProgramPanel::saveNew()
{
    const auto info = readFields();
    const auto file = PresetManager::presetFolder().getNonexistentChildFile (fileValue.toString(), PresetIds::fileSuffix, true);

    writeProgram (manager.getState().copyState(), info, file);

    afterSave();
}

void ProgramPanel::afterSave()
{
    reloadLibrary();

    updateButton.setEnabled (false);
    saveNewButton.setEnabled (false);
    hint.setText ({}, juce::dontSendNotification);
}

void ProgramPanel::paint (juce::Graphics& g)
{
    g.fillAll (findColour (juce::ResizableWindow::backgroundColourId).darker (0.4f).withRotatedHue (0.9f));
}

void ProgramPanel::resized()
{
    const auto w = juce::jmax (getWidth() - 10, 0);
    const auto h = juce::jmax (getHeight() - 10, 0);
    const auto b = juce::jmin (h, 20);
    const auto p = juce::jmin (h - b, properties.getTotalContentHeight());

    properties.setBounds (5, 5, w, p);
    hint.setBounds (5, p + 5, w, juce::jmin (h - b - p, 20));

    const auto x0 = (w < 226 ? 0 : juce::jmin (w, (w - 225) / 2)) + 5;
    const auto buttonWidth = juce::jmin (70, w / 3);
    const auto gap = juce::jmin (15, juce::jmax (0, (w - 3 * buttonWidth) / 2));
    const auto y = h - b + 5;
    updateButton.setBounds (x0, y, buttonWidth, b);
    saveNewButton.setBounds (x0 + buttonWidth + gap, y, buttonWidth, b);
    closeButton.setBounds (x0 + 2 * (buttonWidth + gap), y, buttonWidth, b);
}
} // namespace velkaro
