// SPDX-License-Identifier: AGPL-3.0-or-later
// Wraps the C allocator of the test program and forwards to the C library's own entry points.
#include "MallocCounter.h"

#include <cerrno>
#include <cstdlib>

#include "AddressSanitizer.h"

namespace
{
// Initial-exec: reaching these must not itself allocate.
__attribute__ ((tls_model ("initial-exec"))) thread_local bool counting = false;
__attribute__ ((tls_model ("initial-exec"))) thread_local std::size_t calls = 0;

[[maybe_unused]] inline void note()
{
    if (counting)
        ++calls;
}
} // namespace

#if ! ONDRIVEL_ADDRESS_SANITIZER
extern "C"
{
void* __libc_malloc (std::size_t);
void* __libc_calloc (std::size_t, std::size_t);
void* __libc_realloc (void*, std::size_t);
void* __libc_memalign (std::size_t, std::size_t);

void* malloc (std::size_t size)
{
    note();
    return __libc_malloc (size);
}

void* calloc (std::size_t count, std::size_t size)
{
    note();
    return __libc_calloc (count, size);
}

void* realloc (void* pointer, std::size_t size)
{
    note();
    return __libc_realloc (pointer, size);
}

void* memalign (std::size_t alignment, std::size_t size)
{
    note();
    return __libc_memalign (alignment, size);
}

void* aligned_alloc (std::size_t alignment, std::size_t size)
{
    note();
    return __libc_memalign (alignment, size);
}

int posix_memalign (void** result, std::size_t alignment, std::size_t size)
{
    note();
    if (alignment % sizeof (void*) != 0 || (alignment & (alignment - 1)) != 0)
        return EINVAL;
    void* p = __libc_memalign (alignment, size);
    if (p == nullptr)
        return ENOMEM;
    *result = p;
    return 0;
}
}
#endif

ScopedMallocCount::ScopedMallocCount() : startCount (calls), wasCounting (counting)
{
    counting = true;
}

ScopedMallocCount::~ScopedMallocCount()
{
    counting = wasCounting;
}

std::size_t ScopedMallocCount::getCount() const
{
    return calls - startCount;
}

bool ScopedMallocCount::isActive()
{
    return ! ONDRIVEL_ADDRESS_SANITIZER;
}
