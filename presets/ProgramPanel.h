// SPDX-License-Identifier: AGPL-3.0-or-later
// The panel where the four text fields of the loaded program are edited and saved, over the preset's
// own file ("update") or into a new one ("save new").
#pragma once

#include <functional>

#include <juce_gui_basics/juce_gui_basics.h>

#include "presets/PresetManager.h"

namespace velkaro
{
class ProgramPanel : public juce::Component, public juce::TextPropertyComponent::Listener
{
public:
    explicit ProgramPanel (PresetManager& presetManager);
    ~ProgramPanel() override;

    // Fades the panel in (bringing it to the front with the keyboard focus) or out.
    void toggle();

    void visibilityChanged() override;
    void paint (juce::Graphics& g) override;
    void resized() override;
    void textPropertyComponentChanged (juce::TextPropertyComponent* property) override;

    // Writes the present parameter state with `info` into `file`; the old file stays whole until the
    // new one is complete. False if the file could not be written.
    static bool writeProgram (const juce::ValueTree& parameterState, const PresetInfo& info, const juce::File& file);

    // The file name (without ".xml") that "save new" makes of a preset name: never a path, never hidden.
    static juce::String fileStemFor (const juce::String& name);

    juce::PropertyPanel properties;
    juce::Label hint;
    juce::TextButton updateButton { "update" };
    juce::TextButton saveNewButton { "save new" };
    juce::TextButton closeButton { "close" };
    juce::Value nameValue, fileValue, typeValue, authorValue, notesValue; // fileValue: the stem for "save new"
    bool hasFile = true;
    bool canUpdate = false, canSaveNew = false, nameTaken = false;
    int fadeMs = 120;

    juce::TextPropertyComponent* nameProperty = nullptr; // the four rows belong to `properties`
    juce::TextPropertyComponent* typeProperty = nullptr;
    juce::TextPropertyComponent* authorProperty = nullptr;
    juce::TextPropertyComponent* notesProperty = nullptr;

    // Runs after each save; the owner may reroute it so that others holding presets can follow.
    std::function<void()> reloadLibrary;

private:
    PresetInfo readFields() const;
    void update();
    void saveNew();
    void checkName (const juce::String& name);
    juce::File newPresetFile() const;
    void save (juce::File file); // a copy: the reload inside destroys the record that may own it
    void enableButtons();

    PresetManager& manager;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ProgramPanel)
};
} // namespace velkaro
