// SPDX-License-Identifier: AGPL-3.0-or-later
// A phase accumulator in cycles with the voice's polynomial sine; both operators of a voice use it.
#pragma once

#include <cmath>

class PhaseOscillator
{
public:
    // Oscillators never run faster than 16 kHz worth of steps, so very low rates just play flat.
    void prepare (double sampleRate);

    // Keeps a phase near [-0.5, 0.5) by removing whole cycles: p minus the truncation of p + 0.5.
    // In the usual range that truncation is 0 or 1, found by a compare instead of two slow
    // conversions that would sit in the phase's loop-carried chain; the result is the same.
    static double wrap (double p) noexcept
    {
        const double x = p + 0.5;
        if (x >= 0.0 && x < 2.0)
            return p - (x >= 1.0 ? 1.0 : 0.0);
        return p - (double) (int) x;
    }

    // The same as wrap for every phase, without a branch, so that a loop of them runs as vectors.
    static double wrapBranchless (double p) noexcept { return p - (double) (int) (p + 0.5); }

    // Odd polynomial close to sin (2 pi p) for a wrapped phase; cheaper than std::sin per sample.
    static double shape (double p) noexcept
    {
        const double t = std::abs (p);
        return (t + (-0.732963)) * ((t + (-0.5)) * ((p * 68.5949) * (t + 0.232963)));
    }

    // Advances by one sample at the given frequency and returns the new phase.
    double advance (float frequencyHz) noexcept
    {
        phase = wrap (phase + inverseRate * (double) frequencyHz);
        return phase;
    }

    double phase = 0.0;
    double inverseRate = 0.0;
    static constexpr double radiansToCycles = 0.15915494309189535;
};
