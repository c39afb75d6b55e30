#ifndef CORVANE_TESTS_ENGINE3D_LIFECYCLE_SCENE_H
#define CORVANE_TESTS_ENGINE3D_LIFECYCLE_SCENE_H

#include "corvane/Engine3D.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cstring>

// Something to look at through an engine.
namespace corvane::tests
{
using Pixels = std::vector<uint32_t>;

constexpr int kWidth = 12, kHeight = 20;
constexpr uint32_t kGarbage = 0x5A5A5A5A;

// A block of bone off the middle, in air. Anything that moves or hides it changes the picture.
inline TestVolume BoneVolume(int from = 6, int to = 13)
{
    TestVolume volume =
        MakeVolume(20, 18, 16,
                   [=](int i, int j, int k)
                   { return i >= from && i <= to && j >= 5 && j <= 11 && k >= 3 && k <= 9 ? 900 + 10 * i : -1000; });
    volume.data.spacing[2] = 1.5f;
    volume.data.origin[0] = -30.0f;
    return volume;
}

inline Pixels Picture(Engine3D& engine, int volumeIndex = 0, bool expected = true)
{
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    EXPECT_EQ(engine.ImagingVR(kWidth, kHeight, pixels.data(), false, nullptr, volumeIndex), expected);
    return pixels;
}

inline Pixels EndoscopyPicture(Engine3D& engine, float viewAngle = 90.0f)
{
    Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
    EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), viewAngle, false, nullptr));
    return pixels;
}

// A flat image across the whole picture, at some depth.
inline KsBlendImage BlendImageOf(Pixels& pixels, double y)
{
    KsBlendImage image = {};
    const int32_t corners[4][2] = {{0, 0}, {kHeight - 1, 0}, {kHeight - 1, kWidth - 1}, {0, kWidth - 1}};
    std::memcpy(image.corners, corners, sizeof corners);
    image.pixels = pixels.data();
    std::fill(std::begin(image.reserved), std::end(image.reserved), uint8_t(y));
    image.rowDirection[0] = 1;
    image.columnDirection[2] = -1;
    image.position[1] = y;
    return image;
}

template <class Record>
bool SameBytes(const Record& a, const Record& b)
{
    return std::memcmp(static_cast<const void*>(&a), static_cast<const void*>(&b), sizeof a) == 0;
}
} // namespace corvane::tests

#endif
