// SPDX-License-Identifier: AGPL-3.0-or-later
// The wrappers forward to the C library's own entry points, so recording allocates nothing and takes
// no lock of its own.
#include "ScopedRealTimeRecord.h"

#include <pthread.h>

#include <cerrno>
#include <cstdlib>
#include <new>

// GCC says so with a macro, clang only through __has_feature.
#ifndef __has_feature
  #define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
  #define ONDRIVEL_ADDRESS_SANITIZER 1
#else
  #define ONDRIVEL_ADDRESS_SANITIZER 0
#endif

namespace
{
// Initial-exec: reaching these must not itself allocate.
#define ONDRIVEL_TLS __attribute__ ((tls_model ("initial-exec"))) thread_local
ONDRIVEL_TLS bool recording = false;
ONDRIVEL_TLS std::size_t news = 0, mallocs = 0, distinct = 0;
ONDRIVEL_TLS const void* seen[ScopedRealTimeRecord::capacity];

[[maybe_unused]] void noteLock (const void* mutex)
{
    for (std::size_t i = 0; i < distinct; ++i)
        if (seen[i] == mutex)
            return;
    if (distinct < ScopedRealTimeRecord::capacity)
        seen[distinct++] = mutex;
}
} // namespace

#if ! ONDRIVEL_ADDRESS_SANITIZER
extern "C"
{
void* __libc_malloc (std::size_t);
void* __libc_calloc (std::size_t, std::size_t);
void* __libc_realloc (void*, std::size_t);
void* __libc_memalign (std::size_t, std::size_t);

void* malloc (std::size_t size) { mallocs += recording; return __libc_malloc (size); }
void* calloc (std::size_t count, std::size_t size) { mallocs += recording; return __libc_calloc (count, size); }
void* realloc (void* p, std::size_t size) { mallocs += recording; return __libc_realloc (p, size); }
void* memalign (std::size_t alignment, std::size_t size) { mallocs += recording; return __libc_memalign (alignment, size); }
void* aligned_alloc (std::size_t alignment, std::size_t size) { mallocs += recording; return __libc_memalign (alignment, size); }

int posix_memalign (void** result, std::size_t alignment, std::size_t size)
{
    mallocs += recording;
    if (alignment % sizeof (void*) != 0 || (alignment & (alignment - 1)) != 0)
        return EINVAL;
    *result = __libc_memalign (alignment, size);
    return *result != nullptr ? 0 : ENOMEM;
}

// The C library's implementation under its other exported name, bound to its only version: no
// symbol lookup at run time, which could itself lock.
int libcMutexLock (pthread_mutex_t*);
__asm__ (".symver libcMutexLock, __pthread_mutex_lock@GLIBC_2.2.5");

int pthread_mutex_lock (pthread_mutex_t* mutex)
{
    if (recording)
        noteLock (mutex);
    return libcMutexLock (mutex);
}
}

// The other forms of new reach these two through the C++ library; its deletes free what they return.
void* operator new (std::size_t size)
{
    news += recording;
    if (void* p = __libc_malloc (size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void* operator new (std::size_t size, std::align_val_t alignment)
{
    news += recording;
    if (void* p = __libc_memalign ((std::size_t) alignment, size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}
#endif

ScopedRealTimeRecord::ScopedRealTimeRecord()
{
    news = mallocs = distinct = 0;
    recording = true;
}

ScopedRealTimeRecord::~ScopedRealTimeRecord() { recording = false; }

std::size_t ScopedRealTimeRecord::getNews() const { return news; }
std::size_t ScopedRealTimeRecord::getMallocs() const { return mallocs; }
std::size_t ScopedRealTimeRecord::getDistinctMutexes() const { return distinct; }
bool ScopedRealTimeRecord::isActive() { return ! ONDRIVEL_ADDRESS_SANITIZER; }
