#include "clip_ray_cases.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace corvane::core
{
namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
} // namespace

TEST(ClipRay, LetsNoRayPassThatHoldsANumberWhichIsNotFinite)
{
    const VolumeGeometry geometry = Straight();
    const Vec3f inside = {9, 10, 11};
    for (const Vec3f direction : {Vec3f{0.48f, 0.6f, 0.64f}, Vec3f{-0.48f, -0.6f, -0.64f}, Vec3f{1, 0, 0},
                                  Vec3f{0, -1, 0}, Vec3f{0, 0, 1}, Vec3f{0, 0, 0}})
    {
        for (const float bad : {kNaN, kInfinity, -kInfinity})
        {
            for (int component = 0; component < 12; ++component)
            {
                Ray ray = {inside, inside, direction, direction};
                ASSERT_TRUE(Clip(geometry, ray));
                float numbers[12];
                static_assert(sizeof(numbers) == sizeof(ray));
                std::memcpy(numbers, &ray, sizeof(ray));
                numbers[component] = bad;
                std::memcpy(&ray, numbers, sizeof(ray));
                EXPECT_FALSE(Clip(geometry, ray))
                    << bad << " as number " << component << " of origins and directions, direction " << direction.x
                    << ", " << direction.y << ", " << direction.z;
            }
        }
    }
}

TEST(ClipRay, LetsNoRayPassABoxOrAGeometryThatHoldsANaN)
{
    // Of the 70 numbers: origin, spacing, row and column direction, normal, slice direction in the frame, box, bounds.
    std::vector<size_t> used;
    for (size_t n = 0; n < 70; ++n)
        if (n < 12 || (n >= 15 && n < 21) || n >= 58)
            used.push_back(n);
    const Vec3f inside = {9, 10, 11};
    for (const Vec3f direction : {Vec3f{0.48f, 0.6f, 0.64f}, Vec3f{-0.48f, -0.6f, -0.64f}, Vec3f{1, 0, 0}})
    {
        for (const size_t n : used)
        {
            std::array<float, 70> numbers;
            VolumeGeometry geometry = Straight();
            std::memcpy(numbers.data(), &geometry, sizeof(geometry));
            numbers[n] = kNaN;
            std::memcpy(&geometry, numbers.data(), sizeof(geometry));
            EXPECT_FALSE(Clip(geometry, {inside, inside, direction, direction})) << "number " << n;
        }
    }
}

TEST(ClipRay, GivesOnlyFiniteNumbersForInfiniteBoxesAndGeometries)
{
    // A face at infinity bounds nothing; what comes back must still be a part of the ray that can be sampled.
    const Vec3f inside = {9, 10, 11}, outside = {-5, 10, 11};
    for (const Vec3f start : {inside, outside})
    {
        for (const Vec3f direction : {Vec3f{0.8f, 0, 0.6f}, Vec3f{0.8f, 0.36f, -0.48f}, Vec3f{1, 0, 0}})
        {
            for (const float bad : {kInfinity, -kInfinity})
            {
                for (size_t n = 0; n < 70; ++n)
                {
                    std::array<float, 70> numbers;
                    VolumeGeometry geometry = Straight();
                    std::memcpy(numbers.data(), &geometry, sizeof(geometry));
                    numbers[n] = bad;
                    std::memcpy(&geometry, numbers.data(), sizeof(geometry));
                    const std::optional<ClippedRay> clip = Clip(geometry, {start, start, direction, direction});
                    if (!clip)
                        continue;
                    for (const float number : {clip->entry.x, clip->entry.y, clip->entry.z, clip->exit.x, clip->exit.y,
                                               clip->exit.z, clip->entryDistance, clip->exitDistance})
                        EXPECT_TRUE(std::isfinite(number)) << bad << " as number " << n << " of the geometry";
                    EXPECT_LE(clip->entryDistance, clip->exitDistance);
                }
            }
        }
    }
}

TEST(ClipRay, MeetsNothingWhereSlicesLieInTheirOwnPlane)
{
    const VolumeGeometry flat =
        Prepare({nullptr, 20, 20, 20, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.6f, 0.8f, 0}});
    for (const Vec3d direction : {Vec3d{1, 0, 0}, Vec3d{0, 0, 1}, Vec3d{0.48, 0.6, 0.64}})
        for (const double z : {-5.0, 0.0, 5.0})
            EXPECT_FALSE(Clip(flat, RayOf(flat, {9, 9, z}, direction)));
}
} // namespace corvane::core
