#include "host/error.h"
#include "host/read_text.h"
#include "host/run_apart.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace corvane::host
{
namespace
{
std::string ResultOf(const std::function<bool(char*)>& fill)
{
    const auto filled = RunApart(4, fill);
    return filled ? std::string(filled->Bytes().begin(), filled->Bytes().end()) : "nothing";
}

TEST(RunApart, GivesTheBytesOfWorkThatIsDone)
{
    EXPECT_EQ(ResultOf([](char* bytes) { return std::memcpy(bytes, "done", 4) != nullptr; }), "done");
    EXPECT_EQ(RunApart(0, [](char*) { return true; })->Bytes().size(), 0u);
    const auto many = RunApart(1 << 24, [](char* bytes) { return bytes[(1 << 24) - 1] = 7; });
    EXPECT_EQ(many->Bytes().back(), 7);
}

TEST(RunApart, GivesNothingOfWorkThatFailsOrThrows)
{
    EXPECT_EQ(ResultOf([](char*) { return false; }), "nothing");
    EXPECT_EQ(ResultOf([](char*) -> bool { throw std::runtime_error("no"); }), "nothing");
}

TEST(RunApart, ThrowsTheErrorsOfTheWork)
{
    const auto fail = [](char*) -> bool { throw Error(ErrorKind::Output, std::string(9000, 'x') + " end"); };
    try
    {
        ResultOf(fail);
        FAIL() << "no error";
    }
    catch (const Error& error)
    {
        EXPECT_EQ(error.Kind(), ErrorKind::Output);
        EXPECT_EQ(error.what(), OneLine(std::string(9000, 'x') + " end"));
    }
}

TEST(RunApart, SurvivesWorkThatEndsItsProcess)
{
    EXPECT_EQ(ResultOf([](char*) -> bool { std::abort(); }), "nothing");
    EXPECT_EQ(ResultOf([](char*) -> bool { _Exit(0); }), "nothing");
    EXPECT_EQ(ResultOf([](char*) { return std::raise(SIGSEGV) == 0; }), "nothing");
}

TEST(RunApart, StopsWorkThatRunsWithoutEnd)
{
    volatile bool run = true;
    EXPECT_EQ(ResultOf(
                  [&](char*)
                  {
                      while (run)
                      {
                      }
                      return true;
                  }),
              "nothing");
}

TEST(RunApart, LeavesThisProcessAsItIs)
{
    int here = 1;
    testing::internal::CaptureStderr();
    EXPECT_EQ(ResultOf(
                  [&](char*)
                  {
                      here = 2;
                      std::fprintf(stderr, "a decoder's own message\n");
                      return std::fflush(stderr) == 0;
                  }),
              std::string(4, '\0'));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(here, 1);
}
} // namespace
} // namespace corvane::host
