// SPDX-License-Identifier: AGPL-3.0-or-later
// Guards the guards: counters that never count would let every stress case pass.
#include <gtest/gtest.h>

#include <cstdlib>
#include <mutex>

#include "engine/support/LockCounter.h"
#include "engine/support/MallocCounter.h"

TEST (StressCounters, SeeMallocAndMutexesOfThisThread)
{
    if (ScopedMallocCount::isActive())
    {
        ScopedMallocCount count;
        void* volatile p = std::malloc (24);
        std::free (p);
        void* volatile q = std::calloc (3, 8);
        std::free (q);
        EXPECT_EQ (count.getCount(), 2u);
    }

    std::mutex a, b;
    ScopedLockRecord locks;
    for (int i = 0; i < 3; ++i)
    {
        std::lock_guard<std::mutex> first (a);
        std::lock_guard<std::mutex> second (b);
    }
    EXPECT_EQ (locks.getDistinctMutexes(), 2u);
    EXPECT_EQ (locks.getLockCalls(), 6u);
}
