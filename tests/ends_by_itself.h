#ifndef CORVANE_TESTS_ENDS_BY_ITSELF_H
#define CORVANE_TESTS_ENDS_BY_ITSELF_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace corvane::tests
{
// Expects that something ends, without a failed expectation. It runs in a process of its own, which is ended when it
// does not end by itself.
template <class Run>
void ExpectToEnd(const Run& run)
{
    EXPECT_EXIT(
        {
            std::thread(
                []
                {
                    std::this_thread::sleep_for(std::chrono::seconds(60));
                    std::_Exit(2);
                })
                .detach();
            run();
            std::_Exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}
} // namespace corvane::tests

#endif
