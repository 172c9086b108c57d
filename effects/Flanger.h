// SPDX-License-Identifier: AGPL-3.0-or-later
// The flanger: the framework's chorus arithmetic step for step (sine LFO, linear-interpolated
// modulated delay with feedback, linear dry/wet), with the delay line written inline so a sample's
// push, read and step cost no calls; each channel's delay position is worked out once per sample.
#pragma once

#include <array>
#include <vector>

#include <juce_dsp/juce_dsp.h>

class Flanger
{
public:
    Flanger();

    void setRate (float newRateHz);
    void setDepth (float newDepth);
    void setCentreDelay (float newDelayMs);
    void setFeedback (float newFeedback);
    void setMix (float newMix);

    // Sizes the delay for the longest modulated delay at this rate; allocates. Clears all state.
    void prepare (const juce::dsp::ProcessSpec& spec);
    void reset();

    // At most the prepared block size and at most two channels.
    void process (const juce::dsp::ProcessContextReplacing<float>& context) noexcept;

private:
    void update();

    static constexpr float maxDepth = 1.0f, maxCentreDelayMs = 100.0f, oscVolumeMultiplier = 0.5f,
                           maximumDelayModulation = 20.0f;

    juce::dsp::Oscillator<float> osc;
    juce::SmoothedValue<float, juce::ValueSmoothingTypes::Linear> oscVolume;
    std::array<juce::SmoothedValue<float, juce::ValueSmoothingTypes::Linear>, 2> feedbackVolume;
    juce::dsp::DryWetMixer<float> dryWet;
    std::array<float, 2> lastOutput {};
    juce::AudioBuffer<float> bufferDelayTimes;
    std::vector<int> delayWhole;      // the whole samples of each sample's delay
    std::vector<float> delayFraction; // and the fraction between them

    juce::AudioBuffer<float> lineData;
    std::array<int, 2> writePos {}, readPos {};
    int totalSize = 4;
    int numChannels = 2;

    double sampleRate = 44100.0;
    float rate = 1.0f, depth = 0.25f, feedback = 0.0f, mix = 0.5f, centreDelay = 7.0f;
};
