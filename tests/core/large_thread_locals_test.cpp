#include "core/fan_out.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

// A program whose threads have more variables of their own than the stack of a worker holds.
namespace corvane::core
{
namespace
{
thread_local char variables[1 << 20];

TEST(FanOut, HasThreadsInAProgramOfLargeThreadLocals)
{
    const std::thread::id caller = std::this_thread::get_id();
    std::atomic<int> elsewhere = 0;
    FanOut(100,
           [&](int64_t first, int64_t end) noexcept
           {
               variables[sizeof(variables) - 1] = char(first);
               if (std::this_thread::get_id() != caller)
                   elsewhere += int(end - first);
           });
    EXPECT_EQ(elsewhere, 100);
}
} // namespace
} // namespace corvane::core
