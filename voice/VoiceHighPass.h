// SPDX-License-Identifier: AGPL-3.0-or-later
// The voices' second-order high-pass: the framework's transposed direct form II step for order 2,
// written out so it inlines into the sample loop; the coefficients are the framework's own.
#pragma once

class VoiceHighPass
{
public:
    // New coefficients for the rate and corner (Q 0.707), and a cleared state; allocates.
    void prepare (double sampleRate, float cornerHz);

    float processSample (float x) noexcept
    {
        const float out = (b0 * x) + s0;
        s0 = (b1 * x) - (a1 * out) + s1;
        s1 = (b2 * x) - (a2 * out);
        return out;
    }

private:
    friend class VoiceMixer; // steps the filters of all voices side by side, exactly as processSample
    // Identity until prepared, like a default framework filter.
    float b0 = 1.0f, b1 = 0.0f, b2 = 0.0f, a1 = 0.0f, a2 = 0.0f;
    float s0 = 0.0f, s1 = 0.0f;
};
