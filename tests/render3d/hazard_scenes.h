#ifndef CORVANE_TESTS_RENDER3D_HAZARD_SCENES_H
#define CORVANE_TESTS_RENDER3D_HAZARD_SCENES_H

#include "corvane/Render3D.h"
#include "plain_ray_caster.h"
#include "scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Input that makes no sense, or next to none, or is larger than a number. Nothing is read or written outside what it
// belongs to, every picture ends, and what cannot be seen is background.
namespace corvane::tests::hazards
{
constexpr float kNan = NAN, kInfinity = INFINITY;
constexpr PnImageParam kFront = {12, 12, 1.5, 1.5, {1, 0, 0}, {0, 1, 0}, {0, 0, -10}};
constexpr KsViewPoint kInside = {{8, 8, 8}, {0, 1, 0}, {0, 0, 1}};

// Everything is visible, and a sample is never without colour.
inline Scene SolidScene(int sizeX, int sizeY, int sizeZ, float opacity = 0.3f)
{
    Scene scene;
    scene.volume = MakeVolume(sizeX, sizeY, sizeZ, [](int i, int j, int k) { return 100 + 7 * i + 3 * j + k; });
    scene.palette.Add(
        0, -32768, 32767, [=](int) { return opacity; },
        [](int) {
            return Colour{200, 150, 100};
        },
        {0.5f, 0.3f, 0.1f});
    return scene;
}

inline TestImage Drawn(Render3D& render, const PnImageParam& param = kFront, int index = 0)
{
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVR(&image.image, index));
    return image;
}

inline TestImage Drawn(const Scene& scene, const PnImageParam& param = kFront)
{
    Render3D render;
    EXPECT_TRUE(render.InitData(scene.volume.data, scene.labels.mark, scene.palette.palette));
    return Drawn(render, param);
}

inline TestImage DrawnPlainly(const Scene& scene, const PnImageParam& param = kFront)
{
    TestImage image(param);
    PlainRayCaster(scene.volume.data, scene.labels.mark, scene.palette.palette).DrawVolume(image.image);
    return image;
}

inline TestImage Perspective(Render3D& render, const KsViewPoint& view = kInside, uint32_t rows = 6,
                             uint32_t columns = 7)
{
    PnImageParam param = {};
    param.rows = rows;
    param.columns = columns;
    TestImage image(param);
    EXPECT_TRUE(render.ImagingVE(view, 60, &image.image));
    return image;
}

inline bool ShowsNothing(const TestImage& image)
{
    return std::all_of(image.pixels.begin(), image.pixels.end(),
                       [](uint32_t pixel) { return pixel == 0 || pixel == kUntouched; });
}

inline bool ShowsSomething(const TestImage& image) { return !ShowsNothing(image); }

// Neither picture of a volume shows anything; main or attached.
inline void ExpectNothing(const KsVolumeData& volume, const Scene& scene)
{
    Render3D render;
    ASSERT_TRUE(render.InitData(volume, {}, scene.palette.palette));
    EXPECT_TRUE(ShowsNothing(Drawn(render)));
    EXPECT_TRUE(ShowsNothing(Perspective(render)));
    EXPECT_EQ(render.AttachVolumeData(volume), 1);
    EXPECT_TRUE(ShowsNothing(Drawn(render, kFront, 1)));
}
} // namespace corvane::tests::hazards

#endif
