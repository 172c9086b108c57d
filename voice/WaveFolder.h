// SPDX-License-Identifier: AGPL-3.0-or-later
// The switchable wave folder: a Chebyshev T4 fold of the low-passed note, cross-faded in on an
// equal-power curve so that toggling the switch never clicks.
#pragma once

#include <cmath>
#include <juce_audio_basics/juce_audio_basics.h>
#include <juce_dsp/juce_dsp.h>

#include "voice/OnePole.h"
#include "voice/VoiceHighPass.h"

class WaveFolder
{
public:
    // Sets the rate-dependent coefficients, clears the filter and ends any running fade.
    void prepare (double sampleRate);

    // Starts a 50 ms fade whenever the switch changes; a fade in progress reverses from where it is.
    void setEnabled (bool on);

    // False while the folder is off and no fade runs: process would then return its input as it is.
    bool isActive() const noexcept { return foldMix.isSmoothing() || foldMix.getCurrentValue() > 0.0f; }

    // One sample of the voice's signal; `drive` is the squared timbre.
    float process (float s, float drive) noexcept
    {
        const float mix = foldMix.getNextValue();
        if (! (mix > 0.0f))
            return s;

        const float y = foldFilter.process (s);
        const float x = (drive + 0.6f) * y;
        const float u = x * x;
        const float T = (8.0f * u) * u - 8.0f * u + 1.0f;
        const float limited = (std::abs (T + 1.0f) - std::abs (T - 1.0f)) * 0.5f;
        const float f = highPassFold.processSample ((s - limited) * 0.5f);

        if (mix > 1.0f)
            return f;

        // Once a fade has finished, the two sines are exactly 0 and 1; the folder held on then costs
        // no sine per sample.
        const bool settled = juce::exactlyEqual (mix, 1.0f);
        const float gd = settled ? 0.0f : (float) std::sin ((1.0 - (double) mix) * 1.5707963267948966);
        const float gw = settled ? 1.0f : (float) std::sin ((double) mix * 1.5707963267948966);
        return gd * s + f * gw;
    }

    juce::SmoothedValue<float> foldMix { 0.0f };
    bool foldOn = false;
    OnePole foldFilter;
    // Removes the constant the folder makes from silence, and the low rumble of folding.
    VoiceHighPass highPassFold;
};
