#ifndef CORVANE_TESTS_IMAGES_IMAGE_HASH_H
#define CORVANE_TESTS_IMAGES_IMAGE_HASH_H

#include "corvane/Records.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane::tests
{
// Source: Fowler, Noll, Vo: FNV-1a, 64 bits.
constexpr uint64_t kHashOfNothing = 0xCBF29CE484222325u;

inline uint64_t HashOf(const void* bytes, size_t count, uint64_t hash = kHashOfNothing)
{
    for (size_t index = 0; index < count; ++index)
        hash = (hash ^ static_cast<const uint8_t*>(bytes)[index]) * 0x100000001B3u;
    return hash;
}

// Of an image's geometry and its pixels, row by row.
template <class Pixel>
uint64_t HashOf(const PnImageParam& param, const Pixel* pixels)
{
    return HashOf(pixels, sizeof(Pixel) * param.rows * param.columns, HashOf(&param, sizeof param));
}
} // namespace corvane::tests

#endif
