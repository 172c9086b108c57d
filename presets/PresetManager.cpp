// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/PresetManager.h"

namespace velkaro
{
PresetManager::PresetManager (juce::AudioProcessorValueTreeState& state, juce::ValueTree& sel)
    : parameters (state), selection (sel)
{
}

void PresetManager::startUp() {}

void PresetManager::stateWasReplaced()
{
    selection.removeProperty ("index", nullptr);
    selection.removeProperty ("name", nullptr);
}
} // namespace velkaro
