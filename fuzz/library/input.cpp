#include "input.h"

#include <cmath>
#include <cstring>

namespace corvane::fuzz
{
namespace
{
constexpr int kGoodBytes = 224;
constexpr float kHostileNumbers[] = {NAN,    INFINITY, -INFINITY, 3.4e38f, -3.4e38f, 1e30f,      -1e30f, 1e-30f,
                                     -1e-9f, 1e-45f,   -1e-45f,   1e-38f,  0.0f,     -0.0f,      -1.0f,  1.0f,
                                     1e-6f,  1e-4f,    0.009f,    0.1f,    1e4f,     10000.001f, 1e6f,   -1e6f,
                                     1e9f,   -1e9f,    16777216,  2.2e9f,  -2.2e9f,  4.3e9f,     1e19f};
constexpr int kHostileIntegers[] = {
    INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, -1,        0,  1,   2,     3,     4,     63,     64,     65,
    127,       255,           256,       INT16_MAX,     INT16_MIN, -2, -63, 65535, 65536, 70000, -70000, 100000, 46,
    1 << 24,   (1 << 24) + 1, 1 << 30,   -(1 << 30),    1000};
static_assert(sizeof(kHostileNumbers) / sizeof(float) == 255 - kGoodBytes);
static_assert(sizeof(kHostileIntegers) / sizeof(int) == 255 - kGoodBytes);
} // namespace

float Input::Number(float low, float high)
{
    const int byte = Byte();
    if (byte < kGoodBytes)
        return low + (high - low) * float(byte) / float(kGoodBytes - 1);
    if (byte < 255)
        return kHostileNumbers[byte - kGoodBytes];
    const uint32_t word = Word();
    float number;
    std::memcpy(&number, &word, sizeof(number));
    return number;
}

int Input::Integer(int low, int high)
{
    const int byte = Byte();
    if (byte < kGoodBytes)
        return low + byte % (high - low + 1);
    return byte < 255 ? kHostileIntegers[byte - kGoodBytes] : int(Word());
}

uint32_t Input::Word()
{
    uint32_t word = 0;
    for (int byte = 0; byte < 4; ++byte)
        word = word << 8 | Byte();
    return word;
}
} // namespace corvane::fuzz
