// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset library: first use, scan with duplicate renaming, indexes, filter, stepping and loading.
#include "presets/PresetManager.h"

#include <algorithm>
#include <cmath>

#include "core/BundleResources.h"
#include "core/XmlText.h"
#include "presets/PresetIds.h"

namespace velkaro
{
namespace
{
constexpr const char* indexProperty = "index";

// A preset is a few kilobytes; anything far larger is not one, and parsing it would stall the thread.
constexpr juce::int64 largestPresetFileBytes = 8 * 1024 * 1024;

struct NaturalLess
{
    bool operator() (const juce::String& a, const juce::String& b) const { return a.compareNatural (b, false) < 0; }
};

// Copies the files below `source` into `target`, keeping the sub-folders, and leaves alone every file
// that already exists there: the library is the user's, and a factory copy must never replace their work.
void copyMissingFiles (const juce::File& source, const juce::File& target)
{
    for (const auto& entry : juce::RangedDirectoryIterator (source, true, "*", juce::File::findFiles,
                                                            juce::File::FollowSymlinks::noCycles))
    {
        const auto& file = entry.getFile();
        const auto destination = target.getChildFile (file.getRelativePathFrom (source));
        if (destination.exists())
            continue;
        if (destination.getParentDirectory().createDirectory().wasOk())
            file.copyFileTo (destination);
    }
}
} // namespace

PresetManager::PresetManager (juce::AudioProcessorValueTreeState& stateToUse, juce::ValueTree selectionToUse)
    : state (stateToUse), current (CurrentProgram::fromState (stateToUse.state)), selection (std::move (selectionToUse))
{
}

PresetManager::~PresetManager()
{
    state.state.removeListener (this);
}

juce::File PresetManager::presetFolder()
{
    return juce::File::getSpecialLocation (juce::File::userMusicDirectory).getChildFile ("ondrivel");
}

void PresetManager::copyFactoryPresetsIfEmpty (const juce::File& folder, const juce::File& factoryPresets)
{
    if (! folder.findChildFiles (juce::File::findFiles, false, juce::String ("*") + PresetIds::fileSuffix).isEmpty())
        return;
    if (factoryPresets.isDirectory())
        copyMissingFiles (factoryPresets, folder);
}

void PresetManager::readyPresetFolder()
{
    readyPresetFolder (BundleResources::getPresetsFolder());
}

void PresetManager::readyPresetFolder (const juce::File& factoryPresets)
{
    const auto folder = presetFolder();
    if (! folder.exists())
        folder.createDirectory();

    if (folder.isDirectory())
        copyFactoryPresetsIfEmpty (folder, factoryPresets);

    state.state.addListener (this);
    current = CurrentProgram::fromState (state.state);
}

void PresetManager::scanPresets()
{
    auto files = presetFolder().findChildFiles (juce::File::findFiles, true, juce::String ("*") + PresetIds::fileSuffix,
                                                juce::File::FollowSymlinks::noCycles);
    if (files.size() >= 2)
        std::stable_sort (files.begin(), files.end(), [] (const juce::File& a, const juce::File& b)
                          { return a.getFullPathName().compareNatural (b.getFullPathName(), false) < 0; });

    for (const auto& file : files)
    {
        if (file.getSize() > largestPresetFileBytes)
            continue;
        // Files that cannot be read or do not parse have no document element and are passed over.
        auto xml = XmlText::parse (file);
        if (xml == nullptr)
            continue;
        xml->setTagName (state.state.getType().toString());
        addPreset (std::move (xml), file);
    }

    if (presets.empty())
    {
        if (auto xml = current->original.createCopy().createXml())
            addPreset (std::move (xml), juce::File());
    }

    visibleCount = presets.size();
}

void PresetManager::reload()
{
    // The records are about to be destroyed; the program keeps its text and trees, and finds its
    // record again by the file.
    const auto loadedFile = current->preset != nullptr ? current->preset->file : juce::File();
    current->preset = nullptr;
    currentPreset = nullptr;

    presetsByAuthor.clear();
    presetsByType.clear();
    filtered.clear();
    authors.clear();
    types.clear();
    names.clear();
    presets.clear();

    hasCurrentIndex = false;
    selection.removeProperty (indexProperty, nullptr);

    scanPresets();

    if (activeFilter.has_value())
        setFilter (*activeFilter);

    if (loadedFile != juce::File())
        attachCurrentTo (loadedFile);
}

bool PresetManager::attachCurrentTo (const juce::File& file)
{
    const auto found = std::find_if (presets.begin(), presets.end(), [&file] (const auto& p) { return p->file == file; });
    if (file == juce::File() || found == presets.end())
        return false;

    const auto* preset = found->get();
    current->preset = preset;
    current->name = preset->name;
    current->author = preset->author;
    current->type = preset->type;
    current->notes = preset->notes;
    currentPreset = preset;

    const auto inForce = getPresets();
    const auto position = std::find (inForce.begin(), inForce.end(), preset);
    if (position != inForce.end())
        moveSelectionTo ((size_t) (position - inForce.begin()));

    onPresetChange (currentPreset);
    return true;
}

void PresetManager::addPreset (std::unique_ptr<juce::XmlElement> xml, const juce::File& file)
{
    if (xml == nullptr)
        return;

    auto preset = std::make_unique<Preset> (*xml, file);

    auto& counter = names[preset->name];
    if (counter != 0)
    {
        ++counter;
        auto info = preset->getInfo();
        info.name = preset->name + " (" + juce::String (counter) + ")";
        preset->updateInfoAndSave (info);
        names[preset->name] = 1;
    }
    else
    {
        counter = 1;
    }

    authors.insert (preset->author);
    types.insert (preset->type);

    auto* added = presets.emplace_back (std::move (preset)).get();
    presetsByAuthor.emplace (added->author, added);
    presetsByType.emplace (added->type, added);
}

void PresetManager::setFilter (const PresetFilter& filter)
{
    if (filter.isEmpty())
    {
        activeFilter.reset();
        filtered.clear();
        visibleCount = presets.size();
        dropSelectionIndex();
        return;
    }

    std::map<juce::String, Preset*, NaturalLess> byName;
    for (const auto& type : filter.types)
    {
        const auto range = presetsByType.equal_range (type);
        for (auto it = range.first; it != range.second; ++it)
            byName.emplace (it->second->name, it->second);
    }
    for (const auto& author : filter.authors)
    {
        const auto range = presetsByAuthor.equal_range (author);
        for (auto it = range.first; it != range.second; ++it)
            byName.emplace (it->second->name, it->second);
    }

    filtered.clear();
    filtered.reserve (byName.size());
    for (const auto& entry : byName)
        filtered.push_back (entry.second);

    activeFilter = filter;
    visibleCount = filtered.size();
    dropSelectionIndex();
}

std::vector<Preset*> PresetManager::getPresets() const
{
    if (activeFilter.has_value())
        return filtered;

    std::vector<Preset*> all;
    all.reserve (presets.size());
    for (const auto& preset : presets)
        all.push_back (preset.get());
    return all;
}

bool PresetManager::isNameInUse (const juce::String& name) const
{
    return std::any_of (presets.begin(), presets.end(),
                        [&name] (const auto& preset) { return preset->name == name && preset->file != juce::File(); });
}

Preset* PresetManager::entryInForce (size_t index) const
{
    if (activeFilter.has_value())
        return index < filtered.size() ? filtered[index] : nullptr;
    return index < presets.size() ? presets[index].get() : nullptr;
}

void PresetManager::moveSelectionTo (size_t index)
{
    currentIndex = index;
    hasCurrentIndex = true;
    selection.setProperty (indexProperty, (int) index, nullptr);
}

void PresetManager::dropSelectionIndex()
{
    hasCurrentIndex = false;
    selection.removeProperty (indexProperty, nullptr);
}

void PresetManager::selectPreset (size_t index)
{
    if (index >= visibleCount)
        return;
    moveSelectionTo (index);
    loadPreset (entryInForce (index));
}

void PresetManager::selectNext()
{
    if (visibleCount == 0)
        return;
    size_t index = 0;
    if (hasCurrentIndex)
        index = currentIndex + 1 < visibleCount ? currentIndex + 1 : 0;
    moveSelectionTo (index);
    loadFromPresets (entryInForce (index));
}

void PresetManager::selectPrevious()
{
    if (visibleCount == 0)
        return;
    const size_t index = (! hasCurrentIndex || currentIndex == 0) ? visibleCount - 1 : currentIndex - 1;
    moveSelectionTo (index);
    loadFromPresets (entryInForce (index));
}

void PresetManager::loadFromPresets (const Preset* entry)
{
    const auto found = std::find_if (presets.begin(), presets.end(), [entry] (const auto& p) { return p.get() == entry; });
    if (entry != nullptr && found != presets.end())
        loadPreset (found->get());
}

void PresetManager::clearSelection()
{
    dropSelectionIndex();
}

void PresetManager::loadPreset (const Preset* preset)
{
    if (preset == nullptr)
        return;

    currentPreset = preset;
    current = CurrentProgram::fromPreset (*preset);
    modified = false;
    auto newState = juce::ValueTree::fromXml (*preset);
    keepValuesMissingFrom (newState);
    replaceNonFiniteValues (state, newState);
    state.replaceState (newState);
    onPresetChange (currentPreset);
}

void PresetManager::keepValuesMissingFrom (juce::ValueTree& newState) const
{
    // Written into the tree, not only left in the parameter: a later save or host state must carry
    // the value, and the parameter tree would read a child without one as the default.
    static const juce::Identifier idProperty { "id" }, valueProperty { "value" };
    for (auto* p : state.processor.getParameters())
    {
        const auto* parameter = dynamic_cast<const juce::RangedAudioParameter*> (p);
        if (parameter == nullptr)
            continue;
        auto child = newState.getChildWithProperty (idProperty, parameter->paramID);
        if (! child.isValid())
        {
            child = juce::ValueTree ("PARAM");
            child.setProperty (idProperty, parameter->paramID, nullptr);
            newState.appendChild (child, nullptr);
        }
        if (! child.hasProperty (valueProperty))
            if (const auto* value = state.getRawParameterValue (parameter->paramID))
                child.setProperty (valueProperty, value->load(), nullptr);
    }
}

void PresetManager::replaceNonFiniteValues (juce::AudioProcessorValueTreeState& stateToUse, juce::ValueTree& newState)
{
    // The parameter tree takes a child of any type by its "id", so every child is checked.
    static const juce::Identifier idProperty { "id" }, valueProperty { "value" };
    for (auto child : newState)
    {
        if (! child.hasProperty (valueProperty))
            continue;
        if (std::isfinite ((float) child.getProperty (valueProperty)))
            continue;
        if (auto* parameter = stateToUse.getParameter (child.getProperty (idProperty).toString()))
            child.setProperty (valueProperty, parameter->convertFrom0to1 (parameter->getDefaultValue()), nullptr);
    }
}

void PresetManager::rebaseline()
{
    current->edited = state.state.createCopy();
    if (current->original.isValid())
        modified = false;
}

void PresetManager::detachFromPreset (const juce::ValueTree& newState)
{
    currentPreset = nullptr;
    modified = false;
    current = CurrentProgram::fromState (newState);
}

void PresetManager::valueTreePropertyChanged (juce::ValueTree&, const juce::Identifier&)
{
    if (modified)
        return;
    current->isModified = true;
    onProgramModified();
    modified = true;
}
} // namespace velkaro
