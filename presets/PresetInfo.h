// SPDX-License-Identifier: AGPL-3.0-or-later
// The four text fields of a preset, and how they are read from and written into a state tree.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

namespace velkaro
{
struct PresetInfo
{
    juce::String name;
    juce::String author;
    juce::String type;
    juce::String notes;
};

// The text fields of a state tree; a tree without "PROGRAM" is called "[init]".
PresetInfo readInfo (const juce::ValueTree& tree);

// A deep copy of the tree with "PROGRAM" moved to the front and "NOTES" set; invalid in, invalid out.
juce::ValueTree withInfo (const PresetInfo& info, const juce::ValueTree& tree);
} // namespace velkaro
