#ifndef CORVANE_FUZZ_LIBRARY_INPUT_H
#define CORVANE_FUZZ_LIBRARY_INPUT_H

#include <cstddef>
#include <cstdint>

namespace corvane::fuzz
{
// The bytes of one input, taken from the front, so that inputs can be written by hand. One byte makes most numbers:
// what lies behind a byte that is changed keeps its meaning. After the end every byte is 0.
class Input
{
public:
    Input(const uint8_t* bytes, size_t count) : next_(bytes), end_(bytes + count) {}

    bool IsOver() const { return next_ == end_; }
    uint8_t Byte() { return IsOver() ? uint8_t(0) : *next_++; }

    int Below(int count) { return Byte() % count; } // count at most 256
    bool OneIn(int count) { return Below(count) == count - 1; }

    // From low to high; one of eight is a number that nobody should give, or any four bytes.
    float Number(float low, float high);

    // The same for at most 200 integers from low on.
    int Integer(int low, int high);

private:
    uint32_t Word();

    const uint8_t* next_;
    const uint8_t* end_;
};
} // namespace corvane::fuzz

#endif
