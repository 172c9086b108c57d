// SPDX-License-Identifier: AGPL-3.0-or-later
// A throw-away home folder for preset and editor tests, and small helpers to write preset files into it.
#pragma once

#include <algorithm>
#include <map>

#include <juce_audio_processors/juce_audio_processors.h>

#include "core/ParameterTable.h"
#include "engine/support/ScopedHome.h"
#include "presets/Preset.h"
#include "presets/PresetManager.h"

// A home folder of the test's own, and the preset library in it.
struct ScopedTempHome : ScopedHome
{
    juce::File library() const { return velkaro::PresetManager::presetFolder(); }
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
