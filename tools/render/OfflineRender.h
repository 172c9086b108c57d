// SPDX-License-Identifier: AGPL-3.0-or-later
// One run of the renderer: check every input, load the plug-in, play, write the WAV and the state.
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include "RenderOptions.h"

class OfflineRender
{
public:
    explicit OfflineRender (const RenderOptions& options);

    // Returns false with a one-line reason when an input is bad or an output cannot be written;
    // then no output file is left behind. On success `summary` holds what to print.
    bool run (juce::String& summary, juce::String& error);

private:
    bool readInputs (juce::String& error);

    const RenderOptions& options;
    juce::MidiMessageSequence midiSequence;
    juce::MemoryBlock initialState;
    bool hasInitialState = false;
};
