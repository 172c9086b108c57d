// SPDX-License-Identifier: AGPL-3.0-or-later
// First-order DC blocker, y = x - x1 + R y1, with tiny states flushed inside the feedback path.
#pragma once

struct DcBlocker
{
    float y1 = 0.0f;
    float x1 = 0.0f;
    float R = 0.9968254f;

    void prepare (double sampleRate)
    {
        y1 = 0.0f;
        x1 = 0.0f;
        R = -140.0f / (float) sampleRate + 1.0f;
    }

    // Holds nothing: a zero input then gives exactly zero.
    bool isClear() const noexcept { return y1 == 0.0f && x1 == 0.0f; }

    float process (float x)
    {
        float y = x - x1 + y1 * R;
        if (y >= -1.17549435e-29f && y <= 1.17549435e-29f)
            y = 0.0f;
        y1 = y;
        x1 = x;
        return y;
    }
};
