// SPDX-License-Identifier: AGPL-3.0-or-later
// Records what the current thread does that an audio thread must not, while one of these is alive:
// operator new, the C allocator (the framework's buffers and arrays allocate through it directly),
// and the mutexes it locks. Linking ScopedRealTimeRecord.cpp wraps operator new, malloc and its kin
// and pthread_mutex_lock of the test program; other threads are not seen. Under AddressSanitizer,
// which owns those functions, nothing is recorded and isActive() is false.
#pragma once

#include <cstddef>

class ScopedRealTimeRecord
{
public:
    ScopedRealTimeRecord();
    ~ScopedRealTimeRecord();

    std::size_t getNews() const;
    // C allocator calls other than those operator new made.
    std::size_t getMallocs() const;
    // Distinct mutexes locked, up to capacity.
    std::size_t getDistinctMutexes() const;

    static bool isActive();
    static constexpr std::size_t capacity = 32;
};
