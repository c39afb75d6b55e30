#include "host/volume.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
// A small volume of its own values, with labels.
Volume SmallVolume(int sizeX, int sizeY, int sizeZ)
{
    Volume volume;
    volume.grid = ObliqueGrid(sizeX, sizeY, sizeZ, 25);
    for (int k = 0; k < sizeZ; ++k)
        for (int j = 0; j < sizeY; ++j)
            for (int i = 0; i < sizeX; ++i)
            {
                volume.voxels.push_back(int16_t(TestValue(i, j, k)));
                volume.labels.push_back(uint8_t((i + 2 * j + 3 * k) % 64));
            }
    return volume;
}

TEST(GridGeometry, PutsAVoxelWhereItsStepsLead)
{
    Grid grid;
    grid.spacing = {2, 3, 5};
    grid.origin = {10, 20, 30};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, 1, 0};
    grid.sliceDirection = {0, 0.6, 0.8}; // leans
    ExpectNear(IndexToPatient(grid, {1, 2, 3}), {10 + 2, 20 + 6 + 9, 30 + 12}, 1e-12, "position");
}

TEST(GridGeometry, FindsTheIndexAgainOnATiltedGrid)
{
    const Grid grid = ObliqueGrid(10, 11, 12, 25);
    for (const Vec3 index : {Vec3{0, 0, 0}, Vec3{9, 10, 11}, Vec3{-3.5, 7.25, 100.125}})
        ExpectNear(PatientToIndex(grid, IndexToPatient(grid, index)), index, 1e-9, "index");
}

TEST(GridGeometry, MeasuresTheTiltAlsoOfAMirroredGrid)
{
    Grid grid = ObliqueGrid(4, 4, 4, 25);
    EXPECT_NEAR(TiltDegrees(grid), 25, 1e-9);
    grid.sliceDirection = -1 * grid.sliceDirection;
    EXPECT_NEAR(TiltDegrees(grid), 25, 1e-9);
    EXPECT_NEAR(TiltDegrees(ObliqueGrid(4, 4, 4, 0)), 0, 1e-9);
}

TEST(GridGeometry, NamesTheClosestPatientDirections)
{
    Grid grid;
    grid.rowDirection = {-0.8, 0.6, 0};
    grid.columnDirection = {0, 0.1, -0.99};
    grid.sliceDirection = {0.1, -0.9, 0.2};
    EXPECT_EQ(OrientationLetters(grid), "RIA");
    EXPECT_EQ(OrientationLetters(ObliqueGrid(4, 4, 4, 10)), "LPS");
}

TEST(VolumeView, PointsIntoTheVolumeWhenNothingIsPadded)
{
    const Volume volume = SmallVolume(5, 4, 3);
    const VolumeView view(volume, {});
    EXPECT_EQ(view.Data().sizeX, 5);
    EXPECT_EQ(view.Data().sizeY, 4);
    EXPECT_EQ(view.Data().sizeZ, 3);
    for (int k = 0; k < 3; ++k)
    {
        EXPECT_EQ(view.Data().slices[k], volume.voxels.data() + 20 * k);
        EXPECT_EQ(view.Labels().slices[k], volume.labels.data() + 20 * k);
    }
    EXPECT_FLOAT_EQ(view.Data().origin[2], 678.125f);
    EXPECT_FLOAT_EQ(view.Data().spacing[1], 1.25f);
    EXPECT_FLOAT_EQ(view.Data().sliceDirection[0], float(volume.grid.sliceDirection.x));
}

TEST(VolumeView, PadsAlongZByPointersOnly)
{
    const Volume volume = SmallVolume(5, 4, 3);
    const VolumeView view(volume, {.x = false, .y = false, .z = true});
    ASSERT_EQ(view.Data().sizeZ, 5);
    EXPECT_EQ(view.Data().slices[0], volume.voxels.data());
    EXPECT_EQ(view.Data().slices[1], volume.voxels.data());
    EXPECT_EQ(view.Data().slices[3], volume.voxels.data() + 40);
    EXPECT_EQ(view.Data().slices[4], volume.voxels.data() + 40);
    EXPECT_EQ(view.Labels().slices[4], volume.labels.data() + 40);
    ExpectNear(view.PaddedGrid().origin, IndexToPatient(volume.grid, {0, 0, -1}), 1e-12, "origin");
}

TEST(VolumeView, RepeatsTheOutermostVoxelsOnEverySide)
{
    const Volume volume = SmallVolume(5, 4, 3);
    const VolumeView view(volume, {.x = true, .y = true, .z = true});
    ASSERT_EQ(view.Data().sizeX, 7);
    ASSERT_EQ(view.Data().sizeY, 6);
    ASSERT_EQ(view.Data().sizeZ, 5);
    ASSERT_EQ(view.Labels().sizeX, 7u);
    for (int k = 0; k < 5; ++k)
        for (int j = 0; j < 6; ++j)
            for (int i = 0; i < 7; ++i)
            {
                const int x = std::clamp(i - 1, 0, 4), y = std::clamp(j - 1, 0, 3), z = std::clamp(k - 1, 0, 2);
                ASSERT_EQ(view.Data().slices[k][j * 7 + i], TestValue(x, y, z)) << i << " " << j << " " << k;
                ASSERT_EQ(view.Labels().slices[k][j * 7 + i], (x + 2 * y + 3 * z) % 64) << i << " " << j << " " << k;
            }
    // A padded voxel lies where the same voxel of the volume lies.
    ExpectNear(IndexToPatient(view.PaddedGrid(), {3, 2, 2}), IndexToPatient(volume.grid, {2, 1, 1}), 1e-12, "position");
}

TEST(VolumeView, HasNoLabelsWhenTheVolumeHasNone)
{
    Volume volume = SmallVolume(5, 4, 3);
    volume.labels.clear();
    EXPECT_EQ(VolumeView(volume, {}).Labels().slices, nullptr);
    EXPECT_EQ(VolumeView(volume, {.x = true, .y = true, .z = true}).Labels().slices, nullptr);
}

TEST(VolumeView, PadsAxesOfFewerThan16Voxels)
{
    const Padding padding = PaddingOfThinAxes(ObliqueGrid(15, 16, 1, 0));
    EXPECT_TRUE(padding.x);
    EXPECT_FALSE(padding.y);
    EXPECT_TRUE(padding.z);
}
} // namespace
} // namespace corvane::host
