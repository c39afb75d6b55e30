#include "failing_allocator.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{
constexpr int kNever = -1;

std::atomic<int> allowed = kNever; // allocations until the one that fails
std::atomic<bool> failed = false;

bool IsTheOneThatFails()
{
    int left = allowed.load();
    while (left != kNever)
    {
        if (!allowed.compare_exchange_weak(left, left - 1)) // after 0 comes kNever
            continue;
        if (left == 0)
            failed = true;
        return left == 0;
    }
    return false;
}

void* Allocate(size_t size) noexcept { return IsTheOneThatFails() ? nullptr : std::malloc(size > 0 ? size : 1); }

void* AllocateOrThrow(size_t size)
{
    if (void* memory = Allocate(size))
        return memory;
    throw std::bad_alloc();
}
} // namespace

namespace corvane::tests
{
void FailAllocationAfter(int count)
{
    failed = false;
    allowed = count;
}

bool StopFailingAllocations()
{
    allowed = kNever;
    return failed;
}
} // namespace corvane::tests

// All forms for ordinary alignment: a sanitizer brings its own, and must not free what another one allocated.
void* operator new(size_t size) { return AllocateOrThrow(size); }
void* operator new[](size_t size) { return AllocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
