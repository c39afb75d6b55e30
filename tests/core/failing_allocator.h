#ifndef CORVANE_TESTS_CORE_FAILING_ALLOCATOR_H
#define CORVANE_TESTS_CORE_FAILING_ALLOCATOR_H

// Memory that runs out when a test says so. A test program that compiles failing_allocator.cpp has its operator new
// replaced by one that can be told to fail.
namespace corvane::tests
{
// From now on `count` allocations succeed, on whatever thread, and the next one throws std::bad_alloc. Those after it
// succeed again, so that a test can go on to report what it found.
void FailAllocationAfter(int count);

// No allocation fails any more. True when one has failed since FailAllocationAfter.
bool StopFailingAllocations();
} // namespace corvane::tests

#endif
