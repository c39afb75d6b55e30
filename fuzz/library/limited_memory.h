#ifndef CORVANE_FUZZ_LIBRARY_LIMITED_MEMORY_H
#define CORVANE_FUZZ_LIBRARY_LIMITED_MEMORY_H

namespace corvane::fuzz
{
// While one of these lives, memory is short for single large pieces: operator new throws. Records that ask for huge
// images are then refused at once, as on a small machine.
class LimitedMemory
{
public:
    LimitedMemory();
    ~LimitedMemory();
    LimitedMemory(const LimitedMemory&) = delete;
    LimitedMemory& operator=(const LimitedMemory&) = delete;
};
} // namespace corvane::fuzz

#endif
