// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver frame's two passes that call the maths library per bin: the analysis phase and
// frequency of each bin, and the synthesis cosine and sine. Several bins run side by side, each with
// its own operations in its own order. Lanes the vector functions might not match (a zero, an
// infinity, a NaN, a phase too large to reduce exactly) take the library calls instead. Instantiated
// for SSE2 and for AVX2 (in a file of its own built for AVX2).
#pragma once

#include <cmath>
#include <cstddef>

#include <xsimd/xsimd.hpp>

struct PhaseVocoderKernel
{
    static constexpr double pi = 3.14159265358979323846;

    // The bins whose frequency is read, gathered: `count` of each input, `count` of each output.
    struct Analysis
    {
        const double* re;
        const double* im;
        const double* lastPhase;
        const double* bin;  // the bin's index
        double* phase;      // atan2 (im, re)
        double* frequency;  // the bin's true frequency, before its rounding to float
        long count;
        double expectedPhaseStep, binFrequency, oversampling;
    };

    // Every bin up to half the frame: its magnitude and phase in, its pair of floats out.
    struct Synthesis
    {
        const float* magnitude;
        const float* phase;
        float* workspace;
        long count;
    };

    template <class Arch>
    void operator() (Arch, const Analysis&) const noexcept;
    template <class Arch>
    void operator() (Arch, const Synthesis&) const noexcept;

    // One lane as the scalar frame computes it.
    static void analyseBin (const Analysis& a, long i) noexcept
    {
        const double phase = std::atan2 (a.im[i], a.re[i]);
        double d = phase - a.lastPhase[i] - a.bin[i] * a.expectedPhaseStep;
        // Wrap the phase deviation into [-pi, pi]: round d / pi to an even multiple. A NaN (from a NaN
        // input) stays NaN and is not converted.
        long q = std::isnan (d) ? 0 : (long) (d / pi);
        if (q >= 0)
            q += q & 1;
        else
            q -= q & 1;
        d = d - pi * (double) q;
        a.phase[i] = phase;
        a.frequency[i] = a.binFrequency * (d * a.oversampling / (2.0 * pi)) + a.binFrequency * a.bin[i];
    }

    static void synthesiseBin (const Synthesis& s, long k) noexcept
    {
        const double phase = s.phase[k];
        // An empty bin gives zeros whatever its phase; a zero's sign never reaches the output, as the
        // overlap-add starts from +0 and adds.
        if (s.magnitude[k] == 0.0f && std::isfinite (phase))
        {
            s.workspace[2 * k] = 0.0f;
            s.workspace[2 * k + 1] = 0.0f;
            return;
        }
        s.workspace[2 * k] = (float) (s.magnitude[k] * std::cos (phase));
        s.workspace[2 * k + 1] = (float) (s.magnitude[k] * std::sin (phase));
    }
};

template <class Arch>
void PhaseVocoderKernel::operator() (Arch, const Analysis& a) const noexcept
{
    using B = xsimd::batch<double, Arch>;
    constexpr long n = (long) B::size;
    const B zero (0.0), one (1.0), piB (pi), twoPi (2.0 * pi), step (a.expectedPhaseStep),
        binFrequency (a.binFrequency), oversampling (a.oversampling);

    long i = 0;
    for (; i + n <= a.count; i += n)
    {
        const B re = B::load_unaligned (a.re + i), im = B::load_unaligned (a.im + i),
                last = B::load_unaligned (a.lastPhase + i), bin = B::load_unaligned (a.bin + i);
        // Signed zeros and infinities are where a vector atan2 may part from the library's.
        if (xsimd::any ((re == zero) | (im == zero) | ! xsimd::isfinite (re) | ! xsimd::isfinite (im)
                        | ! xsimd::isfinite (last)))
        {
            for (long j = i; j < i + n; ++j)
                analyseBin (a, j);
            continue;
        }
        const B phase = xsimd::atan2 (im, re);
        B d = (phase - last) - bin * step;
        // The deviation is finite and far below 2^52 here, so truncation and parity are exact in double.
        B q = xsimd::trunc (d / piB);
        const B half = xsimd::trunc (q * B (0.5));
        q = xsimd::select ((half + half) != q, q + xsimd::select (q < zero, -one, one), q);
        d = d - piB * q;
        phase.store_unaligned (a.phase + i);
        (binFrequency * ((d * oversampling) / twoPi) + binFrequency * bin).store_unaligned (a.frequency + i);
    }
    for (; i < a.count; ++i)
        analyseBin (a, i);
}

template <class Arch>
void PhaseVocoderKernel::operator() (Arch, const Synthesis& s) const noexcept
{
    using B = xsimd::batch<double, Arch>;
    constexpr long n = (long) B::size;
    // pi / 2 in five parts; each of the first four has 21 significant bits, so its product with a
    // quadrant count below 2^32 is exact and the reduction below loses nothing to the large phases
    // the synthesis accumulates.
    const B c1 (0x1.921fbp+0), c2 (0x1.5110bp-22), c3 (0x1.18469p-44), c4 (0x1.13198p-65), c5 (0x1.45c06e0e68948p-86);
    const B twoOverPi (0.6366197723675814), limit (0x1p32), zero (0.0);

    long k = 0;
    for (; k + n <= s.count; k += n)
    {
        alignas (64) double phases[n], magnitudes[n];
        for (long j = 0; j < n; ++j)
        {
            phases[j] = s.phase[k + j];
            magnitudes[j] = s.magnitude[k + j];
        }
        const B p = B::load_aligned (phases);
        if (xsimd::any (! (xsimd::abs (p) < limit)))
        {
            for (long j = k; j < k + n; ++j)
                synthesiseBin (s, j);
            continue;
        }
        const B quadrants = xsimd::nearbyint (p * twoOverPi);
        const B r = ((((p - quadrants * c1) - quadrants * c2) - quadrants * c3) - quadrants * c4) - quadrants * c5;
        const auto sc = xsimd::sincos (r);
        const B quadrant = quadrants - B (4.0) * xsimd::floor (quadrants * B (0.25));
        const auto odd = (quadrant == B (1.0)) | (quadrant == B (3.0));
        const B sine = xsimd::select (odd, sc.second, sc.first);
        const B cosine = xsimd::select (odd, sc.first, sc.second);
        const B sineSign = xsimd::select (quadrant >= B (2.0), B (-1.0), B (1.0));
        const B cosineSign = xsimd::select ((quadrant == B (1.0)) | (quadrant == B (2.0)), B (-1.0), B (1.0));
        const B m = B::load_aligned (magnitudes);
        alignas (64) double re[n], im[n];
        (m * (cosine * cosineSign)).store_aligned (re);
        (m * (sine * sineSign)).store_aligned (im);
        for (long j = 0; j < n; ++j)
        {
            const bool empty = magnitudes[j] == 0.0;
            s.workspace[2 * (k + j)] = empty ? 0.0f : (float) re[j];
            s.workspace[2 * (k + j) + 1] = empty ? 0.0f : (float) im[j];
        }
    }
    for (; k < s.count; ++k)
        synthesiseBin (s, k);
}

extern template void PhaseVocoderKernel::operator()<xsimd::avx2> (xsimd::avx2, const Analysis&) const noexcept;
extern template void PhaseVocoderKernel::operator()<xsimd::sse2> (xsimd::sse2, const Analysis&) const noexcept;
extern template void PhaseVocoderKernel::operator()<xsimd::avx2> (xsimd::avx2, const Synthesis&) const noexcept;
extern template void PhaseVocoderKernel::operator()<xsimd::sse2> (xsimd::sse2, const Synthesis&) const noexcept;
