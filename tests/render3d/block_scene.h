#ifndef CORVANE_TESTS_RENDER3D_BLOCK_SCENE_H
#define CORVANE_TESTS_RENDER3D_BLOCK_SCENE_H

#include "corvane/Render3D.h"
#include "scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

// One thing to look at, for tests of what the renderer keeps between pictures.
namespace corvane::tests::block
{
constexpr PnImageParam kFront = {20, 20, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
constexpr KsViewPoint kInside = {{9, 2, 9}, {0, 1, 0}, {0, 0, 1}};

// A red block in the middle.
inline Scene BlockScene()
{
    Scene scene;
    scene.volume = MakeVolume(20, 20, 20,
                              [](int i, int j, int k) {
                                  return std::min({i, j, k}) >= 6 && std::max({i, j, k}) <= 13 ? 1000 : 0;
                              });
    scene.palette.AddOpaqueFrom(0, 500, {200, 0, 0});
    return scene;
}

inline TestImage Drawn(Render3D& render, int index = 0)
{
    TestImage image(kFront);
    EXPECT_TRUE(render.ImagingVR(&image.image, index));
    return image;
}

inline bool IsEmpty(Render3D& render)
{
    float low[3] = {71, 72, 73}, high[3] = {74, 75, 76};
    TestImage image(kFront);
    const bool refused = !render.GetBoundingBox(low, high) && !render.GetVisibleBox(low, high) &&
                         !render.SetVisibleBox(low, high) && !render.ImagingVR(&image.image, 0) &&
                         !render.ImagingVE(kInside, 60, &image.image);
    EXPECT_EQ(low[0] + low[1] + low[2] + high[0] + high[1] + high[2], 441);
    EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), kUntouched), 400);
    return refused;
}

inline std::array<float, 6> VisibleBox(Render3D& render)
{
    std::array<float, 6> box = {};
    EXPECT_TRUE(render.GetVisibleBox(box.data(), box.data() + 3));
    return box;
}
} // namespace corvane::tests::block

#endif
