// SPDX-License-Identifier: AGPL-3.0-or-later
// The network's tick for SSE2, the baseline of every x86-64, and the tap choice shared by all widths.
#include "effects/FdnKernel.h"

void FdnKernel::chooseTap (State& s) noexcept
{
    s.activeTap ^= 1;
    const int tap = s.activeTap;
    for (int i = 0; i < numLines; ++i)
    {
        // The sample written delayInt ticks before the one just written.
        const std::int64_t length = s.lineLength[i];
        const std::int64_t written = s.writeAt[i] - s.lineStart[i];
        s.readAt[tap][i] = s.lineStart[i] + (length + written - s.delayInt[i]) % length;
        double c = s.allpassCoefficient[i];
        if (c < -0.9999999) c = -0.9999999;
        if (c > 0.9999999) c = 0.9999999;
        s.coefficient[tap][i] = c;
    }
    // The padding lane reads its own sample, which no line uses.
    s.readAt[tap][numLines] = s.lineStart[numLines];

    s.tapsShareReads = true;
    for (int i = 0; i < width; ++i)
        s.tapsShareReads = s.tapsShareReads && s.readAt[0][i] == s.readAt[1][i];
}

template void FdnKernel::operator()<xsimd::sse2> (xsimd::sse2, State&, const double*, double*, int, bool) const noexcept;
