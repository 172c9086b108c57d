// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset library in memory. (Placeholder until the preset library lands.)
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace velkaro
{
class PresetManager
{
public:
    PresetManager (juce::AudioProcessorValueTreeState& state, juce::ValueTree& selection);

    // Copies the factory presets on first use and scans the library.
    void startUp();
    // A host state recall detaches the program from the library.
    void stateWasReplaced();

private:
    juce::AudioProcessorValueTreeState& parameters;
    juce::ValueTree& selection;
};
} // namespace velkaro
