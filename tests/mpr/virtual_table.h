#ifndef CORVANE_TESTS_MPR_VIRTUAL_TABLE_H
#define CORVANE_TESTS_MPR_VIRTUAL_TABLE_H

#include <cstdint>
#include <cstring>

namespace corvane::tests
{
// The place of a virtual operation in its class's table, from 0; -1 for an operation that is not virtual.
// A pointer to a virtual member function holds the table's byte offset: plus 1 in its first word on x86, and with the
// lowest bit of its second word set on ARM.
// Source: Itanium C++ ABI 2.3; C++ ABI for the Arm 64-bit Architecture, 4.2.1.
template <class Operation>
int TableIndex(Operation operation)
{
    static_assert(sizeof operation == 2 * sizeof(intptr_t));
    intptr_t words[2];
    std::memcpy(words, &operation, sizeof words);
    constexpr intptr_t kEntry = sizeof(void*);
#if defined(__aarch64__)
    return words[1] & 1 ? int(words[0] / kEntry) : -1;
#else
    return words[0] & 1 ? int((words[0] - 1) / kEntry) : -1;
#endif
}
} // namespace corvane::tests

#endif
