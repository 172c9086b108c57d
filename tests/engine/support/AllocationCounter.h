// SPDX-License-Identifier: AGPL-3.0-or-later
// Counts heap allocations made by the current thread while a ScopedAllocationCount is alive.
// Linking AllocationCounter.cpp replaces the global operator new and delete of the test program.
#pragma once

#include <cstddef>

class ScopedAllocationCount
{
public:
    ScopedAllocationCount();
    ~ScopedAllocationCount();

    // Allocations by this thread since construction.
    std::size_t getCount() const;

private:
    std::size_t startCount;
    bool wasCounting;
};
