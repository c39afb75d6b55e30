#include "engine3d/palette_record.h"

#include "appearance_host.h"

#include <gtest/gtest.h>

#include <climits>

// Palette records and who owns their points.
namespace corvane::tests
{
using engine3d::CopyPalette;
using engine3d::PointCount;

namespace
{
void ExpectSamePoints(const KsPalette& palette, const std::vector<KsPalettePoint>& expected)
{
    ASSERT_EQ(palette.pointCount, int(expected.size()));
    for (size_t n = 0; n < expected.size(); ++n)
    {
        EXPECT_EQ(palette.points[n].value, expected[n].value) << n;
        EXPECT_EQ(palette.points[n].colour, expected[n].colour) << n;
        EXPECT_EQ(palette.points[n].opacity, expected[n].opacity) << n;
    }
}
} // namespace

TEST(PaletteCopies, OwnPointsOfTheirOwn)
{
    TestTransfer source({{30, 0xABCDEF, 0.5f}, {10, 0xFF123456, 2.0f}, {10, 3, -1.0f}});
    source.palette.visible = 0;
    source.palette.opacity = 0.25f;
    source.palette.shading[2] = 9;
    HostPalette copy;
    CopyPalette(copy, source.palette);
    EXPECT_EQ(copy.visible, 0);
    EXPECT_EQ(copy.opacity, 0.25f);
    EXPECT_EQ(copy.shading[0], 0.11f);
    EXPECT_EQ(copy.shading[1], 0.816f);
    EXPECT_EQ(copy.shading[2], 9.0f);
    EXPECT_EQ(copy.ownsPoints, 1);
    EXPECT_NE(copy.points, source.palette.points);
    ExpectSamePoints(copy, source.points);
    CopyPalette(copy, source.palette); // frees the first copy
    ExpectSamePoints(copy, source.points);
    CopyPalette(copy, copy);
    ExpectSamePoints(copy, source.points);
}

TEST(PaletteCopies, LeavePointsAloneThatTheTargetDoesNotOwn)
{
    TestTransfer host({{1, 2, 3}, {4, 5, 6}});
    const TestTransfer source({{7, 8, 9}, {10, 11, 12}});
    HostPalette target;
    target.points = host.points.data();
    target.pointCount = 2;
    CopyPalette(target, source.palette);
    ExpectSamePoints(target, source.points);
    ExpectSamePoints(host.palette, {{1, 2, 3}, {4, 5, 6}});
}

TEST(PaletteCopies, OfNoPointsHaveNone)
{
    const TestTransfer points({{1, 2, 3}, {4, 5, 6}});
    TestTransfer none = points, lessThanNone = points, null = points;
    none.palette.pointCount = 0;
    lessThanNone.palette.pointCount = INT_MIN;
    null.palette.points = nullptr;
    for (const TestTransfer* source : {&none, &lessThanNone, &null})
    {
        EXPECT_EQ(PointCount(source->palette), 0);
        HostPalette target;
        CopyPalette(target, points.palette);
        CopyPalette(target, source->palette);
        EXPECT_EQ(target.pointCount, 0);
        EXPECT_EQ(target.points, nullptr);
        EXPECT_EQ(target.ownsPoints, 0);
    }
}

TEST(EnginePalette, HasItsDefaultsBeforeAnyVolume)
{
    Engine3D engine;
    HostPalette palette;
    palette.visible = 0;
    palette.opacity = 7;
    palette.shading[0] = palette.shading[1] = palette.shading[2] = 7;
    EXPECT_TRUE(engine.GetPalette(palette));
    EXPECT_EQ(palette.visible, 1);
    EXPECT_EQ(palette.shading[0], 0.11f);
    EXPECT_EQ(palette.shading[1], 0.816f);
    EXPECT_EQ(palette.shading[2], 0.0f);
    EXPECT_EQ(palette.opacity, 1.0f);
    EXPECT_EQ(palette.pointCount, 0);
    EXPECT_EQ(palette.points, nullptr);
}

TEST(EnginePalette, IsGivenOutAsACopy)
{
    const TestTransfer transfer({{30, 0xABCDEF, 0.5f}, {10, 0x123456, 0.25f}});
    Engine3D engine;
    EXPECT_TRUE(engine.SetPalette(transfer.palette));
    HostPalette first, second;
    EXPECT_TRUE(engine.GetPalette(first));
    EXPECT_EQ(first.ownsPoints, 1);
    ExpectSamePoints(first, transfer.points);
    first.points[0].value = 99;
    EXPECT_TRUE(engine.GetPalette(second));
    ExpectSamePoints(second, transfer.points);
    EXPECT_NE(second.points, first.points);
    EXPECT_TRUE(engine.GetPalette(first)); // frees the points that the record owns
    ExpectSamePoints(first, transfer.points);
    EXPECT_TRUE(engine.SetPalette(second)); // a copy of a copy
    EXPECT_TRUE(engine.GetPalette(first));
    ExpectSamePoints(first, transfer.points);
}

TEST(EnginePalette, SurvivesTheEndOfTheHostsPoints)
{
    Engine3D engine;
    {
        const TestTransfer transfer({{30, 0xABCDEF, 0.5f}, {10, 0x123456, 0.25f}});
        EXPECT_TRUE(engine.SetPalette(transfer.palette));
    }
    HostPalette palette;
    EXPECT_TRUE(engine.GetPalette(palette));
    ExpectSamePoints(palette, {{30, 0xABCDEF, 0.5f}, {10, 0x123456, 0.25f}});
}
} // namespace corvane::tests
