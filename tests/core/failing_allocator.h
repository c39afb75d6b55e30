#ifndef CORVANE_TESTS_CORE_FAILING_ALLOCATOR_H
#define CORVANE_TESTS_CORE_FAILING_ALLOCATOR_H

#include <cstdint>

// Memory that is counted, and that runs out when a test says so. A test program that compiles failing_allocator.cpp has
// operator new replaced and its own calls of malloc, calloc, realloc and free led here; see tests/CMakeLists.txt.
namespace corvane::tests
{
// From now on `count` allocations succeed, on whatever thread, and the next one fails: operator new throws
// std::bad_alloc, the others give null. Those after it succeed again, so that a test can go on to report what it found.
void FailAllocationAfter(int count);

// The same, but those after it fail, too.
void FailAllocationsFrom(int count);

// No allocation fails any more. True when one has failed since FailAllocationAfter or FailAllocationsFrom.
bool StopFailingAllocations();

// What is allocated now and not freed yet.
struct HeldMemory
{
    int64_t allocations, bytes;
};
HeldMemory Held();

// The most bytes that were held at once since the last StartPeak.
void StartPeak();
int64_t PeakBytes();
} // namespace corvane::tests

#endif
