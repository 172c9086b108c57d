// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset browser: filter tree beside the metadata table, under a strip with the bulk-edit controls.
#pragma once

#include <vector>

#include <juce_gui_basics/juce_gui_basics.h>

#include "presets/FilterTree.h"
#include "presets/PresetFilter.h"
#include "presets/PresetManager.h"
#include "presets/PresetsHelpPanel.h"
#include "presets/PresetsMetadataTable.h"

namespace velkaro
{
class PresetsPanel : public juce::Component, public juce::KeyListener, public juce::ComponentListener
{
public:
    explicit PresetsPanel (PresetManager& presetManager);
    ~PresetsPanel() override;

    // Shows the browser with a fresh tree and table, or fades it out (closing the help layer first).
    void toggle();

    // Reloads the library on behalf of another panel: pending edits follow their files into the new
    // records, and the rows are renewed since the old records are gone.
    void reloadLibraryKeepingEdits();

    void paint (juce::Graphics& g) override;
    void resized() override;
    void lookAndFeelChanged() override;
    bool keyPressed (const juce::KeyPress& key, juce::Component* originatingComponent) override;
    using juce::Component::keyPressed;
    void componentVisibilityChanged (juce::Component& component) override;

    juce::TextButton saveChangesButton { "save changes" };
    juce::Label unsavedLabel;
    juce::Label titleLabel;
    juce::ToggleButton autoloadToggle { "autoload selected" };
    juce::TextButton helpButton { "?" };
    juce::TextButton closeButton { "X" };
    FilterTree filterTree;
    PresetsMetadataTable table;
    PresetFilter filter;
    std::vector<Preset*> rows;
    PresetsHelpPanel help;
    int stripHeight = 18;
    int fadeMs = 120;

private:
    void filterChanged();
    void saveChanges();
    void refreshRows();
    void rebuildFilterTree();

    PresetManager& manager;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetsPanel)
};
} // namespace velkaro
