#ifndef CORVANE_TESTS_MPR_OWNED_IMAGE_H
#define CORVANE_TESTS_MPR_OWNED_IMAGE_H

#include "corvane/Records.h"

#include <cstdint>
#include <vector>

namespace corvane::tests
{
// Image records that release, as a host would, what the library left in them.
struct OwnedImage : KsImageData
{
    OwnedImage() : KsImageData{} {}
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;
    ~OwnedImage()
    {
        if (ownsValues)
            delete[] values;
    }

    std::vector<int16_t> Values() const { return {values, values + size_t(rows) * columns}; }
};

struct OwnedMark : KsMarkData
{
    OwnedMark() : KsMarkData{} {}
    OwnedMark(const OwnedMark&) = delete;
    OwnedMark& operator=(const OwnedMark&) = delete;
    ~OwnedMark()
    {
        if (ownsLabels)
            delete[] labels;
    }

    std::vector<uint8_t> Labels() const { return {labels, labels + size_t(rows) * columns}; }
};
} // namespace corvane::tests

#endif
