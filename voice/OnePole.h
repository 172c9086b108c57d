// SPDX-License-Identifier: AGPL-3.0-or-later
// The voice's one-pole low-pass (noise colour and the folder's pre-filter), flushing tiny states.
#pragma once

class OnePole
{
public:
    // Sets the feedback coefficient for a cutoff; the state is kept so a running note is not clicked.
    void prepare (double sampleRate, double cutoffHz);

    float process (float x) noexcept
    {
        float y = a * (z - x) + x;
        // Flushed here rather than relying on the FPU mode, so a fading tail really reaches zero.
        if (y >= -1.0e-8f && y <= 1.0e-8f)
            y = 0.0f;
        z = y;
        return y;
    }

    float a = 0.9f;
    float z = 0.0f;
    float pi = 3.1415927f;
};
