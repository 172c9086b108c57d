// SPDX-License-Identifier: AGPL-3.0-or-later
// Last stage: second DC blocker, 120 Hz high-pass and 40 ms pre-delay into two room-mode networks,
// mixed into the main signal by `reverb`.
#pragma once

#include <array>
#include <memory>

#include <juce_audio_basics/juce_audio_basics.h>
#include <juce_dsp/juce_dsp.h>

#include "core/DcBlocker.h"
#include "effects/FdnReverb.h"

class ReverbStage
{
public:
    // Builds fresh networks for the rate (drawing new detunings) and the high-pass; allocates.
    void prepare (double sampleRate);

    // Sets both rooms from size and decay (0..1 and a time factor); the pre-delay field is kept
    // only as a value, the line is set in prepare.
    void setReverbShape (float size, float decay, float preDelayField, float newMix);

    // Processes channels 0 and 1 of `main` in place. `reverb` is the parameter's raw value.
    void process (juce::AudioBuffer<float>& main, int numSamples, float reverb, DcBlocker& left, DcBlocker& right) noexcept;

    bool isPrepared() const noexcept { return leftNetwork != nullptr && rightNetwork != nullptr; }

private:
    static constexpr int chunkSize = 256;
    void processChunk (float* l, float* r, int n, float dry, DcBlocker& left, DcBlocker& right) noexcept;
    // True when nothing is left in the blockers, the high-pass, the pre-delay or the networks.
    bool isQuiet (const DcBlocker& left, const DcBlocker& right) const noexcept;

    std::unique_ptr<FdnReverb> leftNetwork;
    std::unique_ptr<FdnReverb> rightNetwork;

    float roomSize = 1.0f;
    float roomDecay = 1.0f;
    float preDelayMs = 40.0f;
    float mix = 0.5f;

    double highPassFeedback = 0.0;
    double highPassInput = 0.0;
    double highPassState = 0.0;

    juce::dsp::DelayLine<float, juce::dsp::DelayLineInterpolationTypes::None> preDelay;
    long preDelayLength = 1;
    long preDelayZeros = 0; // zeros pushed in a row

    // One chunk of the networks' input and outputs.
    std::array<double, chunkSize> networkIn {};
    std::array<double, chunkSize> networkLeft {};
    std::array<double, chunkSize> networkRight {};
};
