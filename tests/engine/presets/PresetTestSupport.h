// SPDX-License-Identifier: AGPL-3.0-or-later
// A throw-away home folder for preset and editor tests, and small helpers to write preset files into it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <map>

#include <juce_audio_processors/juce_audio_processors.h>

#include "core/ParameterTable.h"
#include "presets/Preset.h"
#include "presets/PresetManager.h"

// Points HOME at a fresh temporary folder, so the music folder, the library and the settings live there
// and tests run in parallel never share a file.
struct ScopedTempHome
{
    ScopedTempHome() : previous (std::getenv ("HOME") != nullptr ? std::getenv ("HOME") : "")
    {
        folder.createDirectory();
        setenv ("HOME", folder.getFullPathName().toRawUTF8(), 1);
    }
    ~ScopedTempHome()
    {
        if (previous.isNotEmpty())
            setenv ("HOME", previous.toRawUTF8(), 1);
        folder.deleteRecursively();
    }

    juce::File library() const { return velkaro::PresetManager::presetFolder(); }

    juce::String previous;
    juce::File folder = juce::File::getSpecialLocation (juce::File::tempDirectory)
                            .getNonexistentChildFile ("ondrivel-home-" + juce::String (juce::Random::getSystemRandom().nextInt64()), {}, false);
};

using ValueTexts = std::map<juce::String, juce::String>;

// A preset document with all 30 parameters at their defaults, or at the text in `values` where given.
inline std::unique_ptr<juce::XmlElement> makePresetXml (const juce::String& name, const juce::String& type,
                                                        const juce::String& author, const ValueTexts& values = {})
{
    auto xml = std::make_unique<juce::XmlElement> ("ondrivel");
    auto* program = xml->createNewChildElement ("PROGRAM");
    for (const auto& [key, text] : { std::pair ("NAME", name), std::pair ("TYPE", type), std::pair ("AUTHOR", author) })
        program->setAttribute (key, text);
    for (const auto& row : parameterTable)
    {
        auto* param = xml->createNewChildElement ("PARAM");
        param->setAttribute ("id", row.id);
        param->setAttribute ("value", values.count (row.id) != 0 ? values.at (row.id) : juce::String (row.defaultValue));
    }
    xml->createNewChildElement ("NOTES")->setAttribute ("TEXT", "notes of " + name);
    return xml;
}

inline juce::File writePresetFile (const juce::File& file, const juce::String& name, const juce::String& type = {},
                                   const juce::String& author = {}, const ValueTexts& values = {})
{
    file.getParentDirectory().createDirectory();
    makePresetXml (name, type, author, values)->writeTo (file, velkaro::Preset::fileFormat());
    return file;
}

inline std::vector<juce::String> namesOf (const std::vector<velkaro::Preset*>& presets)
{
    std::vector<juce::String> result (presets.size());
    std::transform (presets.begin(), presets.end(), result.begin(), [] (auto* p) { return p->name; });
    return result;
}

// Every file below `folder` with its bytes, to prove what a scan or a save did or did not write.
inline std::map<juce::String, juce::MemoryBlock> snapshotFiles (const juce::File& folder)
{
    std::map<juce::String, juce::MemoryBlock> result;
    for (const auto& f : folder.findChildFiles (juce::File::findFiles, true, "*", juce::File::FollowSymlinks::noCycles))
        f.loadFileAsData (result[f.getRelativePathFrom (folder)]);
    return result;
}
