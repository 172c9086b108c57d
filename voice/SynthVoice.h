// SPDX-License-Identifier: AGPL-3.0-or-later
// One two-operator phase-modulation voice. (Placeholder: silent until the voice engine lands.)
#pragma once

#include <array>
#include <atomic>
#include <juce_audio_basics/juce_audio_basics.h>

class SynthVoice : public juce::SynthesiserVoice
{
public:
    using ParameterValues = std::array<std::atomic<float>*, 30>;

    void prepareVoice (double sampleRate);
    void pushParameters (const ParameterValues& values);

    bool canPlaySound (juce::SynthesiserSound*) override;
    void startNote (int midiNoteNumber, float velocity, juce::SynthesiserSound*, int currentPitchWheelPosition) override;
    void stopNote (float velocity, bool allowTailOff) override;
    void pitchWheelMoved (int newPitchWheelValue) override;
    void controllerMoved (int controllerNumber, int newControllerValue) override;
    void renderNextBlock (juce::AudioBuffer<float>& outputBuffer, int startSample, int numSamples) override;
};
