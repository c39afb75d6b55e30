#include "plain_cut.h"

#include "core/vec3.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace corvane::tests
{
using namespace core;

TestRegion::TestRegion(const PnImageParam& param, uint8_t filling)
    : drawn(size_t(param.rows) * param.columns, filling), image{drawn.data(), param}
{
}

TestLabels PlainCut(const KsVolumeData& volume, const KsVolumeMark& labels, const Visible& visible,
                    const KsImageMark& region, uint8_t value)
{
    const PnImageParam& param = region.param;
    const Vec3f r = VecOf(volume.rowDirection), c = VecOf(volume.columnDirection), d = VecOf(volume.sliceDirection);
    const Vec3f regionRow = ToFloat(VecOf(param.rowDirection)), regionColumn = ToFloat(VecOf(param.columnDirection));
    const float firstSpacing = float(param.rowSpacing), secondSpacing = float(param.columnSpacing);
    const Vec3f o = VecOf(volume.origin) - ToFloat(VecOf(param.position));
    const float sx = volume.spacing[0], sy = volume.spacing[1], sz = volume.spacing[2];
    return MakeLabels(volume.sizeX, volume.sizeY, volume.sizeZ,
                      [&](int i, int j, int k) -> int
                      {
                          const float alongRow = float(i) * sy, alongColumn = float(j) * sx,
                                      alongSlices = float(k) * sz;
                          const float x = ((o.x + alongRow * r.x) + alongColumn * c.x) + alongSlices * d.x;
                          const float y = ((o.y + alongRow * r.y) + alongColumn * c.y) + alongSlices * d.y;
                          const float z = ((o.z + alongRow * r.z) + alongColumn * c.z) + alongSlices * d.z;
                          const float u = (x * regionRow.x + y * regionRow.y + z * regionRow.z) / firstSpacing;
                          const float v =
                              (x * regionColumn.x + y * regionColumn.y + z * regionColumn.z) / secondSpacing;
                          // Compared before the conversion, which numbers beyond its range do not survive.
                          if (!(u > -1 && double(u) < param.columns && v > -1 && double(v) < param.rows))
                              return 0;
                          const int64_t column = int64_t(u), row = int64_t(v);
                          if (column > int64_t(param.columns) - 1 || row > int64_t(param.rows) - 1)
                              return 0;
                          if (!region.labels[row * param.columns + column])
                              return 0;
                          const int label = labels.slices[k][int64_t(j) * volume.sizeX + i];
                          return visible[size_t(label % 64)] && label / 64 % 2 == 0 ? value : 0;
                      });
}

TestRegion RandomRegion(Random& random, const KsVolumeData& volume)
{
    // Pixels about as large as voxels, so that many voxels stand near their borders.
    const RandomFrame frame = MakeRandomFrame(random);
    PnImageParam param = {};
    param.rows = uint32_t(random.Between(1, 400));
    param.columns = uint32_t(random.Between(1, 400));
    param.rowSpacing = random.Real(0.2, 3);
    param.columnSpacing = random.Real(0.2, 3);
    std::copy_n(frame.row, 3, param.rowDirection);
    std::copy_n(frame.column, 3, param.columnDirection);
    // A pixel of the region, or one somewhat beside it, meets a voxel of the volume.
    const double index[3] = {random.Real(0, volume.sizeX), random.Real(0, volume.sizeY), random.Real(0, volume.sizeZ)};
    double voxel[3];
    PatientPlace(volume, index, voxel);
    const double column = random.Real(-0.3, 1.3) * param.columns, row = random.Real(-0.3, 1.3) * param.rows;
    const double depth = random.Real(-500, 500);
    for (int axis = 0; axis < 3; ++axis)
        param.position[axis] = voxel[axis] - column * param.rowSpacing * frame.row[axis] -
                               row * param.columnSpacing * frame.column[axis] + depth * frame.normal[axis];

    TestRegion region(param);
    const int blot = random.Between(1, 40);
    const bool everything = random.Below(4) == 0;
    for (int y = 0; y < int(param.rows); ++y)
        for (int x = 0; x < int(param.columns); ++x)
        {
            const uint32_t hash = uint32_t(x / blot) * 73856093u ^ uint32_t(y / blot) * 19349663u;
            region.At(y, x) = everything ? 255 : hash % 3 == 0 ? uint8_t(1 + hash % 255) : 0;
        }
    return region;
}

void ExpectSameLabels(const TestLabels& labels, const TestLabels& expected)
{
    ASSERT_EQ(labels.labels.size(), expected.labels.size());
    int64_t count = 0;
    std::string first;
    for (size_t k = 0; k < labels.labels.size(); ++k)
    {
        ASSERT_EQ(labels.labels[k].size(), expected.labels[k].size());
        for (size_t n = 0; n < labels.labels[k].size(); ++n)
            if (labels.labels[k][n] != expected.labels[k][n] && count++ == 0)
                first = "slice " + std::to_string(k) + ", voxel " + std::to_string(n) + " is " +
                        std::to_string(labels.labels[k][n]) + ", not " + std::to_string(expected.labels[k][n]);
    }
    EXPECT_EQ(count, 0) << first;
}

int64_t CountOf(const TestLabels& labels, uint8_t value)
{
    int64_t count = 0;
    for (const std::vector<uint8_t>& slice : labels.labels)
        count += std::count(slice.begin(), slice.end(), value);
    return count;
}
} // namespace corvane::tests
