// SPDX-License-Identifier: AGPL-3.0-or-later
// The stress suite holds every processBlock to no allocation and few locks with this record; a
// record that never counts would let all of those cases pass.
#include <gtest/gtest.h>

#include <cstdlib>
#include <mutex>

#include "support/ScopedRealTimeRecord.h"

TEST (RealTimeSafety, RecordSeesAllocationsAndLocksOfThisThread)
{
    if (! ScopedRealTimeRecord::isActive())
        GTEST_SKIP() << "AddressSanitizer owns the allocator and the locks";
    std::mutex a, b;
    ScopedRealTimeRecord record;
    int* volatile p = new int (3);
    delete p;
    void* volatile q = std::malloc (24);
    std::free (q);
    for (int i = 0; i < 3; ++i)
    {
        std::lock_guard<std::mutex> first (a);
        std::lock_guard<std::mutex> second (b);
    }
    EXPECT_EQ (record.getNews(), 1u);
    EXPECT_EQ (record.getMallocs(), 1u);
    EXPECT_EQ (record.getDistinctMutexes(), 2u);
}
