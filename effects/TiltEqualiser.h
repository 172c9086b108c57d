// SPDX-License-Identifier: AGPL-3.0-or-later
// Tilt equaliser: per channel a band-pass of two one-poles in double, run at the end of the delay's sample pass.
#pragma once

#include <array>
#include <cstddef>

#include "effects/TiltOnePole.h"

class TiltEqualiser
{
public:
    // Forces the next setupBlock to rebuild the coefficients (after a state load).
    void invalidate() noexcept { lastTilt = -2.0f; }

    // Rebuilds the corners only when tilt has moved by more than 0.001 since the last rebuild,
    // so a sample-rate change alone keeps the old coefficients.
    void setupBlock (float tilt, double sampleRate);

    // Both channels' filters hold nothing, so silence passes as silence.
    bool isClear() const noexcept
    {
        return first[0].getState() == 0.0 && first[1].getState() == 0.0 && second[0].getState() == 0.0
               && second[1].getState() == 0.0;
    }

    // channel 0 is left, anything else right.
    float processSample (int channel, float x) noexcept
    {
        const auto c = (std::size_t) (channel != 0);
        const float v = (float) first[c].process ((double) x);
        // The second (low-corner) filter is subtracted with one sample of delay.
        const double old = second[c].getState();
        second[c].process ((double) v);
        return (float) ((double) v - old);
    }

    float getLastTilt() const noexcept { return lastTilt; }

private:
    std::array<TiltOnePole, 2> first;  // high corner, left and right
    std::array<TiltOnePole, 2> second; // low corner, left and right
    float lastTilt = -2.0f;            // outside the parameter's range: the first block always builds
};
