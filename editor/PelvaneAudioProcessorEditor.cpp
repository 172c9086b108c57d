// SPDX-License-Identifier: AGPL-3.0-or-later
#include "editor/PelvaneAudioProcessorEditor.h"
#include "core/KestruneAudioProcessor.h"

PelvaneAudioProcessorEditor::PelvaneAudioProcessorEditor (KestruneAudioProcessor& p)
    : juce::AudioProcessorEditor (p)
{
    setSize (880, 486);
}

void PelvaneAudioProcessorEditor::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colours::darkgrey);
}
