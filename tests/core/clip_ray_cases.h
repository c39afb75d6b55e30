#ifndef CORVANE_TESTS_CORE_CLIP_RAY_CASES_H
#define CORVANE_TESTS_CORE_CLIP_RAY_CASES_H

#include "core/geometry.h"

#include <gtest/gtest.h>

#include <optional>

// What the tests of ray clipping share.
namespace corvane::core
{
struct Ray
{
    Vec3f patientOrigin, indexOrigin, patientDirection, indexDirection;
};

inline VolumeGeometry Prepare(const KsVolumeData& volume)
{
    VolumeGeometry geometry = {};
    PrepareVolumeGeometry(volume, geometry);
    return geometry;
}

// Axes along patient space; 20 voxels of 1 mm per axis until a test says otherwise. The box in patient space then runs
// from 1.1 - 0.1 to 17.9 + 0.1, the sampling bounds from 1.01 to 17.99.
inline VolumeGeometry Straight(int nx = 20, int ny = 20, int nz = 20, float spacingX = 1)
{
    return Prepare({nullptr, nx, ny, nz, {spacingX, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
}

inline std::optional<ClippedRay> Clip(const VolumeGeometry& geometry, const Ray& ray)
{
    return ClipRay(geometry, ray.patientOrigin, ray.indexOrigin, ray.patientDirection, ray.indexDirection,
                   geometry.visibleBox);
}

// A ray whose patient space is voxel-index space.
inline std::optional<ClippedRay> ClipStraight(Vec3f origin, Vec3f direction)
{
    return Clip(Straight(), {origin, origin, direction, direction});
}

inline void ExpectPoint(Vec3f point, Vec3d expected, double tolerance)
{
    EXPECT_NEAR(point.x, expected.x, tolerance);
    EXPECT_NEAR(point.y, expected.y, tolerance);
    EXPECT_NEAR(point.z, expected.z, tolerance);
}

inline void ExpectClip(const std::optional<ClippedRay>& clip, Vec3d entry, double entryDistance, Vec3d exit,
                       double exitDistance, double tolerance = 1e-5)
{
    ASSERT_TRUE(clip);
    ExpectPoint(clip->entry, entry, tolerance);
    EXPECT_NEAR(clip->entryDistance, entryDistance, tolerance);
    ExpectPoint(clip->exit, exit, tolerance);
    EXPECT_NEAR(clip->exitDistance, exitDistance, tolerance);
}

// The ray through a patient point, in both spaces; the index direction is a unit vector.
inline Ray RayOf(const VolumeGeometry& geometry, Vec3d origin, Vec3d direction)
{
    const Vec3f start = ToFloat(origin);
    const Vec3d along = PatientToIndexStep(geometry, direction);
    return {start, PatientToIndex(geometry, start), ToFloat(direction), ToFloat(1 / Length(along) * along)};
}
} // namespace corvane::core

#endif
