// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AllocationMeter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace {

constexpr std::size_t kLargestGranted = std::size_t{1} << 30;

std::atomic<bool> g_isMeasuring = false;
std::atomic<std::size_t> g_live = 0;
std::atomic<std::size_t> g_liveAtStart = 0;
std::atomic<std::size_t> g_peak = 0;
std::atomic<std::size_t> g_largest = 0;

void raiseTo(std::atomic<std::size_t> &mark, std::size_t value)
{
    std::size_t former = mark.load();
    while (former < value && !mark.compare_exchange_weak(former, value)) {
    }
}

void *allocate(std::size_t size, std::size_t alignment) noexcept
{
    if (g_isMeasuring)
        raiseTo(g_largest, size);
    if (size > kLargestGranted)
        return nullptr;
    void *memory = nullptr;
    if (alignment <= alignof(std::max_align_t))
        memory = std::malloc(std::max<std::size_t>(size, 1));
    else if (::posix_memalign(&memory, alignment, std::max<std::size_t>(size, 1)) != 0)
        return nullptr;
    if (memory)
        raiseTo(g_peak, g_live += ::malloc_usable_size(memory));
    return memory;
}

void *allocateOrThrow(std::size_t size, std::size_t alignment)
{
    if (void *memory = allocate(size, alignment))
        return memory;
    throw std::bad_alloc();
}

void release(void *memory) noexcept
{
    if (memory)
        g_live -= ::malloc_usable_size(memory);
    std::free(memory);
}

constexpr auto number(std::align_val_t alignment)
{
    return static_cast<std::size_t>(alignment);
}

} // namespace

void *operator new(std::size_t size)
{
    return allocateOrThrow(size, 0);
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return allocate(size, 0);
}

void *operator new(std::size_t size, std::align_val_t alignment)
{
    return allocateOrThrow(size, number(alignment));
}

void *operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t &) noexcept
{
    return allocate(size, number(alignment));
}

void *operator new[](std::size_t size)
{
    return allocateOrThrow(size, 0);
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return allocate(size, 0);
}

void *operator new[](std::size_t size, std::align_val_t alignment)
{
    return allocateOrThrow(size, number(alignment));
}

void *operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t &) noexcept
{
    return allocate(size, number(alignment));
}

void operator delete(void *memory) noexcept
{
    release(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    release(memory);
}

void operator delete(void *memory, std::align_val_t) noexcept
{
    release(memory);
}

void operator delete(void *memory, std::size_t, std::align_val_t) noexcept
{
    release(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    release(memory);
}

void operator delete(void *memory, std::align_val_t, const std::nothrow_t &) noexcept
{
    release(memory);
}

void operator delete[](void *memory) noexcept
{
    release(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    release(memory);
}

void operator delete[](void *memory, std::align_val_t) noexcept
{
    release(memory);
}

void operator delete[](void *memory, std::size_t, std::align_val_t) noexcept
{
    release(memory);
}

void operator delete[](void *memory, const std::nothrow_t &) noexcept
{
    release(memory);
}

void operator delete[](void *memory, std::align_val_t, const std::nothrow_t &) noexcept
{
    release(memory);
}

namespace nurv::test {

AllocationMeter::AllocationMeter()
{
    g_liveAtStart = g_live.load();
    g_peak = g_live.load();
    g_largest = 0;
    g_isMeasuring = true;
}

AllocationMeter::~AllocationMeter()
{
    g_isMeasuring = false;
}

std::size_t AllocationMeter::peakBytes() const
{
    return g_peak - g_liveAtStart;
}

std::size_t AllocationMeter::largestRequest() const
{
    return g_largest;
}

} // namespace nurv::test
