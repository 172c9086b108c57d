// SPDX-License-Identifier: AGPL-3.0-or-later
// The plug-in's panel. (Placeholder until the editor lands.)
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

class KestruneAudioProcessor;

class PelvaneAudioProcessorEditor : public juce::AudioProcessorEditor
{
public:
    explicit PelvaneAudioProcessorEditor (KestruneAudioProcessor&);
    void paint (juce::Graphics&) override;
};
