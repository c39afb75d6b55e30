#include "clip_ray_cases.h"

#include <cmath>
#include <utility>

namespace corvane::core
{
TEST(ClipRay, KeepsTheLaterEntryAndTheEarlierExit)
{
    // In patient space from 1 to 18, in voxels from 1.01 to 17.99: the voxels' part is the shorter.
    ExpectClip(ClipStraight({-5, 9, 9}, {1, 0, 0}), {1.01, 9, 9}, 6.01, {17.99, 9, 9}, 22.99);
    ExpectClip(ClipStraight({9, 30, 9}, {0, -1, 0}), {9, 17.99, 9}, 12.01, {9, 1.01, 9}, 28.99);

    // A smaller box in patient space is the shorter one.
    VolumeGeometry geometry = Straight();
    geometry.visibleBox = {{4, 4, 4}, {10, 10, 10}};
    const Vec3f origin = {-5, 9, 9}, direction = {1, 0, 0};
    ExpectClip(Clip(geometry, {origin, origin, direction, direction}), {4, 9, 9}, 9, {10, 9, 9}, 15);

    // Entry by one, exit by the other.
    geometry.visibleBox = {{-4, -4, -4}, {10, 10, 10}};
    ExpectClip(Clip(geometry, {origin, origin, direction, direction}), {1.01, 9, 9}, 6.01, {10, 9, 9}, 15);
}

TEST(ClipRay, ClipsToTheBoxThatItIsGivenNotToThatOfTheGeometry)
{
    const VolumeGeometry geometry = Straight();
    const Vec3f origin = {-5, 9, 9}, direction = {1, 0, 0};
    ExpectClip(ClipRay(geometry, origin, origin, direction, direction, {{2, 2, 2}, {3, 10, 10}}), {2, 9, 9}, 7,
               {3, 9, 9}, 8);
    EXPECT_FALSE(ClipRay(geometry, origin, origin, direction, direction, {{2, 2, 2}, {3, 8, 10}}));
}

TEST(ClipRay, CrossesADiagonalByHand)
{
    // From (0, 2, 9) along (0.6, 0.8, 0): x reaches 1.01 after 1.68333, y reaches 17.99 after 19.9875.
    const double entry = 1.01 / 0.6, exit = (17.99 - 2) / 0.8;
    ExpectClip(ClipStraight({0, 2, 9}, {0.6f, 0.8f, 0}), {1.01, 2 + 0.8 * entry, 9}, entry, {0.6 * exit, 17.99, 9},
               exit);
}

TEST(ClipRay, MeasuresDistancesInVoxelsOnAnUnevenGrid)
{
    // Spacing 0.5 mm along x: the patient box runs from 0.55 - 0.1 to 8.95 + 0.1, so in voxels from 0.9 to 18.1.
    const VolumeGeometry geometry = Straight(20, 20, 20, 0.5f);
    ExpectClip(Clip(geometry, {{-2, 9, 9}, {-4, 9, 9}, {1, 0, 0}, {1, 0, 0}}), {1.01, 9, 9}, 5.01, {17.99, 9, 9},
               21.99);
    VolumeGeometry half = geometry;
    half.visibleBox.max.x = 4;
    ExpectClip(Clip(half, {{-2, 9, 9}, {-4, 9, 9}, {1, 0, 0}, {1, 0, 0}}), {1.01, 9, 9}, 5.01, {8, 9, 9}, 12);
}

TEST(ClipRay, EntersAtItsOwnStartWhereThatLiesInside)
{
    ExpectClip(ClipStraight({9, 10, 11}, {1, 0, 0}), {9, 10, 11}, 0, {17.99, 10, 11}, 8.99);
    ExpectClip(ClipStraight({9, 10, 11}, {0, 0, -1}), {9, 10, 11}, 0, {9, 10, 1.01}, 9.99);
    // In the patient box, not yet between the sampling bounds.
    ExpectClip(ClipStraight({1.005f, 9, 9}, {1, 0, 0}), {1.01, 9, 9}, 0.005, {17.99, 9, 9}, 16.985);
}

TEST(ClipRay, PassesParallelToAFaceInsideAndOnItButNotOutside)
{
    const VolumeGeometry geometry = Straight();
    const float low = geometry.lowerBound.y, high = geometry.upperBound.y;
    EXPECT_TRUE(ClipStraight({-5, low, 9}, {1, 0, 0}));
    EXPECT_TRUE(ClipStraight({-5, high, 9}, {1, 0, 0}));
    EXPECT_TRUE(ClipStraight({-5, 9, low}, {1, -0.0f, 0}));
    EXPECT_FALSE(ClipStraight({-5, std::nextafter(low, 0.0f), 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({-5, std::nextafter(high, 99.0f), 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({-5, 9, -3}, {1, 0, 0}));
    // On a face of the patient box, with that box inside the sampling bounds.
    VolumeGeometry smaller = geometry;
    smaller.visibleBox = {{4, 4, 4}, {10, 10, 10}};
    for (const auto& [y, hits] :
         {std::pair(4.0f, true), std::pair(10.0f, true), std::pair(3.999f, false), std::pair(10.001f, false)})
        EXPECT_EQ(Clip(smaller, {{-5, y, 9}, {-5, y, 9}, {1, 0, 0}, {1, 0, 0}}).has_value(), hits) << y;
}

TEST(ClipRay, LetsAComponentOfATenThousandthOrLessNotBoundTheExit)
{
    const float limit = 0.0001f;
    // A millimetre before the face of y, which is reached after 10 / component and so, by x, never.
    VolumeGeometry geometry = Straight(20000, 20, 20);
    for (const float component : {limit, 0.00005f, 1e-20f})
    {
        const Vec3f up = {1, component, 0}, down = {1, -component, 0};
        const Vec3f atTop = {2, 17.5f, 9}, atBottom = {2, 1.5f, 9};
        // Only the cap of 10000 is left: x ends at 19997.99.
        const std::optional<ClippedRay> rising = Clip(geometry, {atTop, atTop, up, up});
        ASSERT_TRUE(rising);
        EXPECT_NEAR(rising->exitDistance, 10000, 1e-2);
        const std::optional<ClippedRay> falling = Clip(geometry, {atBottom, atBottom, down, down});
        ASSERT_TRUE(falling);
        EXPECT_NEAR(falling->exitDistance, 10000, 1e-2);
    }
    const float beyond = std::nextafter(limit, 1.0f);
    const Vec3f up = {1, beyond, 0}, down = {1, -beyond, 0};
    const Vec3f atTop = {2, 17.5f, 9}, atBottom = {2, 1.5f, 9};
    const std::optional<ClippedRay> rising = Clip(geometry, {atTop, atTop, up, up});
    ASSERT_TRUE(rising);
    EXPECT_NEAR(rising->exitDistance, 4900, 0.1); // (17.99 - 17.5) / 0.0001
    const std::optional<ClippedRay> falling = Clip(geometry, {atBottom, atBottom, down, down});
    ASSERT_TRUE(falling);
    EXPECT_NEAR(falling->exitDistance, 4900, 0.1);
}

TEST(ClipRay, LetsTheSmallestComponentBoundTheEntry)
{
    // Only a component of exactly 0 is parallel: 0.001 mm below the face, climbing 0.00005 per mm, it enters after 20.
    VolumeGeometry geometry = Straight(20000, 20, 20);
    const Vec3f start = {2, 1.009f, 9}, climbing = {1, 0.00005f, 0}, level = {1, 0, 0};
    const std::optional<ClippedRay> clip = Clip(geometry, {start, start, climbing, climbing});
    ASSERT_TRUE(clip);
    EXPECT_NEAR(clip->entryDistance, 20, 0.05); // 1.009 is known to 1e-7
    EXPECT_FALSE(Clip(geometry, {start, start, level, level}));
}

TEST(ClipRay, MissesWhatItPassesByOrHasBehindIt)
{
    EXPECT_FALSE(ClipStraight({-5, 30, 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({-5, -5, 9}, {0.6f, -0.8f, 0}));
    EXPECT_FALSE(ClipStraight({-5, 9, 9}, {-1, 0, 0}));
    EXPECT_FALSE(ClipStraight({30, 9, 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({30, 30, 30}, {0.6f, 0, 0.8f}));
    // Crosses the slabs of x and y one after the other.
    EXPECT_FALSE(ClipStraight({-20, 9, 9}, {0.6f, 0.8f, 0}));
}

TEST(ClipRay, FailsWhenEitherOfTheTwoBoxesIsMissed)
{
    const VolumeGeometry geometry = Straight();
    const Vec3f through = {-5, 9, 9}, beside = {-5, 30, 9}, behind = {30, 9, 9}, direction = {1, 0, 0};
    EXPECT_TRUE(Clip(geometry, {through, through, direction, direction}));
    EXPECT_FALSE(Clip(geometry, {beside, through, direction, direction}));
    EXPECT_FALSE(Clip(geometry, {through, beside, direction, direction}));
    EXPECT_FALSE(Clip(geometry, {behind, through, direction, direction}));
    EXPECT_FALSE(Clip(geometry, {through, behind, direction, direction}));
}

TEST(ClipRay, LooksNoFurtherThanTenThousand)
{
    // 200 voxels of 100 mm: after 10000 mm, the patient space's cap, 100 voxels.
    const VolumeGeometry coarse = Straight(200, 20, 20, 100);
    ExpectClip(Clip(coarse, {{200, 9, 9}, {2, 9, 9}, {1, 0, 0}, {1, 0, 0}}), {2, 9, 9}, 0, {102, 9, 9}, 100, 1e-3);
    // 30000 voxels of half a millimetre: after 10000 voxels, the index space's cap.
    const VolumeGeometry fine = Straight(30000, 20, 20, 0.5f);
    ExpectClip(Clip(fine, {{1, 9, 9}, {2, 9, 9}, {1, 0, 0}, {1, 0, 0}}), {2, 9, 9}, 0, {10002, 9, 9}, 10000, 1e-2);
    // A start so far away that the entry lies behind the cap.
    EXPECT_TRUE(ClipStraight({-9990, 9, 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({-10010, 9, 9}, {1, 0, 0}));
    EXPECT_FALSE(ClipStraight({-1e30f, 9, 9}, {1, 0, 0}));
}

TEST(ClipRay, MeetsNoVolumeOfFewerThanFourVoxelsAlongAnAxis)
{
    for (int size = 1; size <= 5; ++size)
    {
        const VolumeGeometry volumes[3] = {Straight(size, 20, 20), Straight(20, size, 20), Straight(20, 20, size)};
        for (int thin = 0; thin < 3; ++thin)
        {
            // The patient box is set wide open, so that only the sampling bounds can refuse.
            VolumeGeometry geometry = volumes[thin];
            geometry.visibleBox = {{-100, -100, -100}, {100, 100, 100}};
            float middle[3] = {9, 9, 9};
            middle[thin] = float(size - 1) / 2;
            const Vec3f start = VecOf(middle);
            for (const Vec3f direction : {Vec3f{1, 0, 0}, Vec3f{0, 1, 0}, Vec3f{0, 0, 1}, Vec3f{0.6f, 0.8f, 0},
                                          Vec3f{-0.48f, -0.64f, 0.6f}, Vec3f{0, 0, -1}, Vec3f{0, 0, 0}})
            {
                EXPECT_EQ(Clip(geometry, {start, start, direction, direction}).has_value(), size >= 4)
                    << size << " voxels along axis " << thin;
                const Vec3f before = start - 50.0f * direction;
                EXPECT_EQ(Clip(geometry, {before, before, direction, direction}).has_value(), size >= 4)
                    << size << " voxels along axis " << thin;
            }
        }
    }
}

TEST(ClipRay, MeetsNoBoxWithItsFacesExchanged)
{
    VolumeGeometry geometry = Straight();
    geometry.visibleBox = {{10, 4, 4}, {9, 10, 10}};
    for (const float x : {-5.0f, 9.5f})
        for (const Vec3f direction : {Vec3f{1, 0, 0}, Vec3f{0, 1, 0}, Vec3f{0, 0, 0}})
            EXPECT_FALSE(Clip(geometry, {{x, 9, 9}, {x, 9, 9}, direction, direction}));
}

TEST(ClipRay, StaysAtItsStartWithoutADirection)
{
    ExpectClip(ClipStraight({9, 10, 11}, {0, 0, 0}), {9, 10, 11}, 0, {9, 10, 11}, 0, 0);
    EXPECT_FALSE(ClipStraight({-5, 9, 9}, {0, 0, 0}));
    EXPECT_FALSE(ClipStraight({9, 9, 18.5f}, {0, 0, 0}));
}
} // namespace corvane::core
