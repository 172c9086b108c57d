// SPDX-License-Identifier: AGPL-3.0-or-later
// The network's tick for SSE2, the baseline of every x86-64, and the tap choice shared by all widths.
#include "effects/FdnKernel.h"

void FdnKernel::chooseTap (State& s) noexcept
{
    s.activeTap ^= 1;
    const int tap = s.activeTap;
    for (int i = 0; i < numLines; ++i)
    {
        const long row = (s.ringLength + s.writeIndex - s.delayInt[i]) % s.ringLength;
        s.readAt[tap][i] = (std::int64_t) (row * width + i);
        double c = s.allpassCoefficient[i];
        if (c < -0.9999999) c = -0.9999999;
        if (c > 0.9999999) c = 0.9999999;
        s.coefficient[tap][i] = c;
    }
    // The padding lane reads its own column, which no line uses.
    s.readAt[tap][numLines] = (std::int64_t) (s.writeIndex * width + numLines);

    s.tapsShareReads = true;
    for (int i = 0; i < width; ++i)
        s.tapsShareReads = s.tapsShareReads && s.readAt[0][i] == s.readAt[1][i];
}

template void FdnKernel::operator()<xsimd::sse2> (xsimd::sse2, State&, const double*, double*, int, bool) const noexcept;
