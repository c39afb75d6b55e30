#ifndef CORVANE_TESTS_LARGE_MEMORY_H
#define CORVANE_TESTS_LARGE_MEMORY_H

#include <cstdint>
#include <fstream>
#include <limits>
#include <string>

namespace corvane::tests
{
// Memory that the machine has to spare; any size where it does not say.
inline uint64_t SpareMemory()
{
    std::ifstream lines("/proc/meminfo");
    for (std::string name, rest; lines >> name;)
    {
        uint64_t kibibytes;
        if (name == "MemAvailable:" && lines >> kibibytes)
            return kibibytes * 1024;
        std::getline(lines, rest);
    }
    return std::numeric_limits<uint64_t>::max();
}

// Whether a test that takes so much memory can run. Sanitizers multiply memory and time, and on Windows memory that is
// only read is taken, too: there only small ones do.
inline bool HasMemoryFor(uint64_t bytes)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(_WIN32)
    constexpr bool kOnlySmall = true;
#elif defined(__has_feature)
    constexpr bool kOnlySmall = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
    constexpr bool kOnlySmall = false;
#endif
    constexpr uint64_t kSmall = uint64_t(256) << 20, kForOthers = uint64_t(1) << 30;
    return kOnlySmall ? bytes <= kSmall : SpareMemory() >= bytes + kForOthers;
}
} // namespace corvane::tests

#endif
