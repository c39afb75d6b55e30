#include "engine3d/slab_planes.h"

#include "tests/core/random.h"
#include "tests/mpr/random_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

// Where slabs start.
namespace corvane::tests
{
using engine3d::CameraOfSlice;
using engine3d::StartOfSlab;

TEST(SlabPlanes, OfASliceAreSeenFromHalfAThicknessBeforeIt)
{
    // Sagittal, rows to the feet: the normal is y x -z = -x.
    const KsSliceParam slice = {{10, 20, 30}, {0, 1, 0}, {0, 0, -1}, 8};
    const KsCamera camera = CameraOfSlice(slice, 6);
    EXPECT_NEAR(camera.center[0], 13, 1e-5); // 3 mm against the normal
    EXPECT_EQ(camera.center[1], 24);         // half a side along the rows
    EXPECT_EQ(camera.center[2], 26);         // half a side along the columns
    EXPECT_NEAR(camera.direction[0], -1, 2e-6);
    EXPECT_EQ(camera.direction[1], 0);
    EXPECT_EQ(camera.direction[2], 0);
    EXPECT_EQ(camera.up[0], 0); // rows x normal: against the columns
    EXPECT_EQ(camera.up[1], 0);
    EXPECT_NEAR(camera.up[2], 1, 2e-6);
}

TEST(SlabPlanes, OfAnImageStartHalfAThicknessBeforeIt)
{
    const PnImageParam plane = {7, 9, 0.5, 0.25, {1, 0, 0}, {0, 1, 0}, {10, 20, 30}};
    const PnImageParam start = StartOfSlab(plane, 6);
    EXPECT_EQ(start.position[0], 10);
    EXPECT_EQ(start.position[1], 20);
    EXPECT_NEAR(start.position[2], 27, 4e-6); // the normal is a millionth short of 1
    EXPECT_LT(27, start.position[2]);
    PnImageParam rest = start;
    std::copy_n(plane.position, 3, rest.position);
    EXPECT_EQ(std::memcmp(&rest, &plane, sizeof plane), 0);
}

TEST(SlabPlanes, FollowObliquePlanesOfAnyLength)
{
    for (uint32_t seed = 0; seed < 50; ++seed)
    {
        Random random(seed);
        const RandomFrame frame = MakeRandomFrame(random);
        const double rowLength = random.Real(0.5, 2), columnLength = random.Real(0.5, 2);
        const double side = random.Real(1, 200), thickness = random.Real(0.1, 60);
        KsSliceParam slice = {{}, {}, {}, side};
        PnImageParam plane = {3, 4, 1, 2, {}, {}, {}};
        for (int axis = 0; axis < 3; ++axis)
        {
            slice.position[axis] = plane.position[axis] = random.Real(-300, 300);
            slice.rowDirection[axis] = plane.rowDirection[axis] = rowLength * frame.row[axis];
            slice.columnDirection[axis] = plane.columnDirection[axis] = columnLength * frame.column[axis];
        }
        const KsCamera camera = CameraOfSlice(slice, float(thickness));
        const PnImageParam start = StartOfSlab(plane, float(thickness));
        for (int axis = 0; axis < 3; ++axis)
        {
            const double start1 = plane.position[axis] - thickness / 2 * frame.normal[axis];
            const double middle = side / 2 * (plane.rowDirection[axis] + plane.columnDirection[axis]);
            EXPECT_NEAR(start.position[axis], start1, 2e-4);
            EXPECT_NEAR(camera.center[axis], start1 + middle, 3e-4);
            EXPECT_NEAR(camera.direction[axis], frame.normal[axis], 5e-6);
            EXPECT_NEAR(camera.up[axis], -rowLength * frame.column[axis], 1e-5); // rows x normal
        }
    }
}

TEST(SlabPlanes, WithParallelAxesHaveNoNormal)
{
    const PnImageParam plane = {7, 9, 0.5, 0.25, {1, 0, 0}, {-1, 0, 0}, {10, 20, 30}};
    EXPECT_EQ(std::memcmp(StartOfSlab(plane, 6).position, plane.position, sizeof plane.position), 0);
    const KsCamera camera = CameraOfSlice({{10, 20, 30}, {1, 0, 0}, {1, 0, 0}, 8}, 6);
    for (int axis = 0; axis < 3; ++axis)
    {
        EXPECT_EQ(camera.direction[axis], 0);
        EXPECT_EQ(camera.up[axis], 0);
    }
    EXPECT_EQ(camera.center[0], 18);
}
} // namespace corvane::tests
