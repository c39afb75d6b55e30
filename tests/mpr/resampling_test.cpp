#include "mpr/resampling.h"

#include "corvane/RenderMPR.h"
#include "plain_planes.h"
#include "random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvane::tests
{
namespace
{
constexpr int16_t kOutside = -1024;
constexpr int16_t kGuard = 0x5A5A;

TestVolume MakeNoise(Random& random, int sizeX, int sizeY, int sizeZ)
{
    return MakeVolume(sizeX, sizeY, sizeZ, [&](int, int, int) { return random.Between(-32768, 32767); });
}

core::VolumeView ViewOf(const KsVolumeData& volume)
{
    return {volume.slices, volume.sizeX, volume.sizeY, volume.sizeZ};
}

// The plane as RenderMPR makes it.
std::vector<int16_t> Rendered(const KsVolumeData& volume, const PnImageParam& plane)
{
    RenderMPR render;
    EXPECT_TRUE(render.InitData(volume));
    std::vector<int16_t> values(size_t(plane.rows) * plane.columns, kGuard);
    KsImageVAL image = {values.data(), plane};
    EXPECT_TRUE(render.Imaging(&image));
    return values;
}

std::vector<int16_t> Resampled(const mpr::KernelTable& kernels, const KsVolumeData& volume, const PnImageParam& plane)
{
    core::VolumeGeometry geometry = {};
    core::PrepareVolumeGeometry(volume, geometry);
    std::vector<int16_t> values(size_t(plane.rows) * plane.columns, kGuard);
    KsImageVAL image = {values.data(), plane};
    mpr::ResamplePlane(ViewOf(volume), geometry, image, kernels);
    return values;
}

// A row of one kernel copy, with guards on both sides.
std::vector<int16_t> ResampledRow(const mpr::KernelTable& kernels, const KsVolumeData& volume,
                                  const core::PixelRow& row)
{
    std::vector<int16_t> values(size_t(row.count) + 2, kGuard);
    const mpr::RowToFill one = {row, values.data() + 1};
    kernels.resampleRows(ViewOf(volume), &one, 1);
    EXPECT_EQ(values.front(), kGuard) << kernels.instructionSet;
    EXPECT_EQ(values.back(), kGuard) << kernels.instructionSet;
    return {values.begin() + 1, values.end() - 1};
}

// One pixel of one kernel copy.
int16_t ResampledPixel(const mpr::KernelTable& kernels, const KsVolumeData& volume, core::Vec3f place)
{
    return ResampledRow(kernels, volume, {place, {0, 0, 0}, 1})[0];
}

size_t CountInside(const std::vector<int16_t>& image)
{
    return image.size() - size_t(std::count(image.begin(), image.end(), kOutside));
}
} // namespace

TEST(Resampling, EqualsThePlainVersionBitForBitOnRandomVolumesAndPlanes)
{
    Random random(1);
    size_t inside = 0, pixels = 0;
    for (int round = 0; round < 6000; ++round)
    {
        TestVolume volume = MakeNoise(random, random.Between(1, 40), random.Between(1, 40), random.Between(1, 40));
        PlaceAtRandom(random, volume.data);
        for (int view = 0; view < 3; ++view)
        {
            const PnImageParam plane = MakeRandomPlane(random, volume.data);
            const std::vector<int16_t> expected = PlainImage(volume.data, plane);
            ASSERT_EQ(Rendered(volume.data, plane), expected) << "round " << round << ", view " << view;
            for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
                ASSERT_EQ(Resampled(*kernels, volume.data, plane), expected)
                    << kernels->instructionSet << ", round " << round << ", view " << view;
            inside += CountInside(expected);
            pixels += expected.size();
        }
    }
    EXPECT_GT(inside, pixels / 10);
}

TEST(Resampling, EqualsThePlainVersionForEveryImageWidth)
{
    Random random(2);
    TestVolume volume = MakeNoise(random, 37, 23, 11);
    PlaceAtRandom(random, volume.data);
    size_t inside = 0;
    for (uint32_t columns = 1; columns <= 200; ++columns)
    {
        PnImageParam plane = MakeRandomPlane(random, volume.data);
        const double middle[3] = {18, 11, 5};
        PatientPlace(volume.data, middle, plane.position);
        plane.columns = columns;
        plane.columnSpacing = 3.0 / columns; // the whole row in the volume
        const std::vector<int16_t> expected = PlainImage(volume.data, plane);
        for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
            ASSERT_EQ(Resampled(*kernels, volume.data, plane), expected)
                << kernels->instructionSet << ", " << columns << " columns";
        inside += CountInside(expected);
    }
    EXPECT_GT(inside, 20000u);
}

TEST(Resampling, RowsThatAreTakenAtOnceAreThoseTakenOneByOne)
{
    Random random(4);
    TestVolume volume = MakeNoise(random, 30, 20, 10);
    for (int round = 0; round < 400; ++round)
    {
        for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
        {
            const int rowCount = random.Between(1, mpr::kRowsAtOnce);
            std::vector<std::vector<int16_t>> values, expected;
            std::vector<mpr::RowToFill> rows;
            for (int row = 0; row < rowCount; ++row)
            {
                // From some pixel inside the volume along x, y or z, some rows out of it again.
                core::Vec3f step = {0, 0, 0};
                (row % 3 == 0 ? step.x : row % 3 == 1 ? step.y : step.z) = float(random.Between(-100, 100)) / 512.0f;
                const core::PixelRow pixels = {{15.3f, 9.7f, 4.6f}, step, random.Between(0, 150)};
                expected.push_back(ResampledRow(*kernels, volume.data, pixels));
                values.push_back(std::vector<int16_t>(size_t(pixels.count), kGuard));
                rows.push_back({pixels, nullptr});
            }
            for (int row = 0; row < rowCount; ++row)
                rows[size_t(row)].values = values[size_t(row)].data();
            kernels->resampleRows(ViewOf(volume.data), rows.data(), rowCount);
            ASSERT_EQ(values, expected) << kernels->instructionSet << ", round " << round;
        }
    }
}

// Far away and in fine steps the last bit of a clipped distance decides which pixel is the first one.
TEST(Resampling, EqualsThePlainVersionOnFineRowsThatStartFarAway)
{
    Random random(3);
    size_t hits = 0;
    for (int round = 0; round < 60; ++round)
    {
        TestVolume volume = MakeNoise(random, random.Between(5, 12), random.Between(5, 12), random.Between(5, 12));
        PlaceAtRandom(random, volume.data);
        PnImageParam plane = MakeRandomPlane(random, volume.data);
        plane.rows = 1;
        plane.columns = 3000000;
        plane.columnSpacing = 0.0002;
        const double middle[3] = {0.5 * volume.data.sizeX, 0.5 * volume.data.sizeY, 0.5 * volume.data.sizeZ};
        PatientPlace(volume.data, middle, plane.position);
        for (int axis = 0; axis < 3; ++axis)
            plane.position[axis] -= 500.0 * plane.rowDirection[axis];
        const std::vector<int16_t> expected = PlainImage(volume.data, plane);
        const std::vector<int16_t> rendered = Rendered(volume.data, plane);
        const auto differing = std::mismatch(expected.begin(), expected.end(), rendered.begin()).first;
        ASSERT_TRUE(differing == expected.end()) << "round " << round << ", column " << differing - expected.begin();
        hits += CountInside(expected) > 1000;
    }
    EXPECT_GT(hits, 40u);
}

// A linear function of the voxel index is one of patient position, too, and trilinear interpolation keeps it.
TEST(Resampling, GivesALinearFunctionOfPatientPositionAtEveryPixel)
{
    Random random(4);
    size_t inside = 0;
    for (int round = 0; round < 500; ++round)
    {
        const int a = random.Between(-60, 60), b = random.Between(-60, 60), c = random.Between(-60, 60);
        TestVolume volume = MakeVolume(30, 26, 22, [&](int i, int j, int k) { return 8000 + a * i + b * j + c * k; });
        KsVolumeData& data = volume.data;
        PlaceAtRandom(random, data);
        const PnImageParam plane = MakeRandomPlane(random, data);
        const std::vector<int16_t> image = Rendered(data, plane);

        // The inverse of the index-to-patient matrix, by cofactors.
        double m[3][3];
        for (int axis = 0; axis < 3; ++axis)
        {
            m[axis][0] = double(data.spacing[0]) * double(data.rowDirection[axis]);
            m[axis][1] = double(data.spacing[1]) * double(data.columnDirection[axis]);
            m[axis][2] = double(data.spacing[2]) * double(data.sliceDirection[axis]);
        }
        const auto cofactor = [&](int row, int column)
        {
            const int r1 = (row + 1) % 3, r2 = (row + 2) % 3, c1 = (column + 1) % 3, c2 = (column + 2) % 3;
            return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
        };
        const double determinant = m[0][0] * cofactor(0, 0) + m[0][1] * cofactor(0, 1) + m[0][2] * cofactor(0, 2);

        for (uint32_t row = 0; row < plane.rows; ++row)
        {
            for (uint32_t column = 0; column < plane.columns; ++column)
            {
                double index[3] = {};
                for (int axis = 0; axis < 3; ++axis)
                {
                    const double offset =
                        plane.position[axis] + column * plane.columnSpacing * plane.rowDirection[axis] +
                        row * plane.rowSpacing * plane.columnDirection[axis] - double(data.origin[axis]);
                    for (int component = 0; component < 3; ++component)
                        index[component] += cofactor(axis, component) / determinant * offset;
                }
                const double size[3] = {30, 26, 22};
                double depth = 1000; // how far inside the sampled part of the volume, in voxels
                for (int axis = 0; axis < 3; ++axis)
                    depth = std::min({depth, index[axis] - 1.1, size[axis] - 2.1 - index[axis]});
                const int16_t value = image[row * plane.columns + column];
                if (depth < -0.2)
                {
                    ASSERT_EQ(value, kOutside) << "round " << round << ", row " << row << ", column " << column;
                }
                if (depth < 0.02)
                    continue;
                // 0.5 for rounding, and 0.005 voxels of single precision along each axis.
                const double expected = 8000 + a * index[0] + b * index[1] + c * index[2];
                const double allowed = 0.5 + 0.005 * (std::abs(a) + std::abs(b) + std::abs(c));
                ASSERT_NEAR(value, expected, allowed) << "round " << round << ", row " << row << ", column " << column;
                ++inside;
            }
        }
    }
    EXPECT_GT(inside, 30000u);
}

TEST(ResamplingKernels, AreAtLeastTheOneThatEveryMachineRuns)
{
    ASSERT_GE(mpr::AvailableKernels().size(), 1u);
    EXPECT_STREQ(mpr::AvailableKernels().front()->instructionSet, "base");
    EXPECT_EQ(&mpr::Kernels(), mpr::AvailableKernels().back());
}

TEST(ResamplingKernels, ReproduceALinearRampExactlyBetweenVoxels)
{
    const TestVolume ramp = MakeVolume(12, 10, 8, [](int i, int j, int k) { return 100 * i + 20 * j - 8 * k; });
    // 100 x + 20 y - 8 z, in eighths that single precision holds exactly, at 8 pixels half a voxel apart
    const core::PixelRow row = {{4.25f, 7.5f, 3.75f}, {0.5f, 0.0f, 0.25f}, 8};
    const std::vector<int16_t> expected = {545, 593, 641, 689, 737, 785, 833, 881};
    for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
        EXPECT_EQ(ResampledRow(*kernels, ramp.data, row), expected) << kernels->instructionSet;
}

TEST(ResamplingKernels, AddOneHalfAndTruncateTowardZero)
{
    const auto between = [](int a, int b)
    { return MakeVolume(4, 4, 4, [=](int i, int, int) { return i < 2 ? a : b; }); };
    const TestVolume minusHalf = between(-1, 0), oneAndAHalf = between(1, 2), air = between(-1000, -1000);
    const TestVolume greatest = between(32767, 32767), least = between(-32768, -32768), wide = between(-20, 0);
    for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
    {
        SCOPED_TRACE(kernels->instructionSet);
        EXPECT_EQ(ResampledPixel(*kernels, minusHalf.data, {1.5f, 1.0f, 1.0f}), 0);
        EXPECT_EQ(ResampledPixel(*kernels, oneAndAHalf.data, {1.5f, 1.0f, 1.0f}), 2);
        EXPECT_EQ(ResampledPixel(*kernels, air.data, {1.5f, 1.25f, 1.75f}), -999);
        EXPECT_EQ(ResampledPixel(*kernels, greatest.data, {1.5f, 1.25f, 1.75f}), 32767);
        EXPECT_EQ(ResampledPixel(*kernels, least.data, {1.5f, 1.25f, 1.75f}), -32767);
        EXPECT_EQ(ResampledPixel(*kernels, wide.data, {1.96875f, 1.0f, 1.0f}), 0);  // -0.625
        EXPECT_EQ(ResampledPixel(*kernels, wide.data, {1.9375f, 1.0f, 1.0f}), 0);   // -1.25
        EXPECT_EQ(ResampledPixel(*kernels, wide.data, {1.90625f, 1.0f, 1.0f}), -1); // -1.875
    }
}

TEST(ResamplingKernels, InterpolateTheLastSliceWithItself)
{
    const TestVolume volume = MakeVolume(6, 6, 5, [](int i, int, int k) { return 10 * i + 1000 * k; });
    for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
    {
        SCOPED_TRACE(kernels->instructionSet);
        EXPECT_EQ(ResampledPixel(*kernels, volume.data, {2.5f, 2.5f, 3.5f}), 3525);
        EXPECT_EQ(ResampledPixel(*kernels, volume.data, {2.5f, 2.5f, 4.0f}), 4025);
        EXPECT_EQ(ResampledPixel(*kernels, volume.data, {2.5f, 2.5f, 4.75f}), 4025);
        EXPECT_EQ(ResampledPixel(*kernels, volume.data, {2.5f, 2.5f, 5.0f}), kGuard);
        const std::vector<int16_t> row = ResampledRow(*kernels, volume.data, {{2.5f, 2.5f, 2.5f}, {0, 0, 0.25f}, 12});
        const std::vector<int16_t> expected = {2525, 2775, 3025, 3275, 3525,   3775,
                                               4025, 4025, 4025, 4025, kGuard, kGuard};
        EXPECT_EQ(row, expected);
    }
}

TEST(ResamplingKernels, LeavePixelsAloneWhereTheRowIsOutsideTheVolume)
{
    Random random(5);
    size_t written = 0, leftAlone = 0;
    for (int round = 0; round < 4000; ++round)
    {
        const int sizeX = random.Between(1, 20), sizeY = random.Between(1, 20), sizeZ = random.Between(1, 20);
        const TestVolume volume = MakeNoise(random, sizeX, sizeY, sizeZ);
        const core::PixelRow row = {
            {float(random.Real(-0.3, 1.3) * sizeX), float(random.Real(-0.3, 1.3) * sizeY),
             float(random.Real(-0.3, 1.3) * sizeZ)},
            {float(random.Real(-0.4, 0.4)), float(random.Real(-0.4, 0.4)), float(random.Real(-0.4, 0.4))},
            random.Between(0, 200)};
        std::vector<int16_t> expected(size_t(row.count), kGuard);
        float place[3] = {row.first.x, row.first.y, row.first.z};
        for (int16_t& pixel : expected)
        {
            const std::optional<int16_t> value = PlainValue(volume.data, place);
            pixel = value.value_or(kGuard);
            ++(value ? written : leftAlone);
            place[0] += row.step.x;
            place[1] += row.step.y;
            place[2] += row.step.z;
        }
        for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
            ASSERT_EQ(ResampledRow(*kernels, volume.data, row), expected)
                << kernels->instructionSet << ", round " << round;
    }
    EXPECT_GT(written, 10000u);
    EXPECT_GT(leftAlone, 10000u);
}

TEST(ResamplingKernels, ReadTheLastVoxelsThatARowTouchesAndNoneBeyond)
{
    const TestVolume volume = MakeVolume(9, 5, 4, [](int i, int j, int k) { return 100 * k + 10 * j + i; });
    // 32 pixels that end exactly at x = 7.75, between the last two voxels of the last row but one
    const core::PixelRow row = {{0.0f, 3.0f, 2.0f}, {0.25f, 0.0f, 0.0f}, 32};
    for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
    {
        const std::vector<int16_t> values = ResampledRow(*kernels, volume.data, row);
        for (int pixel = 0; pixel < 32; ++pixel)
            EXPECT_EQ(values[size_t(pixel)], int16_t(230.5 + 0.25 * pixel)) << kernels->instructionSet << pixel;
    }
}

TEST(ResamplingKernels, LeaveEveryPixelAloneForPlacesThatAreNoNumbers)
{
    const TestVolume volume = MakeVolume(8, 8, 8, [](int, int, int) { return 7; });
    const float nan = std::nanf(""), infinity = INFINITY;
    const core::Vec3f places[] = {{nan, 3, 3},       {3, nan, 3},   {3, 3, nan},    {infinity, 3, 3},
                                  {3, -infinity, 3}, {3, 3, 1e30f}, {-1e30f, 3, 3}, {3, 3, 4294967296.0f}};
    for (const mpr::KernelTable* kernels : mpr::AvailableKernels())
        for (const core::Vec3f place : places)
            for (const int count : {1, 64, 100})
                EXPECT_EQ(ResampledRow(*kernels, volume.data, {place, {0.01f, 0.0f, 0.0f}, count}),
                          std::vector<int16_t>(size_t(count), kGuard));
}
} // namespace corvane::tests
