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

    // Two networks fed the same input, their ticks interleaved so that each one's chain of dependent
    // steps overlaps the other's; each network's arithmetic stays exactly its own.
    template <class Arch>
    void operator() (Arch, State& a, State& b, const double* input, double* outputA, double* outputB, int numSamples) const noexcept;

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

namespace fdn_kernel_detail
{
// Where a network writes during a span of ticks, and whether its two taps read the same rows.
struct Span
{
    double* writeTo[FdnKernel::numLines];
    bool shareReads;
};

// A span of ticks in which no position wraps and no tap is chosen: every position moves on by one per
// tick, so a tick finds its samples at the span's positions plus its offset.
inline std::int64_t spanLength (const FdnLines& s, std::int64_t remaining) noexcept
{
    std::int64_t span = std::min<std::int64_t> (remaining, 16 - s.fadeCount);
    for (int i = 0; i < FdnLines::width; ++i)
    {
        span = std::min (span, s.lineLast[i] - s.writeAt[i] + 1);
        span = std::min (span, s.lineLast[i] - s.readAt[0][i] + 1);
        span = std::min (span, s.lineLast[i] - s.readAt[1][i] + 1);
    }
    return span;
}

inline Span beginSpan (const FdnLines& s) noexcept
{
    Span span;
    for (int i = 0; i < FdnLines::numLines; ++i)
        span.writeTo[i] = s.lines + s.writeAt[i];
    span.shareReads = s.tapsShareReads;
    return span;
}

// Tick `k` of a span.
template <class Arch>
__attribute__ ((always_inline)) inline void tick (FdnLines& s, const Span& where, std::int64_t k, double input, double& output,
                                                  bool watchTail) noexcept
{
    using B = xsimd::batch<double, Arch>;
    constexpr int n = (int) B::size;
    constexpr int numLines = FdnLines::numLines, width = FdnLines::width;
    alignas (32) double tapOut[2][width];
    alignas (32) double written[width];

    const B in (input);
    const B quarter (0.25);
    // Unrolled, every term is one load folded into its add.
#pragma GCC unroll 4
    for (int v = 0; v < width; v += n)
        (quarter * rowSums<B> (s.run + v, std::make_index_sequence<numLines> {}) + in).store_aligned (written + v);
#pragma GCC unroll 15
    for (int i = 0; i < numLines; ++i)
        where.writeTo[i][k] = written[i];

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
        const B read1 = where.shareReads ? read0 : gatherLines<Arch> (lines, s.readAt[1] + v);
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
    output = sum / 15.0;
}

// Moves every position on by a span; each wraps at its own line's end, as a modulo by the line's
// length would.
template <class Arch>
inline void advance (FdnLines& s, std::int64_t span) noexcept
{
    using I = xsimd::batch<std::int64_t, Arch>;
    constexpr int n = (int) I::size;
    const I step (span);
    for (int v = 0; v < FdnLines::width; v += n)
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
    s.writeAt[FdnLines::numLines] = s.readAt[0][FdnLines::numLines] = s.readAt[1][FdnLines::numLines] = s.lineStart[FdnLines::numLines];
}
} // namespace fdn_kernel_detail

template <class Arch>
void FdnKernel::operator() (Arch, State& s, const double* input, double* output, int numSamples, bool watchTail) const noexcept
{
    using namespace fdn_kernel_detail;
    for (int t = 0; t < numSamples;)
    {
        // The tap choice moves only the reads, so it may come before the tick's write.
        if (s.fadeCount == 0)
            chooseTap (s);
        const std::int64_t span = spanLength (s, numSamples - t);
        const Span where = beginSpan (s);
        for (std::int64_t k = 0; k < span; ++k, ++t)
            tick<Arch> (s, where, k, input[t], output[t], watchTail);
        advance<Arch> (s, span);
    }
}

template <class Arch>
void FdnKernel::operator() (Arch, State& a, State& b, const double* input, double* outputA, double* outputB,
                            int numSamples) const noexcept
{
    using namespace fdn_kernel_detail;
    for (int t = 0; t < numSamples;)
    {
        if (a.fadeCount == 0)
            chooseTap (a);
        if (b.fadeCount == 0)
            chooseTap (b);
        // Ending a span early changes nothing for a network: its positions move on by as much and
        // no tap is chosen before its own turn.
        const std::int64_t span = std::min (spanLength (a, numSamples - t), spanLength (b, numSamples - t));
        const Span whereA = beginSpan (a), whereB = beginSpan (b);
        for (std::int64_t k = 0; k < span; ++k, ++t)
        {
            tick<Arch> (a, whereA, k, input[t], outputA[t], false);
            tick<Arch> (b, whereB, k, input[t], outputB[t], false);
        }
        advance<Arch> (a, span);
        advance<Arch> (b, span);
    }
}

extern template void FdnKernel::operator()<xsimd::avx2> (xsimd::avx2, State&, const double*, double*, int, bool) const noexcept;
extern template void FdnKernel::operator()<xsimd::sse2> (xsimd::sse2, State&, const double*, double*, int, bool) const noexcept;
extern template void FdnKernel::operator()<xsimd::avx2> (xsimd::avx2, State&, State&, const double*, double*, double*, int) const noexcept;
extern template void FdnKernel::operator()<xsimd::sse2> (xsimd::sse2, State&, State&, const double*, double*, double*, int) const noexcept;
