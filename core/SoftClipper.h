// SPDX-License-Identifier: AGPL-3.0-or-later
// Soft clipper 1.1 x - 0.1 x^11 on [-1, 1]: unity slope at 0, flat at the rails.
#pragma once

#include <algorithm>

inline float softClip (float x)
{
    x = std::min (1.0f, std::max (-1.0f, x));
    const float x2 = x * x;
    const float x11 = x * (x2 * x2 * x2 * x2 * x2);
    return 1.1f * x - 0.1f * x11;
}
