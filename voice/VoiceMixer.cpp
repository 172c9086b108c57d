// SPDX-License-Identifier: AGPL-3.0-or-later
// The filters' states are kept across the lanes of a sample; a lane whose voice has no sample there
// keeps its state as it is.
#include "voice/VoiceMixer.h"

#include <xsimd/xsimd.hpp>

void VoiceMixer::prepare (int maxBlock)
{
    capacity = maxBlock > 0 ? maxBlock : 0;
    inputs.assign ((std::size_t) capacity * maxVoices, 0.0f);
    counts.fill (0);
    longest = 0;
}

void VoiceMixer::load (Filters& f, int voice, const VoiceHighPass& filter) noexcept
{
    const auto v = (std::size_t) voice;
    f.b0[v] = filter.b0;
    f.b1[v] = filter.b1;
    f.b2[v] = filter.b2;
    f.a1[v] = filter.a1;
    f.a2[v] = filter.a2;
    f.s0[v] = filter.s0;
    f.s1[v] = filter.s1;
}

void VoiceMixer::contribute (int voice, int count, VoiceHighPass& firstFilter, VoiceHighPass& secondFilter, float gainLeft,
                             float gainRight) noexcept
{
    if (voice < 0 || voice >= maxVoices || count < 1)
        return;
    const auto v = (std::size_t) voice;
    counts[v] = count;
    firstFilters[v] = &firstFilter;
    secondFilters[v] = &secondFilter;
    gainsLeft[v] = gainLeft;
    gainsRight[v] = gainRight;
    load (first, voice, firstFilter);
    load (second, voice, secondFilter);
    longest = count > longest ? count : longest;
}

void VoiceMixer::mixInto (float* left, float* right) noexcept
{
    // Eight lanes as two SSE2 vectors, the baseline of every x86-64; each lane's operations are the
    // voice's own, in its order.
    using B = xsimd::batch<float, xsimd::sse2>;
    constexpr std::size_t half = B::size;
    static_assert (2 * half == maxVoices);
    struct Lanes
    {
        B b0, b1, b2, a1, a2, s0, s1;
    };
    const auto lanes = [] (const Filters& f, std::size_t at)
    {
        return Lanes { B::load_aligned (f.b0.data() + at), B::load_aligned (f.b1.data() + at), B::load_aligned (f.b2.data() + at),
                       B::load_aligned (f.a1.data() + at), B::load_aligned (f.a2.data() + at), B::load_aligned (f.s0.data() + at),
                       B::load_aligned (f.s1.data() + at) };
    };
    Lanes firstLanes[2] = { lanes (first, 0), lanes (first, half) };
    Lanes secondLanes[2] = { lanes (second, 0), lanes (second, half) };
    alignas (16) std::array<float, maxVoices> sampleCounts {};
    for (std::size_t v = 0; v < maxVoices; ++v)
        sampleCounts[v] = (float) counts[v];
    const B countLanes[2] = { B::load_aligned (sampleCounts.data()), B::load_aligned (sampleCounts.data() + half) };

    // The voices that take part, in the synthesiser's order.
    std::array<std::size_t, maxVoices> order {};
    std::size_t voices = 0;
    for (std::size_t v = 0; v < maxVoices; ++v)
        if (counts[v] > 0)
            order[voices++] = v;

    alignas (16) std::array<float, maxVoices> y {};
    for (int i = 0; i < longest; ++i)
    {
        const float* x = inputs.data() + (std::size_t) i * maxVoices;
        const B sampleIndex ((float) i);
        for (std::size_t h = 0; h < 2; ++h)
        {
            // Transposed direct form II, order 2, twice; a lane whose voice has no sample here keeps its state.
            auto& p = firstLanes[h];
            auto& q = secondLanes[h];
            const auto live = sampleIndex < countLanes[h];
            const B in = B::load_aligned (x + h * half);
            const B a = (p.b0 * in) + p.s0;
            p.s0 = xsimd::select (live, (p.b1 * in) - (p.a1 * a) + p.s1, p.s0);
            p.s1 = xsimd::select (live, (p.b2 * in) - (p.a2 * a), p.s1);
            const B b = (q.b0 * a) + q.s0;
            q.s0 = xsimd::select (live, (q.b1 * a) - (q.a1 * b) + q.s1, q.s0);
            q.s1 = xsimd::select (live, (q.b2 * a) - (q.a2 * b), q.s1);
            b.store_aligned (y.data() + h * half);
        }
        for (std::size_t k = 0; k < voices; ++k)
        {
            const std::size_t v = order[k];
            if (i < counts[v])
            {
                left[i] += y[v] * gainsLeft[v];
                if (right != nullptr)
                    right[i] += y[v] * gainsRight[v];
            }
        }
    }
    for (std::size_t h = 0; h < 2; ++h)
    {
        firstLanes[h].s0.store_aligned (first.s0.data() + h * half);
        firstLanes[h].s1.store_aligned (first.s1.data() + h * half);
        secondLanes[h].s0.store_aligned (second.s0.data() + h * half);
        secondLanes[h].s1.store_aligned (second.s1.data() + h * half);
    }

    for (std::size_t v = 0; v < maxVoices; ++v)
        if (counts[v] > 0)
        {
            firstFilters[v]->s0 = first.s0[v];
            firstFilters[v]->s1 = first.s1[v];
            secondFilters[v]->s0 = second.s0[v];
            secondFilters[v]->s1 = second.s1[v];
            counts[v] = 0;
        }
    longest = 0;
}
