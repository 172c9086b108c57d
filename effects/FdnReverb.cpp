// SPDX-License-Identifier: AGPL-3.0-or-later
// Room-mode feedback delay network: line tuning from the room's modes and the per-sample tick.
#include "effects/FdnReverb.h"

#include <algorithm>
#include <cmath>

#if defined(__SSE2__)
 #include <emmintrin.h>
#endif

namespace
{
// Mode numbers (nx, ny, nz) of the fifteen lines.
constexpr int roomModes[FdnReverb::numLines][3] = {
    { 1, 0, 0 }, { 0, 2, 1 }, { 1, 0, 1 }, { 2, 1, 0 }, { 0, 1, 1 }, { 1, 1, 1 }, { 1, 1, 0 }, { 0, 1, 2 },
    { 1, 2, 1 }, { 1, 2, 0 }, { 0, 0, 1 }, { 2, 1, 1 }, { 0, 1, 0 }, { 1, 0, 2 }, { 2, 0, 1 },
};

// Signs of one row of the circulant feedback matrix.
constexpr bool rowSignNegative[FdnReverb::numLines] = { true,  false, false, false, true,  false, false, true,
                                                        true,  false, true,  false, true,  true,  true };

constexpr double speedOfSoundHalf = 170.145; // metres per second, halved: f = c/2 * |n / L|
constexpr double absorptionCrossoverRadians = 6283.185307179586; // 2 pi 1000 Hz

// How far the fading-in tap has come, per sample of its 16-sample turn.
constexpr double fadeTable[16] = { 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0 };

#if defined(__SSE2__)
// Adds term m of every row, two rows per register, with the sign known at compile time, then the
// next term: the same additions in the same order as a row summed on its own.
template <size_t m>
inline void addRowTerms (__m128d* sums, const double* run) noexcept
{
    if constexpr (m < (size_t) FdnReverb::numLines)
    {
        for (size_t k = 0; k < 8; ++k)
        {
            const __m128d term = _mm_loadu_pd (run + m + 2 * k);
            if constexpr (rowSignNegative[m])
                sums[k] = _mm_sub_pd (sums[k], term);
            else
                sums[k] = _mm_add_pd (sums[k], term);
        }
        addRowTerms<m + 1> (sums, run);
    }
}
#endif
} // namespace

double FdnReverb::sampleRate = 44100.0;
double FdnReverb::inverseSampleRate = 1.0 / 44100.0;

void FdnReverb::setSampleRate (float newSampleRate)
{
    sampleRate = newSampleRate;
    inverseSampleRate = 1.0 / (double) newSampleRate;
}

FdnReverb::FdnReverb (long lineCapacity, const int* draws)
    : capacity (std::max (lineCapacity, 1L)),
      buffers ((size_t) capacity * (size_t) numLines, 0.0)
{
    absorptionB.fill (1.0);

    for (size_t i = 0; i < detune.size(); ++i)
        detune[i] = 2.0 * (draws[i] * 4.656612873077393e-10) - 1.0;
}

void FdnReverb::setRoom (double lengthX, double lengthY, double lengthZ) noexcept
{
    lx = lengthX;
    ly = lengthY;
    lz = lengthZ;
}

void FdnReverb::setDecay (double newRt60Low, double newRt60High) noexcept
{
    rt60Low = newRt60Low;
    rt60High = newRt60High;
}

void FdnReverb::updateLines()
{
    const double T = inverseSampleRate;
    const double sr = sampleRate;

    for (size_t i = 0; i < (size_t) numLines; ++i)
    {
        const double mx = roomModes[i][0] / lx;
        const double my = roomModes[i][1] / ly;
        const double mz = roomModes[i][2] / lz;
        const double f = speedOfSoundHalf * std::sqrt (mx * mx + my * my + mz * mz);

        const double d = sr * (1.0 + spread * detune[i]) / f;

        // The integer part sits 0.618 below the delay so that the all-pass always sees a fraction in
        // [0.618, 1.618], where its phase delay is flattest. A NaN lands on the lower limit.
        double dc = d;
        if (! (dc >= 0.618))
            dc = 0.618;
        if (dc > (double) capacity)
            dc = (double) capacity;
        delayInt[i] = (long) (dc - 0.618);
        const double frac = dc - (double) delayInt[i];
        allpassCoefficient[i] = (1.0 - frac) / (1.0 + frac);

        const double g = std::max (std::pow (10.0, -3.0 * d * T / rt60Low), 0.0);
        lineGain[i] = g;

        // Gain at high frequencies relative to g, turned into a one-pole shelf crossing over at 1 kHz.
        const double r = std::max (std::pow (10.0, -3.0 * d * T / std::min (rt60High, rt60Low)) / g, 0.0);
        const double A = r * r - 1.0;
        const double c = std::cos (T * absorptionCrossoverRadians);
        const double B = r * r * c - 1.0;
        double a = ((1.0 - r * r * c) - std::sqrt (A * (1.0 - r * r) + B * B)) / A;
        a = std::min (a, 0.0);
        a = std::max (a, -1.0);
        a = std::min (a, 1.0);
        absorptionA[i] = a;
        absorptionB[i] = 1.0 - std::abs (a);
    }
}

