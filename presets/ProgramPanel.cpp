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

    // Every opening starts from the program as it is now; nothing is left over from an earlier one.
    const auto& program = manager.getCurrentProgram();
    nameValue = program.name;
    typeValue = program.type;
    authorValue = program.author;
    notesValue = program.notes;

    hasFile = program.preset != nullptr && program.preset->file != juce::File();
    canUpdate = program.isModified && hasFile;
    canSaveNew = ! hasFile;
    nameTaken = false;
    fileValue = fileStemFor (program.name);
    hint.setText ("To save a new preset copy, edit the name", juce::dontSendNotification);

    // A program without a file can be saved as it is, under its own name if that is free.
    if (! hasFile)
        checkName (program.name);

    enableButtons();
    properties.refreshAll();
}

void ProgramPanel::textPropertyComponentChanged (juce::TextPropertyComponent* property)
{
    const auto text = property->getText().trim();
    property->setText (text);

    if (property == nameProperty)
        checkName (text);
    else
        canUpdate = hasFile && ! nameTaken;

    enableButtons();
}

void ProgramPanel::checkName (const juce::String& name)
{
    if (manager.isNameInUse (name))
    {
        hint.setText ("Another preset already has this name", juce::dontSendNotification);
        canUpdate = false;
        canSaveNew = false;
        nameTaken = true;
        return;
    }

    // A program without a file has nothing to update, whatever its name.
    canUpdate = hasFile;
    canSaveNew = true;
    nameTaken = false;
    fileValue = fileStemFor (name);
    hint.setText ("Filename for save new will be: " + newPresetFile().getFileName(), juce::dontSendNotification);
}

void ProgramPanel::enableButtons()
{
    saveNewButton.setEnabled (canSaveNew);
    updateButton.setEnabled (canUpdate);
}

juce::String ProgramPanel::fileStemFor (const juce::String& name)
{
    // Separators and leading dots would make a path or a hidden file of it.
    const auto stem = juce::File::createLegalFileName (name.removeCharacters ("\r\n\t"))
                          .trimCharactersAtStart (". ")
                          .trimCharactersAtEnd (". ");
    return stem.isNotEmpty() ? stem : juce::String ("untitled");
}

juce::File ProgramPanel::newPresetFile() const
{
    return PresetManager::presetFolder().getNonexistentChildFile (fileValue.toString(), PresetIds::fileSuffix, true);
}

PresetInfo ProgramPanel::readFields() const
{
    return { nameValue.toString(), authorValue.toString(), typeValue.toString(), notesValue.toString() };
}

bool ProgramPanel::writeProgram (const juce::ValueTree& parameterState, const PresetInfo& info, const juce::File& file)
{
    const auto xml = withInfo (info, parameterState).createXml();
    return xml != nullptr && xml->writeTo (file, Preset::fileFormat());
}

void ProgramPanel::update()
{
    if (const auto* preset = manager.getCurrentProgram().preset; preset != nullptr && preset->file != juce::File())
        save (preset->file);
}

void ProgramPanel::saveNew()
{
    PresetManager::presetFolder().createDirectory();
    save (newPresetFile());
}

void ProgramPanel::save (juce::File file)
{
    // A failed write changes nothing: what was typed stays, and so do the buttons, for another try.
    if (! writeProgram (manager.getState().copyState(), readFields(), file))
    {
        hint.setText ("failed!", juce::dontSendNotification);
        return;
    }

    reloadLibrary();

    // The program now belongs to the file just written: the next "update" goes there, and the panel
    // opens again with what was saved.
    manager.attachCurrentTo (file);
    const auto& program = manager.getCurrentProgram();
    nameValue = program.name;
    fileValue = fileStemFor (program.name);
    hasFile = program.preset != nullptr;
    canUpdate = canSaveNew = nameTaken = false;
    enableButtons();
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
