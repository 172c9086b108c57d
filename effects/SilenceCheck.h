// SPDX-License-Identifier: AGPL-3.0-or-later
// Whether a run of samples is all zero (of either sign), as the stages test before resting.
#pragma once

#include <cstdint>
#include <cstring>

inline bool isSilent (const float* x, int n) noexcept
{
    // The bits of every sample, sign removed, or-ed together: zero only if every sample is a zero.
    std::uint32_t any = 0;
    for (int i = 0; i < n; ++i)
    {
        std::uint32_t bits;
        std::memcpy (&bits, x + i, sizeof bits);
        any |= bits << 1;
    }
    return any == 0;
}
