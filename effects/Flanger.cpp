// SPDX-License-Identifier: AGPL-3.0-or-later
// Flanger set-up and block loop.
#include "effects/Flanger.h"

#include <cmath>

Flanger::Flanger()
{
    osc.initialise ([] (float x) { return std::sin (x); });
    dryWet.setMixingRule (juce::dsp::DryWetMixingRule::linear);
}

void Flanger::setRate (float newRateHz)
{
    rate = newRateHz;
    update();
}

void Flanger::setDepth (float newDepth)
{
    depth = newDepth;
    update();
}

void Flanger::setCentreDelay (float newDelayMs)
{
    centreDelay = juce::jlimit (1.0f, maxCentreDelayMs, newDelayMs);
}

void Flanger::setFeedback (float newFeedback)
{
    feedback = newFeedback;
    update();
}

void Flanger::setMix (float newMix)
{
    mix = newMix;
    update();
}

void Flanger::prepare (const juce::dsp::ProcessSpec& spec)
{
    sampleRate = spec.sampleRate;
    const auto maxPossibleDelay = std::ceil ((maximumDelayModulation * maxDepth * oscVolumeMultiplier + maxCentreDelayMs) * sampleRate / 1000.0);
    totalSize = juce::jmax (4, (int) maxPossibleDelay + 2);
    numChannels = (int) juce::jmin (spec.numChannels, (juce::uint32) 2);
    lineData.setSize (2, totalSize, false, false, true);
    dryWet.prepare (spec);
    osc.prepare (spec);
    const int maxBlock = (int) juce::jmax (spec.maximumBlockSize, (juce::uint32) 1);
    bufferDelayTimes.setSize (1, maxBlock, false, false, true);
    delayWhole.assign ((size_t) maxBlock, 0);
    delayFraction.assign ((size_t) maxBlock, 0.0f);
    update();
    reset();
}

void Flanger::reset()
{
    lastOutput.fill (0.0f);
    writePos.fill (0);
    readPos.fill (0);
    lineData.clear();
    osc.reset();
    dryWet.reset();
    oscVolume.reset (sampleRate, 0.05);
    for (auto& vol : feedbackVolume)
        vol.reset (sampleRate, 0.05);
}

void Flanger::update()
{
    osc.setFrequency (rate);
    oscVolume.setTargetValue (depth * oscVolumeMultiplier);
    dryWet.setWetMixProportion (mix);
    for (auto& vol : feedbackVolume)
        vol.setTargetValue (feedback);
}

void Flanger::process (const juce::dsp::ProcessContextReplacing<float>& context) noexcept
{
    const auto& inputBlock = context.getInputBlock();
    auto& outputBlock = context.getOutputBlock();
    const auto channels = juce::jmin (outputBlock.getNumChannels(), (size_t) numChannels);
    const auto numSamples = juce::jmin (outputBlock.getNumSamples(), (size_t) bufferDelayTimes.getNumSamples());
    if (numSamples == 0 || lineData.getNumChannels() < 2)
        return; // not prepared

    auto delayValuesBlock = juce::dsp::AudioBlock<float> (bufferDelayTimes).getSubBlock (0, numSamples);
    auto contextDelay = juce::dsp::ProcessContextReplacing<float> (delayValuesBlock);
    delayValuesBlock.clear();
    osc.process (contextDelay);
    delayValuesBlock.multiplyBy (oscVolume);

    // The delay of each sample, limited to the line and split as the framework's line splits it.
    auto* delaySamples = bufferDelayTimes.getWritePointer (0);
    auto* whole = delayWhole.data();
    auto* fraction = delayFraction.data();
    const auto upperLimit = (float) (totalSize - 2);
    for (size_t i = 0; i < numSamples; ++i)
    {
        const auto lfo = juce::jmax (1.0f, maximumDelayModulation * delaySamples[i] + centreDelay);
        const auto d = juce::jlimit (0.0f, upperLimit, (float) (lfo * sampleRate / 1000.0));
        whole[i] = (int) std::floor (d);
        fraction[i] = d - (float) whole[i];
    }

    dryWet.pushDrySamples (inputBlock);

    for (size_t channel = 0; channel < channels; ++channel)
    {
        const auto* inputSamples = inputBlock.getChannelPointer (channel);
        auto* outputSamples = outputBlock.getChannelPointer (channel);
        float* line = lineData.getWritePointer ((int) channel);
        int w = writePos[channel];
        int r = readPos[channel];
        float last = lastOutput[channel];
        auto& feedbackGain = feedbackVolume[channel];
        for (size_t i = 0; i < numSamples; ++i)
        {
            line[w] = inputSamples[i] - last;
            w = w == 0 ? totalSize - 1 : w - 1;

            int index1 = r + whole[i];
            int index2 = index1 + 1;
            if (index2 >= totalSize)
            {
                index1 %= totalSize;
                index2 %= totalSize;
            }
            const float value1 = line[index1];
            const float value2 = line[index2];
            const float output = value1 + fraction[i] * (value2 - value1);
            r = r == 0 ? totalSize - 1 : r - 1;

            outputSamples[i] = output;
            last = output * feedbackGain.getNextValue();
        }
        writePos[channel] = w;
        readPos[channel] = r;
        lastOutput[channel] = last;
    }

    dryWet.mixWetSamples (outputBlock);
}
