#include "clip_ray_cases.h"

#include "plain_clip_ray.h"
#include "random_grid.h"

namespace corvane::core
{
namespace
{
Vec3d RandomDirection(tests::Random& random)
{
    Vec3d direction = random.UnitVector();
    double* components[3] = {&direction.x, &direction.y, &direction.z};
    switch (random.Below(5))
    {
    case 0: // parallel to a plane of the axes
        *components[random.Below(3)] = 0;
        break;
    case 1: // nearly so: too little to bound the exit
        *components[random.Below(3)] = random.Real(-0.0001, 0.0001);
        break;
    case 2: // along an axis
        direction = {0, 0, 0};
        *components[random.Below(3)] = random.Below(2) ? 1 : -1;
        break;
    default:
        break;
    }
    return 1 / Length(direction) * direction;
}

// Compares with the plain version; false where that one's decision is too close to call in single precision.
bool AgreesWithThePlainVersion(const VolumeGeometry& geometry, const Ray& ray, double tolerance)
{
    const tests::PlainClip plain = tests::ClipPlainly(geometry, ray.patientOrigin, ray.indexOrigin,
                                                      ray.patientDirection, ray.indexDirection, geometry.visibleBox);
    if (plain.margin < tolerance)
        return false;
    const std::optional<ClippedRay> clip = Clip(geometry, ray);
    EXPECT_EQ(clip.has_value(), plain.hits);
    if (clip && plain.hits)
        ExpectClip(clip, plain.entry, plain.entryDistance, plain.exit, plain.exitDistance, tolerance);
    return true;
}
} // namespace

TEST(ClipRay, AgreesWithAPlainVersionOnRandomRays)
{
    tests::Random random(20);
    int compared = 0, hits = 0;
    const int rays = 40000;
    for (int n = 0; n < rays && !HasFailure(); ++n)
    {
        const VolumeGeometry geometry = Prepare(tests::RandomGrid(random, 120));
        const Vec3f low = geometry.boundingBox.min, high = geometry.boundingBox.max;
        // From a place in or around the volume to one in it, so that a good part hits.
        const Vec3d aim = {random.Real(low.x, high.x), random.Real(low.y, high.y), random.Real(low.z, high.z)};
        const Vec3d direction = RandomDirection(random);
        const Ray ray = RayOf(geometry, aim - random.Real(-20, 400) * direction, direction);
        // Single precision: places of up to 800 mm are known to 3e-5 mm, distances of 1500 voxels to 1e-4.
        compared += AgreesWithThePlainVersion(geometry, ray, 0.01);
        hits += Clip(geometry, ray).has_value();
    }
    EXPECT_GT(compared, rays * 97 / 100);
    EXPECT_GT(hits, rays / 4);
}

TEST(ClipRay, AgreesWithAPlainVersionWhenItsArgumentsDescribeDifferentRays)
{
    // The label planes hand their vectors over in an order of their own.
    tests::Random random(21);
    int compared = 0, hits = 0;
    const int rays = 40000;
    for (int n = 0; n < rays && !HasFailure(); ++n)
    {
        const VolumeGeometry geometry = Prepare(tests::RandomGrid(random, 120));
        const Vec3f low = geometry.boundingBox.min, high = geometry.boundingBox.max;
        const Vec3d aim = {random.Real(low.x, high.x), random.Real(low.y, high.y), random.Real(low.z, high.z)};
        const Vec3d indexAim = {random.Real(0, geometry.upperBound.x), random.Real(0, geometry.upperBound.y),
                                random.Real(0, geometry.upperBound.z)};
        const Vec3d direction = random.Real(0.2, 3) * RandomDirection(random);
        const Vec3d indexDirection = random.Real(0.2, 3) * RandomDirection(random);
        const Ray ray = {ToFloat(aim - random.Real(-20, 200) * direction),
                         ToFloat(indexAim - random.Real(-20, 200) * indexDirection), ToFloat(direction),
                         ToFloat(indexDirection)};
        compared += AgreesWithThePlainVersion(geometry, ray, 0.01);
        hits += Clip(geometry, ray).has_value();
    }
    EXPECT_GT(compared, rays * 97 / 100);
    EXPECT_GT(hits, rays / 20);
}

TEST(ClipRay, GivesSamplesThatHaveAllTheirNeighbours)
{
    tests::Random random(22);
    int hits = 0;
    for (int n = 0; n < 20000; ++n)
    {
        const KsVolumeData grid = tests::RandomGrid(random, 60);
        const VolumeGeometry geometry = Prepare(grid);
        const Vec3f low = geometry.boundingBox.min, high = geometry.boundingBox.max;
        const Vec3d aim = {random.Real(low.x, high.x), random.Real(low.y, high.y), random.Real(low.z, high.z)};
        const Vec3d direction = RandomDirection(random);
        const std::optional<ClippedRay> clip =
            Clip(geometry, RayOf(geometry, aim - random.Real(-20, 200) * direction, direction));
        if (!clip)
            continue;
        ++hits;
        const double sizes[3] = {double(grid.sizeX), double(grid.sizeY), double(grid.sizeZ)};
        for (const Vec3f point : {clip->entry, clip->exit})
        {
            const float place[3] = {point.x, point.y, point.z};
            for (int axis = 0; axis < 3; ++axis)
            {
                ASSERT_GT(place[axis], 1.005);
                ASSERT_LT(place[axis], sizes[axis] - 2.005);
            }
        }
    }
    EXPECT_GT(hits, 5000);
}
} // namespace corvane::core
