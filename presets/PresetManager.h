// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset library in memory: folder and first use, scan, indexes, filter, selection, loading,
// and the latch that reports the first edit of a loaded state. Message thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include <juce_audio_processors/juce_audio_processors.h>

#include "presets/CurrentProgram.h"
#include "presets/Preset.h"
#include "presets/PresetFilter.h"
#include "presets/PresetInfo.h"

namespace velkaro
{
class PresetManager : public juce::ValueTree::Listener
{
public:
    std::function<void (const Preset*)> onPresetChange = [] (const Preset*) {};
    std::function<void()> onProgramModified = [] {};

    // `selection` is shared with the processor; its "index" follows the selected entry.
    PresetManager (juce::AudioProcessorValueTreeState& state, juce::ValueTree selection);
    ~PresetManager() override;

    // The library folder: "ondrivel" in the user's music folder.
    static juce::File presetFolder();

    // Creates the folder, copies the bundle's factory presets when it holds no preset file at its
    // top level, starts watching the state and records it as the current program.
    void readyPresetFolder();
    void readyPresetFolder (const juce::File& factoryPresets);

    // The first-use copy on its own: nothing is copied when `folder` already holds a "*.xml" file, and
    // an existing file is never replaced.
    static void copyFactoryPresetsIfEmpty (const juce::File& folder, const juce::File& factoryPresets);

    void scanPresets();
    // Reads the library again; the loaded program stays with its file, so it can still be updated and
    // stepped on from, as long as that file is still there.
    void reload();
    void addPreset (std::unique_ptr<juce::XmlElement> xml, const juce::File& file);

    // Both sets empty drops the filter; otherwise the list in force is the union, ordered by name.
    void setFilter (const PresetFilter& filter);
    bool hasActiveFilter() const { return activeFilter.has_value(); }
    PresetFilter getActiveFilter() const { return activeFilter.value_or (PresetFilter {}); }

    // The list in force: the filtered presets under a filter, else all in scan order.
    std::vector<Preset*> getPresets() const;
    size_t getVisibleCount() const { return visibleCount; }
    size_t getNumPresets() const { return presets.size(); }

    // Whether a preset of the library bears `name`. The stand-in of an empty library has no file and is
    // the program itself, so its name is free for the first real preset.
    bool isNameInUse (const juce::String& name) const;

    void selectPreset (size_t index);
    void selectNext();
    void selectPrevious();
    void clearSelection();
    bool hasSelection() const { return hasCurrentIndex; }
    size_t getCurrentIndex() const { return currentIndex; }

    void loadPreset (const Preset* preset);

    // Makes the record read from `file` the loaded program's preset (its text taken from the record) and
    // selects it in the list in force; the parameters are left as they are. False if no record has that file.
    bool attachCurrentTo (const juce::File& file);

    // Takes the present state as the reference for "edited" and, after a load, re-arms the edit latch.
    void rebaseline();

    const CurrentProgram& getCurrentProgram() const { return *current; }
    const Preset* getCurrentPreset() const { return currentPreset; }

    // The edit latch: set once the first edit of a loaded state has been reported. The toolbar's timer
    // sets it again when the undo history shows edits after a rebaseline.
    bool isModified() const { return modified; }
    void setModified (bool shouldBeModified) { modified = shouldBeModified; }

    // The parameter state that presets are loaded into; the program panel saves from it.
    juce::AudioProcessorValueTreeState& getState() const { return state; }

    // A handle on the shared "selection" tree, for the table to listen to.
    juce::ValueTree getSelection() const { return selection; }

    // A state set by the host belongs to no preset: forget the loaded one and take the text from the tree.
    void detachFromPreset (const juce::ValueTree& newState);

    // A parameter value that is not a finite number (a damaged file or block) becomes the parameter's
    // default before a tree is installed, so no NaN reaches the sound.
    static void replaceNonFiniteValues (juce::AudioProcessorValueTreeState& state, juce::ValueTree& newState);

    void valueTreePropertyChanged (juce::ValueTree& tree, const juce::Identifier& property) override;

private:
    juce::AudioProcessorValueTreeState& state;
    std::vector<std::unique_ptr<Preset>> presets;

public:
    // Read directly by the filter tree and the metadata table.
    std::set<juce::String> types;
    std::set<juce::String> authors;
    std::map<juce::String, int> names;

private:
    Preset* entryInForce (size_t index) const;
    void moveSelectionTo (size_t index);
    void loadFromPresets (const Preset* entry);
    void dropSelectionIndex();
    // A preset file that leaves parameters out leaves them as they are.
    void keepValuesMissingFrom (juce::ValueTree& newState) const;

    std::multimap<juce::String, Preset*> presetsByAuthor;
    std::multimap<juce::String, Preset*> presetsByType;
    std::vector<Preset*> filtered;
    size_t visibleCount = 0;
    size_t currentIndex = 0;
    bool hasCurrentIndex = false;
    const Preset* currentPreset = nullptr;
    std::unique_ptr<CurrentProgram> current;
    std::optional<PresetFilter> activeFilter;
    juce::ValueTree selection;
    bool modified = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PresetManager)
};
} // namespace velkaro
