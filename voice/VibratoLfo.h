// SPDX-License-Identifier: AGPL-3.0-or-later
// The vibrato source: a 5 Hz square wave rounded by a one-pole, giving a soft triangle-like sway.
#pragma once

class VibratoLfo
{
public:
    // Counter and output carry on, so a rate change does not jump the vibrato.
    void prepare (double sampleRate);

    float process() noexcept
    {
        const int c = counter;
        counter = c + 1;
        if (c >= 2 * halfPeriod)
            counter = c + 1 - 2 * halfPeriod;

        const float target = counter < halfPeriod ? 1.0f : -1.0f;
        const float g = (frequency * 0.1f) * (twoPi * inverseRate);
        const float y = (target - output) * g + output;
        output = (y < -1.17549435e-29f || y > 1.17549435e-29f) ? y : 0.0f;
        return output;
    }

    float rateLimitedSampleRate = 48000.0f;
    float output = 0.0f;
    float frequency = 20.0f;
    float inverseRate = 0.0f;
    int counter = 0;
    int halfPeriod = 400;
    float twoPi = 6.2831855f;
};
