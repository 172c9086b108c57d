// SPDX-License-Identifier: AGPL-3.0-or-later
// Global operator new/delete that count per thread, so a test can prove a call does not allocate.
// Other threads (the framework's timer thread, for one) are not counted.
#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace
{
thread_local bool counting = false;
thread_local std::size_t allocations = 0;

void* allocate (std::size_t size)
{
    if (counting)
        ++allocations;
    if (void* p = std::malloc (size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void* allocateAligned (std::size_t size, std::align_val_t alignment)
{
    if (counting)
        ++allocations;
    const auto align = static_cast<std::size_t> (alignment);
    const auto rounded = ((size == 0 ? 1 : size) + align - 1) / align * align;
    if (void* p = std::aligned_alloc (align, rounded))
        return p;
    throw std::bad_alloc();
}
} // namespace

ScopedAllocationCount::ScopedAllocationCount() : startCount (allocations), wasCounting (counting)
{
    counting = true;
}

ScopedAllocationCount::~ScopedAllocationCount()
{
    counting = wasCounting;
}

std::size_t ScopedAllocationCount::getCount() const
{
    return allocations - startCount;
}

void* operator new (std::size_t size) { return allocate (size); }
void* operator new[] (std::size_t size) { return allocate (size); }
void* operator new (std::size_t size, const std::nothrow_t&) noexcept
{
    try { return allocate (size); } catch (...) { return nullptr; }
}
void* operator new[] (std::size_t size, const std::nothrow_t&) noexcept
{
    try { return allocate (size); } catch (...) { return nullptr; }
}
void* operator new (std::size_t size, std::align_val_t alignment) { return allocateAligned (size, alignment); }
void* operator new[] (std::size_t size, std::align_val_t alignment) { return allocateAligned (size, alignment); }

void operator delete (void* p) noexcept { std::free (p); }
void operator delete[] (void* p) noexcept { std::free (p); }
void operator delete (void* p, std::size_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::size_t) noexcept { std::free (p); }
void operator delete (void* p, const std::nothrow_t&) noexcept { std::free (p); }
void operator delete[] (void* p, const std::nothrow_t&) noexcept { std::free (p); }
void operator delete (void* p, std::align_val_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::align_val_t) noexcept { std::free (p); }
void operator delete (void* p, std::size_t, std::align_val_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::size_t, std::align_val_t) noexcept { std::free (p); }
