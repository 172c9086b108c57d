// SPDX-License-Identifier: AGPL-3.0-or-later
// The stress suite holds every processBlock to zero allocations with this counter; a counter that
// never counts would let all of those cases pass.
#include <gtest/gtest.h>

#include "support/AllocationCounter.h"

TEST (RealTimeSafety, AllocationCounterSeesAllocationsOfThisThread)
{
    ScopedAllocationCount count;
    int* volatile p = new int (3);
    delete p;
    EXPECT_EQ (count.getCount(), 1u);
}
