#ifndef CORVANE_TESTS_ENGINE3D_PLAIN_CUT_H
#define CORVANE_TESTS_ENGINE3D_PLAIN_CUT_H

#include "tests/core/random.h"
#include "tests/test_volume.h"

#include <array>

// What a drawn region selects once more, one voxel at a time, to hold the library against. Single precision and the
// order of operations are part of the result.
namespace corvane::tests
{
// A drawn region with its bytes.
struct TestRegion
{
    explicit TestRegion(const PnImageParam& param, uint8_t filling = 0);
    TestRegion(const TestRegion& other) : drawn(other.drawn), image{drawn.data(), other.image.param} {}
    TestRegion& operator=(const TestRegion&) = delete;

    uint8_t& At(int row, int column) { return drawn[size_t(row) * image.param.columns + size_t(column)]; }

    std::vector<uint8_t> drawn;
    KsImageMark image;
};

using Visible = std::array<bool, 64>; // by label

// The selection of all voxels; labels as they are.
TestLabels PlainCut(const KsVolumeData& volume, const KsVolumeMark& labels, const Visible& visible,
                    const KsImageMark& region, uint8_t value);

// A region on a plane oblique to a volume: larger or smaller than it, across its border or beside it, with unequal
// spacings and blots of any value.
TestRegion RandomRegion(Random& random, const KsVolumeData& volume);

// Reports the first different voxel, and how many differ.
void ExpectSameLabels(const TestLabels& labels, const TestLabels& expected);

int64_t CountOf(const TestLabels& labels, uint8_t value);
} // namespace corvane::tests

#endif
