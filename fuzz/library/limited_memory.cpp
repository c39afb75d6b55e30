#include "limited_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
constexpr size_t kLargestPiece = size_t(1) << 19; // bytes: a quarter of a million stored values
std::atomic<int> limits = 0;

void* Allocate(size_t size) noexcept { return limits > 0 && size > kLargestPiece ? nullptr : std::malloc(size); }
} // namespace

void* operator new(size_t size)
{
    if (void* const piece = Allocate(size))
        return piece;
    throw std::bad_alloc();
}

void* operator new[](size_t size) { return operator new(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* piece) noexcept { std::free(piece); }
void operator delete[](void* piece) noexcept { std::free(piece); }
void operator delete(void* piece, size_t) noexcept { std::free(piece); }
void operator delete[](void* piece, size_t) noexcept { std::free(piece); }

namespace corvane::fuzz
{
LimitedMemory::LimitedMemory() { ++limits; }
LimitedMemory::~LimitedMemory() { --limits; }
} // namespace corvane::fuzz
