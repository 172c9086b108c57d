// SPDX-License-Identifier: AGPL-3.0-or-later
// Moves the four text fields between a PresetInfo and the "PROGRAM" and "NOTES" children of a tree.
#include "presets/PresetInfo.h"

#include "presets/PresetIds.h"

namespace velkaro
{
PresetInfo readInfo (const juce::ValueTree& tree)
{
    PresetInfo info;
    const auto program = tree.getChildWithName (PresetIds::program);
    info.name = program.getProperty (PresetIds::name, PresetIds::defaultName).toString();
    info.type = program.getProperty (PresetIds::type, juce::String()).toString();
    info.author = program.getProperty (PresetIds::author, juce::String()).toString();
    info.notes = tree.getChildWithName (PresetIds::notes).getProperty (PresetIds::text, juce::String()).toString();
    return info;
}

juce::ValueTree withInfo (const PresetInfo& info, const juce::ValueTree& tree)
{
    auto copy = tree.createCopy();
    if (! copy.isValid())
        return copy;

    auto program = copy.getOrCreateChildWithName (PresetIds::program, nullptr);
    const auto programIndex = copy.indexOf (program);
    if (programIndex != 0)
        copy.moveChild (programIndex, 0, nullptr);

    program.setProperty (PresetIds::name, info.name, nullptr);
    program.setProperty (PresetIds::type, info.type, nullptr);
    program.setProperty (PresetIds::author, info.author, nullptr);

    copy.getOrCreateChildWithName (PresetIds::notes, nullptr).setProperty (PresetIds::text, info.notes, nullptr);
    return copy;
}
} // namespace velkaro
