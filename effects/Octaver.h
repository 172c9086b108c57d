// SPDX-License-Identifier: AGPL-3.0-or-later
// Phase-vocoder octaver. (Placeholder.)
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

class Octaver
{
public:
    void prepare (double sampleRate, int samplesPerBlock);
    void process (juce::AudioBuffer<float>& wet, int numSamples, float mix, float ratio);
};
