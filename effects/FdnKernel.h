// SPDX-License-Identifier: AGPL-3.0-or-later
// The per-sample work of one feedback delay network, written once for any vector width: every line is
// a lane, so each lane does exactly the arithmetic of a line worked on its own, in the same order.
// Instantiated for SSE2 and for AVX2 (in a file of its own built for AVX2), chosen when first used.
#pragma once

#include <cstddef>
#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <utility>

#include <xsimd/xsimd.hpp>

#include "effects/FdnLines.h"

struct FdnKernel
{
    static constexpr int numLines = FdnLines::numLines;
    static constexpr int width = FdnLines::width;
    using State = FdnLines;

    // Runs `numSamples` ticks. With `watchTail`, counts the ticks whose writes all lie below the
    // resting limit (the input is then silent).
    template <class Arch>
    void operator() (Arch, State& s, const double* input, double* output, int numSamples, bool watchTail) const noexcept;

    // Points the tap that fades in next at the delays, as every sixteenth tick does.
    static void chooseTap (State& s) noexcept;
};

namespace fdn_kernel_detail
{
// Signs of one row of the circulant feedback matrix.
constexpr bool rowSignNegative[FdnKernel::numLines] = { true,  false, false, false, true,  false, false, true,
                                                        true,  false, true,  false, true,  true,  true };
// How far the fading-in tap has come, per sample of its 16-sample turn.
constexpr double fadeTable[16] = { 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0 };

// Term m of each row in turn, from 0, in the order a single row is summed.
template <class B, std::size_t... m>
inline B rowSums (const double* run, std::index_sequence<m...>) noexcept
{
    B sum (0.0);
    ((sum = rowSignNegative[m] ? sum - B::load_unaligned (run + m) : sum + B::load_unaligned (run + m)), ...);
    return sum;
}

// One read per line from the rows given as element indexes.
template <class Arch>
inline xsimd::batch<double, Arch> gatherLines (const double* lines, const std::int64_t* at) noexcept
{
    using I = xsimd::batch<std::int64_t, Arch>;
#if defined(__AVX2__)
    // xsimd 8.1 never reaches its own AVX2 gather for doubles (it falls back to one load per lane).
    if constexpr (std::is_same<Arch, xsimd::avx2>::value)
        return _mm256_i64gather_pd (lines, I::load_aligned (at), 8);
    else
#endif
        return xsimd::batch<double, Arch>::gather (lines, I::load_aligned (at));
}
} // namespace fdn_kernel_detail

template <class Arch>
void FdnKernel::operator() (Arch, State& s, const double* input, double* output, int numSamples, bool watchTail) const noexcept
{
    using namespace fdn_kernel_detail;
    using B = xsimd::batch<double, Arch>;
    using I = xsimd::batch<std::int64_t, Arch>;
    constexpr int n = (int) B::size;
    alignas (32) double tapOut[2][width];
    alignas (32) double written[width];

    for (int t = 0; t < numSamples;)
    {
        // The tap choice moves only the reads, so it may come before the tick's write.
        if (s.fadeCount == 0)
            chooseTap (s);

        // A span of ticks in which no position wraps and no tap is chosen: every position moves on
        // by one per tick, so a tick finds its samples at the span's positions plus its offset.
        std::int64_t span = std::min<std::int64_t> (numSamples - t, 16 - s.fadeCount);
        for (int i = 0; i < width; ++i)
        {
            span = std::min (span, s.lineLast[i] - s.writeAt[i] + 1);
            span = std::min (span, s.lineLast[i] - s.readAt[0][i] + 1);
            span = std::min (span, s.lineLast[i] - s.readAt[1][i] + 1);
        }
        double* writeTo[numLines];
        for (int i = 0; i < numLines; ++i)
            writeTo[i] = s.lines + s.writeAt[i];
        const bool shareReads = s.tapsShareReads;

        for (std::int64_t k = 0; k < span; ++k, ++t)
        {
            const B in (input[t]);
            const B quarter (0.25);
            // Unrolled, every term is one load folded into its add.
#pragma GCC unroll 4
            for (int v = 0; v < width; v += n)
                (quarter * rowSums<B> (s.run + v, std::make_index_sequence<numLines> {}) + in).store_aligned (written + v);
#pragma GCC unroll 15
            for (int i = 0; i < numLines; ++i)
                writeTo[i][k] = written[i];

            if (watchTail)
            {
                bool quiet = true;
                for (int i = 0; i < numLines; ++i)
                    quiet = quiet && written[i] < FdnLines::restingLimit && written[i] > -FdnLines::restingLimit;
                s.quietTicks = quiet ? s.quietTicks + 1 : 0;
            }

            const double* const lines = s.lines + k;
            for (int v = 0; v < width; v += n)
            {
                // Once both taps have been pointed at the same delays they read the same samples.
                const B read0 = gatherLines<Arch> (lines, s.readAt[0] + v);
                const B read1 = shareReads ? read0 : gatherLines<Arch> (lines, s.readAt[1] + v);
                for (int tap = 0; tap < 2; ++tap)
                {
                    const B x = tap == 0 ? read0 : read1;
                    const B c = B::load_aligned (s.coefficient[tap] + v);
                    const B y = (c * x + B::load_aligned (s.lastInput[tap] + v)) - c * B::load_aligned (s.lastOutput[tap] + v);
                    x.store_aligned (s.lastInput[tap] + v);
                    y.store_aligned (s.lastOutput[tap] + v);
                    y.store_aligned (tapOut[tap] + v);
                }
            }

            const B f (fadeTable[s.fadeCount]);
            const B g (1.0 - fadeTable[s.fadeCount]);
            const double* faded = tapOut[s.activeTap ^ 1];
            const double* active = tapOut[s.activeTap];
            for (int v = 0; v < width; v += n)
            {
                const B out = B::load_aligned (faded + v) * g + B::load_aligned (active + v) * f;
                const B z = out * B::load_aligned (s.absorptionB + v) - B::load_aligned (s.absorptionA + v) * B::load_aligned (s.absorptionState + v);
                z.store_aligned (s.absorptionState + v);
                (z * B::load_aligned (s.lineGain + v)).store_aligned (s.run + v);
            }

            double sum = 0.0;
            for (int i = 0; i < numLines; ++i)
                sum += s.run[i];
            for (int v = 0; v < numLines; v += n)
                B::load_aligned (s.run + v).store_unaligned (s.run + numLines + v);

            s.fadeCount = (s.fadeCount + 1) & 15;
            output[t] = sum / 15.0;
        }

        // Each position wraps at its own line's end, as a modulo by the line's length would.
        const I step ((std::int64_t) span);
        for (int v = 0; v < width; v += n)
        {
            const I last = I::load_aligned (s.lineLast + v);
            const I length = I::load_aligned (s.lineLength + v);
            for (std::int64_t* at : { s.writeAt + v, s.readAt[0] + v, s.readAt[1] + v })
            {
                const I next = I::load_aligned (at) + step;
                xsimd::select (next > last, next - length, next).store_aligned (at);
            }
        }
        // The padding lane stays on its first sample.
        s.writeAt[numLines] = s.readAt[0][numLines] = s.readAt[1][numLines] = s.lineStart[numLines];
    }
}

extern template void FdnKernel::operator()<xsimd::avx2> (xsimd::avx2, State&, const double*, double*, int, bool) const noexcept;
extern template void FdnKernel::operator()<xsimd::sse2> (xsimd::sse2, State&, const double*, double*, int, bool) const noexcept;
