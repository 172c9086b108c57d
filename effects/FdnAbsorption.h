// SPDX-License-Identifier: AGPL-3.0-or-later
// One-pole shelf in each reverb line that makes the highs die faster than the lows.
#pragma once

struct FdnAbsorption
{
    double b = 1.0;
    double a = 0.0;
    double state = 0.0;

    double process (double x) noexcept
    {
        const double z = x * b - a * state;
        state = z;
        return z;
    }
};
