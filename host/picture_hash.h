#ifndef CORVANE_HOST_PICTURE_HASH_H
#define CORVANE_HOST_PICTURE_HASH_H

#include "corvane/Records.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace corvane::host
{
// One number for pictures and their geometry, the same on every machine for the same values.
// Source: Fowler, Noll, Vo: FNV-1a, 64 bits.
class Hash
{
public:
    template <class Value>
    void Add(const Value* values, size_t count)
    {
        // The bytes of every number from the lowest to the highest, whatever the machine's order.
        for (size_t n = 0; n < count; ++n)
        {
            uint64_t bits = 0;
            static_assert(sizeof(Value) <= sizeof bits);
            std::memcpy(&bits, values + n, sizeof(Value));
            for (size_t byte = 0; byte < sizeof(Value); ++byte)
                hash_ = (hash_ ^ (bits >> (8 * byte) & 255)) * 0x100000001b3u;
        }
    }

    void Add(const PnImageParam& param)
    {
        Add(&param.rows, 1);
        Add(&param.columns, 1);
        Add(&param.rowSpacing, 1);
        Add(&param.columnSpacing, 1);
        Add(param.rowDirection, 3);
        Add(param.columnDirection, 3);
        Add(param.position, 3);
    }

    uint64_t Value() const { return hash_; }

private:
    uint64_t hash_ = 0xcbf29ce484222325u;
};

// Of an image's geometry and its pixels, row by row.
template <class Pixel>
uint64_t HashOf(const PnImageParam& param, const Pixel* pixels)
{
    Hash hash;
    hash.Add(param);
    hash.Add(pixels, size_t(param.rows) * param.columns);
    return hash.Value();
}
} // namespace corvane::host

#endif
