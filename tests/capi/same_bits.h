#ifndef CORVANE_TESTS_CAPI_SAME_BITS_H
#define CORVANE_TESTS_CAPI_SAME_BITS_H

#include "c_handles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace corvane::tests
{
template <class Record>
void ExpectSame(const Record& a, const Record& b)
{
    EXPECT_EQ(std::memcmp(&a, &b, sizeof(Record)), 0);
}

inline void ExpectSameImage(const KsImageData& a, const KsImageData& b)
{
    ASSERT_EQ(a.valueCount, b.valueCount);
    ASSERT_GT(a.valueCount, 0u);
    EXPECT_EQ(std::memcmp(a.values, b.values, a.valueCount * sizeof(int16_t)), 0);
    ExpectSame(a.param, b.param);
}

template <class Value>
bool HasContent(const std::vector<Value>& values)
{
    return std::any_of(values.begin(), values.end(), [&](Value value) { return value != values.front(); });
}
} // namespace corvane::tests

#endif
