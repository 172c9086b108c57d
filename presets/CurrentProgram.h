// SPDX-License-Identifier: AGPL-3.0-or-later
// What is loaded now: the preset it came from (if any), the tree as loaded and its text fields.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include "presets/Preset.h"

namespace velkaro
{
struct CurrentProgram
{
    // A program taken from a state tree that belongs to no preset, its text read from the tree.
    static std::unique_ptr<CurrentProgram> fromState (const juce::ValueTree& state);

    // A program loaded from a library preset, its text taken from the record.
    static std::unique_ptr<CurrentProgram> fromPreset (const Preset& preset);

    PresetInfo getInfo() const { return { name, author, type, notes }; }

    const Preset* preset = nullptr; // null after a host state or a reload of the library
    juce::ValueTree original;
    juce::String name;
    juce::String author;
    juce::String type;
    juce::String notes;
    juce::ValueTree edited;   // renewed by rebaseline; invalid right after a load
    bool isModified = false;  // set at the first edit, cleared only by a new record
};
} // namespace velkaro