double FdnReverb::tick (double input) noexcept
{
    // Every row reads only the previous tick's outputs, so all fifteen line inputs can be formed
    // first; each keeps its own order of additions.
    alignas (16) LineArray rowSum {};
#if defined(__SSE2__)
    {
        __m128d sums[width / 2];
        for (auto& v : sums)
            v = _mm_setzero_pd();
        addRowTerms<0> (sums, lineOutRun.data());
        for (size_t k = 0; k < width / 2; ++k)
            _mm_store_pd (rowSum.data() + 2 * k, sums[k]);
    }
#else
    for (size_t m = 0; m < (size_t) numLines; ++m)
    {
        const double* run = lineOutRun.data() + m;
        if (rowSignNegative[m])
            for (size_t i = 0; i < width; ++i)
                rowSum[i] -= run[i];
        else
            for (size_t i = 0; i < width; ++i)
                rowSum[i] += run[i];
    }
#endif

    double* const lines = buffers.data();
    for (size_t i = 0; i < (size_t) numLines; ++i)
        lines[i * (size_t) capacity + (size_t) writeIndex] = 0.25 * rowSum[i] + input;

    if (fadeCount == 0)
    {
        // A fresh read position on the tap that fades in next.
        activeTap ^= 1;
        auto& fresh = allpass[(size_t) activeTap];
        for (size_t i = 0; i < (size_t) numLines; ++i)
        {
            readIndex[(size_t) activeTap][i] = (int) ((capacity + writeIndex - delayInt[i]) % capacity);
            double c = allpassCoefficient[i];
            if (c < -0.9999999) c = -0.9999999;
            if (c > 0.9999999) c = 0.9999999;
            fresh.coefficient[i] = c;
        }
    }

    alignas (16) std::array<LineArray, 2> tapOut;
    for (size_t tap = 0; tap < 2; ++tap)
    {
        auto& ap = allpass[tap];
        const auto& index = readIndex[tap];
        auto& y = tapOut[tap];
        size_t i = 0;
#if defined(__SSE2__)
        // Two lines per register; only the reads from their rings are separate.
        for (; i + 1 < (size_t) numLines; i += 2)
        {
            const __m128d x = _mm_set_pd (lines[(i + 1) * (size_t) capacity + (size_t) index[i + 1]],
                                          lines[i * (size_t) capacity + (size_t) index[i]]);
            const __m128d c = _mm_load_pd (ap.coefficient.data() + i);
            const __m128d out = _mm_sub_pd (_mm_add_pd (_mm_mul_pd (c, x), _mm_load_pd (ap.lastInput.data() + i)),
                                            _mm_mul_pd (c, _mm_load_pd (ap.lastOutput.data() + i)));
            _mm_store_pd (ap.lastInput.data() + i, x);
            _mm_store_pd (ap.lastOutput.data() + i, out);
            _mm_store_pd (y.data() + i, out);
        }
#endif
        for (; i < (size_t) numLines; ++i)
        {
            const double x = lines[i * (size_t) capacity + (size_t) index[i]];
            const double out = ap.coefficient[i] * x + ap.lastInput[i] - ap.coefficient[i] * ap.lastOutput[i];
            ap.lastInput[i] = x;
            ap.lastOutput[i] = out;
            y[i] = out;
        }
    }

    const double f = fadeTable[(size_t) fadeCount];
    const double g = 1.0 - f;
    const auto& faded = tapOut[(size_t) (activeTap ^ 1)];
    const auto& active = tapOut[(size_t) activeTap];
    for (size_t i = 0; i < (size_t) numLines; ++i)
    {
        const double out = faded[i] * g + active[i] * f;
        const double z = out * absorptionB[i] - absorptionA[i] * absorptionState[i];
        absorptionState[i] = z;
        lineOutRun[i] = z * lineGain[i];
    }

    double sum = 0.0;
    for (size_t i = 0; i < (size_t) numLines; ++i)
        sum += lineOutRun[i];
    for (size_t i = 0; i < (size_t) numLines - 1; ++i)
        lineOutRun[(size_t) numLines + i] = lineOutRun[i];

    // Indexes stay in [0, capacity), so a wrap test gives what the modulo would, without a division.
    ++writeIndex;
    if (writeIndex >= capacity)
        writeIndex = 0;
    const int end = (int) capacity;
    for (auto& tapIndex : readIndex)
        for (size_t i = 0; i < width; ++i)
        {
            const int next = tapIndex[i] + 1;
            tapIndex[i] = next >= end ? 0 : next;
        }
    fadeCount = (fadeCount + 1) & 15;

    return sum / 15.0;
}
