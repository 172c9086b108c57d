// SPDX-License-Identifier: AGPL-3.0-or-later
// pthread_mutex_lock wrapper for the tests; it forwards to the C library's own implementation, so
// it allocates nothing and takes no lock of its own.
#include "LockCounter.h"

#include <pthread.h>

#include "AddressSanitizer.h"

namespace
{
thread_local bool recording = false;
thread_local const void* seen[ScopedLockRecord::capacity];
thread_local std::size_t distinct = 0;
thread_local std::size_t calls = 0;

[[maybe_unused]] void note (const void* mutex)
{
    ++calls;
    for (std::size_t i = 0; i < distinct; ++i)
        if (seen[i] == mutex)
            return;
    if (distinct < ScopedLockRecord::capacity)
        seen[distinct++] = mutex;
}
} // namespace

#if ! ONDRIVEL_ADDRESS_SANITIZER
// The C library's implementation under its other exported name, bound to its only version: no
// symbol lookup at run time, which could itself lock.
extern "C" int libcMutexLock (pthread_mutex_t*);
__asm__ (".symver libcMutexLock, __pthread_mutex_lock@GLIBC_2.2.5");

extern "C" int pthread_mutex_lock (pthread_mutex_t* mutex)
{
    if (recording)
        note (mutex);
    return libcMutexLock (mutex);
}
#endif

ScopedLockRecord::ScopedLockRecord() : wasRecording (recording)
{
    recording = true;
    distinct = 0;
    calls = 0;
}

ScopedLockRecord::~ScopedLockRecord()
{
    recording = wasRecording;
}

std::size_t ScopedLockRecord::getDistinctMutexes() const { return distinct; }
std::size_t ScopedLockRecord::getLockCalls() const { return calls; }
bool ScopedLockRecord::isActive() { return ! ONDRIVEL_ADDRESS_SANITIZER; }
