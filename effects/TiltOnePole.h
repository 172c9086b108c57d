// SPDX-License-Identifier: AGPL-3.0-or-later
// One-pole low-pass in double, the building block of the tilt equaliser.
#pragma once

class TiltOnePole
{
public:
    // Pole from a corner frequency; the input gain completes unity gain at DC.
    void setCorner (double cornerHz, double samplePeriod);

    double process (double x) noexcept
    {
        double next = z * a + b * x;
        // Flushed inside the feedback path so that a decaying tail never turns denormal.
        if (next >= -1.1754943508222875e-29 && next <= 1.1754943508222875e-29)
            next = 0.0;
        z = next;
        return next;
    }

    double getState() const noexcept { return z; }

private:
    double b = 1.0;
    double a = 0.0;
    double z = 0.0;
};
