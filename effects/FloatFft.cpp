// SPDX-License-Identifier: AGPL-3.0-or-later
// Decimation-in-time radix-2 transform: bit-reversal pass, then log2(N) butterfly stages whose
// twiddle factor is advanced by a float rotation.
#include "effects/FloatFft.h"

#include <cmath>

#include "effects/FftStages.h"

#if defined(__SSE2__)
 #include <emmintrin.h>
#endif

namespace
{
// Chooses the widest instruction set the processor has, once.
auto& stagesDispatch()
{
    static auto dispatch = xsimd::dispatch<xsimd::arch_list<xsimd::avx2, xsimd::sse2>> (FftStages {});
    return dispatch;
}

constexpr float pi = 3.14159265358979323846f;

long stageCount (long frameSize)
{
    return (long) (std::log ((double) frameSize) / std::log (2.0) + 0.5);
}

long bitReversed (long i, long twiceSize)
{
    long j = 0;
    for (long mask = 2; mask < twiceSize; mask <<= 1)
    {
        if ((i & mask) != 0)
            ++j;
        j <<= 1;
    }
    return j;
}

inline void butterfly (float* a, float* b, float ur, float ui) noexcept
{
    const float tr = b[0] * ur - b[1] * ui;
    const float ti = b[0] * ui + b[1] * ur;
    b[0] = a[0] - tr;
    b[1] = a[1] - ti;
    a[0] += tr;
    a[1] += ti;
}

// Walks the stages and, within each, the butterfly columns, advancing the twiddle by a float
// rotation; the transform and its precomputed tables both come from this one walk.
template <typename ColumnFn>
void forEachTwiddle (long frameSize, long sign, ColumnFn&& column)
{
    long le = 2;
    for (long stage = 0, stages = stageCount (frameSize); stage < stages; ++stage)
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
            column (le, le2, j, ur, ui);
            const float rotated = ur * wr - ui * wi;
            ui = ur * wi + ui * wr;
            ur = rotated;
        }
    }
}
} // namespace

void FloatFft::perform (float* workspace, long frameSize, long sign) noexcept
{
    const long twice = 2 * frameSize;

    for (long i = 2; i < twice - 2; i += 2)
    {
        const long j = bitReversed (i, twice);
        if (i < j)
        {
            std::swap (workspace[i], workspace[j]);
            std::swap (workspace[i + 1], workspace[j + 1]);
        }
    }

    forEachTwiddle (frameSize, sign, [workspace, twice] (long le, long le2, long j, float ur, float ui)
    {
        for (long i = j; i < twice; i += le)
            butterfly (workspace + i, workspace + i + le2, ur, ui);
    });
}

FloatFft::Twiddles FloatFft::makeTwiddles (long frameSize, long sign)
{
    // Every entry is the float `perform` would use at that point.
    Twiddles t;
    forEachTwiddle (frameSize, sign, [&t] (long, long, long, float ur, float ui)
    {
        t.real.insert (t.real.end(), { ur, ur });
        t.imag.insert (t.imag.end(), { ui, ui });
    });
    return t;
}

FloatFft::FloatFft (long frameSize)
    : size (frameSize),
      stages (stageCount (frameSize)),
      forward (makeTwiddles (frameSize, -1)),
      inverse (makeTwiddles (frameSize, 1))
{
    stagesDispatch(); // the processor's instruction sets are looked up here, not on the audio thread
    const long twice = 2 * frameSize;
    for (long i = 2; i < twice - 2; i += 2)
    {
        const long j = bitReversed (i, twice);
        if (i < j)
            swaps.emplace_back ((int) i, (int) j);
    }
}

void FloatFft::transform (float* workspace, long sign) const noexcept
{
    for (const auto& [i, j] : swaps)
    {
        std::swap (workspace[i], workspace[j]);
        std::swap (workspace[i + 1], workspace[j + 1]);
    }

    // Butterflies of one stage touch disjoint pairs, so they may run in any order and two at a time;
    // each one keeps its own operations and their order.
    const auto& twiddles = sign < 0 ? forward : inverse;
    const long twice = 2 * size;
    size_t offset = 0;
    long le = 2;
    long firstStage = 0;

#if defined(__SSE2__)
    const __m128 negateEven = _mm_castsi128_ps (_mm_set_epi32 (0, (int) 0x80000000, 0, (int) 0x80000000));
    // The twiddled second half of a butterfly: (re ur - im ui, re ui + im ur) for two pairs at once;
    // re * ur + (-(im * ui)) is re * ur - im * ui exactly, and im * ur + re * ui equals re * ui + im * ur.
    const auto twiddled = [negateEven] (__m128 second, __m128 ur, __m128 ui)
    {
        const __m128 swapped = _mm_shuffle_ps (second, second, _MM_SHUFFLE (2, 3, 0, 1));
        return _mm_add_ps (_mm_mul_ps (second, ur), _mm_xor_ps (_mm_mul_ps (swapped, ui), negateEven));
    };

    if (stages >= 2)
    {
        // The first two stages stay within blocks of four pairs: run both on a block held in registers.
        const __m128 ur0 = _mm_set1_ps (twiddles.real[0]);
        const __m128 ui0 = _mm_set1_ps (twiddles.imag[0]);
        const __m128 ur1 = _mm_loadu_ps (twiddles.real.data() + 2);
        const __m128 ui1 = _mm_loadu_ps (twiddles.imag.data() + 2);
        for (long i = 0; i < twice; i += 8)
        {
            const __m128 x01 = _mm_loadu_ps (workspace + i);
            const __m128 x23 = _mm_loadu_ps (workspace + i + 4);
            const __m128 x02 = _mm_movelh_ps (x01, x23);
            const __m128 x13 = _mm_movehl_ps (x23, x01);
            const __m128 t0 = twiddled (x13, ur0, ui0);
            const __m128 y02 = _mm_add_ps (x02, t0);
            const __m128 y13 = _mm_sub_ps (x02, t0);
            const __m128 y01 = _mm_movelh_ps (y02, y13);
            const __m128 y23 = _mm_movehl_ps (y13, y02);
            const __m128 t1 = twiddled (y23, ur1, ui1);
            _mm_storeu_ps (workspace + i, _mm_add_ps (y01, t1));
            _mm_storeu_ps (workspace + i + 4, _mm_sub_ps (y01, t1));
        }
        firstStage = 2;
        le = 8;
        offset = 6;
        // Every later stage spans at least eight floats, a whole vector at either width.
        stagesDispatch() (workspace, twice, le, firstStage, stages, twiddles.real.data() + offset, twiddles.imag.data() + offset);
        return;
    }
#endif

    // Frames too small for the vector stages (and builds without SSE2) step one butterfly at a time.
    for (long stage = firstStage; stage < stages; ++stage)
    {
        le <<= 1;
        const long le2 = le >> 1;
        const float* re = twiddles.real.data() + offset;
        const float* im = twiddles.imag.data() + offset;
        offset += (size_t) le2;
        for (long group = 0; group < twice; group += le)
            for (long j = 0; j < le2; j += 2)
                butterfly (workspace + group + j, workspace + group + j + le2, re[j], im[j]);
    }
}
