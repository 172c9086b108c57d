// SPDX-License-Identifier: AGPL-3.0-or-later
// Counts the C allocator's calls (malloc, calloc, realloc, the aligned forms) made by the current
// thread while a ScopedMallocCount is alive. The framework's buffers and arrays allocate through
// these, not through operator new, so the operator new counter alone would miss them.
// In sanitized builds the sanitizer owns malloc: nothing is counted and isActive() is false.
#pragma once

#include <cstddef>

class ScopedMallocCount
{
public:
    ScopedMallocCount();
    ~ScopedMallocCount();

    std::size_t getCount() const;
    static bool isActive();

private:
    std::size_t startCount;
    bool wasCounting;
};
