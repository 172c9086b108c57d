// SPDX-License-Identifier: AGPL-3.0-or-later
// The voices' last step, taken for all of them together: each voice's two high-pass filters and its
// placement into the output. A filter's every sample waits on its last; one voice after another, that
// wait is the voices' largest cost. Side by side, the eight filters' steps overlap (and run as vectors),
// while each voice's arithmetic stays its own and the output still receives the voices in their order.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <xsimd/xsimd.hpp>

#include "voice/VoiceHighPass.h"

class VoiceMixer
{
public:
    static constexpr int maxVoices = 8;

    // Room for sub-blocks of up to `maxBlock` samples; allocates.
    void prepare (int maxBlock);

    // Whether a sub-block this long fits; if not, every voice filters and places its own samples.
    bool holds (int numSamples) const noexcept { return numSamples <= capacity; }

    // Sample `i` of this sub-block of voice `voice`, before its filters.
    float& input (int voice, int i) noexcept { return inputs[(std::size_t) (i * maxVoices + voice)]; }

    // Voice `voice` has written its first `count` samples; its filters and gains are used, and its
    // filters' states written back, when the sub-block is mixed.
    void contribute (int voice, int count, VoiceHighPass& first, VoiceHighPass& second, float gainLeft, float gainRight) noexcept;

    // Filters and adds every contributing voice, lowest voice first at each sample, into the sub-block's
    // output (`right` may be null), and forgets them.
    void mixInto (float* left, float* right) noexcept;

private:
    struct Filters
    {
        alignas (16) std::array<float, maxVoices> b0 {}, b1 {}, b2 {}, a1 {}, a2 {}, s0 {}, s1 {};
    };
    static void load (Filters& f, int voice, const VoiceHighPass& filter) noexcept;

    int capacity = 0;
    std::vector<float, xsimd::aligned_allocator<float, 16>> inputs;
    std::array<int, maxVoices> counts {};
    std::array<VoiceHighPass*, maxVoices> firstFilters {}, secondFilters {};
    std::array<float, maxVoices> gainsLeft {}, gainsRight {};
    int longest = 0;
    Filters first, second;
};
