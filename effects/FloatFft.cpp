// SPDX-License-Identifier: AGPL-3.0-or-later
// Decimation-in-time radix-2 transform: bit-reversal pass, then log2(N) butterfly stages whose
// twiddle factor is advanced by a float rotation.
#include "effects/FloatFft.h"

#include <cmath>
#include <utility>

void FloatFft::perform (float* workspace, long frameSize, long sign) noexcept
{
    const long size = 2 * frameSize;

    for (long i = 2; i < size - 2; i += 2)
    {
        long j = 0;
        for (long mask = 2; mask < size; mask <<= 1)
        {
            if ((i & mask) != 0)
                ++j;
            j <<= 1;
        }
        if (i < j)
        {
            std::swap (workspace[i], workspace[j]);
            std::swap (workspace[i + 1], workspace[j + 1]);
        }
    }

    const long stages = (long) (std::log ((double) frameSize) / std::log (2.0) + 0.5);
    const float pi = 3.14159265358979323846f;
    long le = 2;
    for (long stage = 0; stage < stages; ++stage)
    {
        le <<= 1;
        const long le2 = le >> 1;
        float ur = 1.0f;
        float ui = 0.0f;
        const float arg = pi / (float) (le2 >> 1);
        const float wr = std::cos (arg);
        const float wi = (float) sign * std::sin (arg);

        for (long j = 0; j < le2; j += 2)
        {
            for (long i = j; i < size; i += le)
            {
                float* a = workspace + i;
                float* b = a + le2;
                const float tr = b[0] * ur - b[1] * ui;
                const float ti = b[0] * ui + b[1] * ur;
                b[0] = a[0] - tr;
                b[1] = a[1] - ti;
                a[0] += tr;
                a[1] += ti;
            }
            const float rotated = ur * wr - ui * wi;
            ui = ur * wi + ui * wr;
            ur = rotated;
        }
    }
}
