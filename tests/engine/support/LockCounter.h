// SPDX-License-Identifier: AGPL-3.0-or-later
// Records which mutexes the current thread locks while a ScopedLockRecord is alive. Linking
// LockCounter.cpp wraps pthread_mutex_lock of the test program (the framework's CriticalSection
// is built on it); spin locks and atomics are not seen.
#pragma once

#include <cstddef>

class ScopedLockRecord
{
public:
    ScopedLockRecord();
    ~ScopedLockRecord();

    // Distinct mutexes locked by this thread since construction (up to a fixed limit).
    std::size_t getDistinctMutexes() const;
    std::size_t getLockCalls() const;
    // False under AddressSanitizer, where nothing is recorded.
    static bool isActive();

    static constexpr std::size_t capacity = 32;

private:
    bool wasRecording;
};
