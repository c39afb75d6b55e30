#include "failing_allocator.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <malloc.h> // how large a piece of memory is

// What --wrap makes of calls in this program, and what it calls the C library's own functions.
extern "C"
{
    void* RealMalloc(size_t size) __asm__("__real_malloc");
    void* RealCalloc(size_t count, size_t size) __asm__("__real_calloc");
    void* RealRealloc(void* memory, size_t size) __asm__("__real_realloc");
    void RealFree(void* memory) __asm__("__real_free");
    void* WrappedMalloc(size_t size) __asm__("__wrap_malloc");
    void* WrappedCalloc(size_t count, size_t size) __asm__("__wrap_calloc");
    void* WrappedRealloc(void* memory, size_t size) __asm__("__wrap_realloc");
    void WrappedFree(void* memory) __asm__("__wrap_free");
}

namespace
{
constexpr int kNever = -1;

std::atomic<int> allowed = kNever; // allocations until the one that fails
std::atomic<bool> failed = false;
std::atomic<bool> allAfterIt = false; // fail, too

std::atomic<int64_t> heldAllocations = 0, heldBytes = 0, peakBytes = 0;

bool Fails()
{
    int left = allowed.load();
    while (left != kNever)
    {
        if (left == 0 && allAfterIt)
            return failed = true;
        if (!allowed.compare_exchange_weak(left, left - 1)) // after 0 comes kNever
            continue;
        if (left == 0)
            failed = true;
        return left == 0;
    }
    return false;
}

int64_t SizeOf(void* memory)
{
#if defined(_WIN32)
    return int64_t(_msize(memory));
#else
    return int64_t(malloc_usable_size(memory));
#endif
}

void* Counted(void* memory)
{
    if (!memory)
        return nullptr;
    ++heldAllocations;
    const int64_t bytes = heldBytes += SizeOf(memory);
    int64_t peak = peakBytes.load();
    while (bytes > peak && !peakBytes.compare_exchange_weak(peak, bytes))
        continue;
    return memory;
}

void* Allocate(size_t size) noexcept { return Fails() ? nullptr : Counted(RealMalloc(size > 0 ? size : 1)); }

void* AllocateOrThrow(size_t size)
{
    if (void* memory = Allocate(size))
        return memory;
    throw std::bad_alloc();
}

void Free(void* memory) noexcept
{
    if (!memory)
        return;
    --heldAllocations;
    heldBytes -= SizeOf(memory);
    RealFree(memory);
}
} // namespace

namespace corvane::tests
{
void FailAllocationAfter(int count)
{
    allAfterIt = false;
    failed = false;
    allowed = count;
}

void FailAllocationsFrom(int count)
{
    failed = false;
    allAfterIt = true;
    allowed = count;
}

bool StopFailingAllocations()
{
    allowed = kNever;
    return failed;
}

HeldMemory Held() { return {heldAllocations, heldBytes}; }

void StartPeak() { peakBytes = heldBytes.load(); }

int64_t PeakBytes() { return peakBytes; }
} // namespace corvane::tests

void* WrappedMalloc(size_t size) { return Fails() ? nullptr : Counted(RealMalloc(size)); }
void* WrappedCalloc(size_t count, size_t size) { return Fails() ? nullptr : Counted(RealCalloc(count, size)); }
void* WrappedRealloc(void* memory, size_t size)
{
    if (Fails())
        return nullptr;
    const int64_t before = memory ? SizeOf(memory) : 0;
    void* const moved = RealRealloc(memory, size);
    if (!moved)
        return nullptr;
    heldAllocations -= memory ? 1 : 0;
    heldBytes -= before;
    return Counted(moved);
}
void WrappedFree(void* memory) { Free(memory); }

// All forms for ordinary alignment: a sanitizer brings its own, and must not free what another one allocated.
void* operator new(size_t size) { return AllocateOrThrow(size); }
void* operator new[](size_t size) { return AllocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, size_t) noexcept { Free(memory); }
void operator delete[](void* memory, size_t) noexcept { Free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Free(memory); }
