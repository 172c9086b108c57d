// SPDX-License-Identifier: AGPL-3.0-or-later
// The two ways a program record comes to be: from a host state or from a library preset.
#include "presets/CurrentProgram.h"

namespace velkaro
{
std::unique_ptr<CurrentProgram> CurrentProgram::fromState (const juce::ValueTree& state)
{
    auto program = std::make_unique<CurrentProgram>();
    program->original = state.createCopy();
    const auto info = readInfo (program->original);
    program->name = info.name;
    program->author = info.author;
    program->type = info.type;
    program->notes = info.notes;
    return program;
}

std::unique_ptr<CurrentProgram> CurrentProgram::fromPreset (const Preset& preset)
{
    auto program = std::make_unique<CurrentProgram>();
    program->preset = &preset;
    program->original = juce::ValueTree::fromXml (preset);
    program->name = preset.name;
    program->author = preset.author;
    program->type = preset.type;
    program->notes = preset.notes;
    return program;
}
} // namespace velkaro
