// SPDX-License-Identifier: AGPL-3.0-or-later
// The later butterfly stages of the octaver's float transform for any vector width: butterflies of
// one stage touch disjoint pairs, so several run side by side, each with its own operations in its
// own order. Instantiated for SSE2 and for AVX2 (in a file of its own built for AVX2).
#pragma once

#include <cstdint>

#include <xsimd/xsimd.hpp>

struct FftStages
{
    // Runs stages `stage` to `stages` - 1 on `workspace` (interleaved pairs, `twice` floats), starting
    // from span `le` (floats) as left by the stages before; every span must hold a whole vector.
    // `re`, `im`: the twiddle tables from this stage on, each value twice, one run per stage.
    template <class Arch>
    void operator() (Arch, float* workspace, long twice, long le, long stage, long stages, const float* re,
                     const float* im) const noexcept;
};

namespace fft_stages_detail
{
struct SwapPairs
{
    static constexpr std::uint32_t get (std::size_t i, std::size_t) { return (std::uint32_t) (i ^ 1); }
};
struct RealSign
{
    static constexpr std::uint32_t get (std::size_t i, std::size_t) { return i % 2 == 0 ? 0x80000000u : 0u; }
};
} // namespace fft_stages_detail

template <class Arch>
void FftStages::operator() (Arch, float* workspace, long twice, long le, long stage, long stages, const float* re,
                            const float* im) const noexcept
{
    using namespace fft_stages_detail;
    using B = xsimd::batch<float, Arch>;
    using U = xsimd::batch<std::uint32_t, Arch>;
    constexpr long n = (long) B::size;
    constexpr auto swapPairs = xsimd::make_batch_constant<U, SwapPairs>();
    const B negateReal = xsimd::bitwise_cast<B> ((U) xsimd::make_batch_constant<U, RealSign>());

    for (; stage < stages; ++stage)
    {
        le <<= 1;
        const long le2 = le >> 1;
        for (long group = 0; group < twice; group += le)
            for (long j = 0; j < le2; j += n)
            {
                // (re ur - im ui, re ui + im ur) as re ur + (-(im ui)) and im ur + re ui: the same values.
                float* a = workspace + group + j;
                float* b = a + le2;
                const B second = B::load_unaligned (b);
                const B crossed = (xsimd::swizzle (second, swapPairs) * B::load_unaligned (im + j)) ^ negateReal;
                const B t = second * B::load_unaligned (re + j) + crossed;
                const B first = B::load_unaligned (a);
                (first - t).store_unaligned (b);
                (first + t).store_unaligned (a);
            }
        re += le2;
        im += le2;
    }
}

extern template void FftStages::operator()<xsimd::avx2> (xsimd::avx2, float*, long, long, long, long, const float*, const float*) const noexcept;
extern template void FftStages::operator()<xsimd::sse2> (xsimd::sse2, float*, long, long, long, long, const float*, const float*) const noexcept;
