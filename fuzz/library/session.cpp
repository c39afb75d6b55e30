#include "session.h"

#include "core/fan_out.h"

#include <cstdio>

namespace corvane::fuzz
{
namespace
{
uint64_t TraceOf(Input input, int workers, uint8_t fill, void (*play)(Session& session))
{
    const LimitedMemory limited;
    core::LimitWorkers(workers);
    Session session = {input, fill};
    play(session);
    return session.trace.Value();
}
} // namespace

void Require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    __builtin_trap();
}

void PlayInput(const uint8_t* bytes, size_t count, void (*play)(Session& session))
{
    Input input(bytes, count);
    const bool twice = input.OneIn(8);
    const uint64_t trace = TraceOf(input, 1, 0x5a, play);
    if (twice)
        Require(TraceOf(input, 5, 0xa5, play) == trace, "the same calls give the same answers");
}
} // namespace corvane::fuzz

// The lines that renderings print, thousands a second, go nowhere.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    corvane::fuzz::Require(std::freopen("/dev/null", "w", stdout), "/dev/null can be written");
    return 0;
}
