#include "sequence_calls.h"

#include "sequence_steps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::tests::calls
{
float NumberOf(Random& random, double low, double high)
{
    constexpr float kHostile[] = {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e-38f, 0.0f, -1.0f};
    return random.Below(30) == 0 ? kHostile[random.Below(8)] : float(random.Real(low, high));
}

int LabelOf(Random& random)
{
    constexpr int kLabels[] = {0, 0, 0, 0, 1, 17, 63, 64, -1, std::numeric_limits<int>::max()};
    return kLabels[random.Below(10)];
}

void Turn(Engine3D& engine, Random& random)
{
    const int which = random.Below(3);
    const float angle = NumberOf(random, -3, 3);
    which == 0 ? engine.RotateScreen(angle) : which == 1 ? engine.RotateH(angle) : engine.RotateV(angle);
}

void SetPalette(Engine3D& engine, Random& random)
{
    std::vector<KsPalettePoint> points(size_t(random.Below(9)));
    const bool wide = random.Below(4) == 0;
    for (KsPalettePoint& point : points)
    {
        const int value = wide ? random.Between(INT16_MIN, INT16_MAX) : random.Between(-400, 1400);
        point = {int16_t(value), uint32_t(random.Below(1 << 24)), NumberOf(random, 0, 0.4)};
    }
    KsPalette palette;
    palette.points = points.empty() ? nullptr : points.data();
    palette.pointCount = points.empty() ? random.Between(-1, 3) : int(points.size());
    palette.visible = random.Below(6) != 0;
    palette.opacity = NumberOf(random, 0, 1);
    engine.SetPalette(palette);
}

void EditLabels(Engine3D& engine, Random& random)
{
    constexpr uint8_t kBytes[] = {0, 0, 1, 17, 63, 64, 65, 128, 255};
    const KsVolumeMark& mark = *engine.GetMarkData();
    const uint8_t byte = kBytes[random.Below(9)];
    const uint32_t seed = uint32_t(random.Below(1 << 20));
    for (uint32_t k = 0; mark.slices && k < mark.sizeZ; ++k)
        for (uint32_t n = 0; n < mark.sizeX * mark.sizeY; ++n)
            if ((n * 7919 + k * 104729 + seed) % 97 < 20)
                mark.slices[k][n] = byte;
    engine.UpdateMarkData();
}

void Cut(Engine3D& engine, Random& random)
{
    KsVolumeMark sizes = *engine.GetMarkData();
    if (!sizes.slices || random.Below(8) == 0)
        sizes = {nullptr, 4, 3, 2};
    TestLabels selection = MakeLabels(int(sizes.sizeX), int(sizes.sizeY), int(sizes.sizeZ),
                                      [&](int i, int j, int k) { return (i + j + k) % 5 == 0; });
    std::vector<uint8_t> pixels(size_t(8) * 6);
    for (uint8_t& pixel : pixels)
        pixel = uint8_t(random.Below(2));
    const core::Vec3d row = random.UnitVector(), column = random.UnitVector(), place = random.Vector(-40, 20);
    KsImageMark region = {pixels.data(), {8, 6, NumberOf(random, 1, 9), NumberOf(random, 1, 9), {}, {}, {}}};
    core::Store(row, region.param.rowDirection);
    core::Store(column, region.param.columnDirection);
    core::Store(place, region.param.position);
    engine.CutFill(region, selection.mark, uint8_t(random.Below(256)));
    engine.CutAppend(selection.mark);
    engine.CutSubtract(selection.mark);
    engine.CutClear();
}

void Draw(Engine3D& engine, Random& random, PictureKind kind)
{
    int width = random.Between(0, kLongestSide), height = random.Between(0, kLongestSide);
    if (random.Below(20) == 0)
        width = random.Below(2) ? -width : 70000, height = 70000; // more than can be counted, or less than nothing
    constexpr size_t kMost = size_t(kLongestSide) * kLongestSide;
    std::vector<uint32_t> pixels(kMost);
    std::vector<int16_t> values(kMost);
    PnImageRGB image;
    KsImageVAL projection;
    PnImageRGB* const record = random.Below(2) ? &image : nullptr;
    const int volumeIndex = random.Between(-1, 3);
    if (kind == PictureKind::VolumeRendering)
        engine.ImagingVR(width, height, pixels.data(), false, record, volumeIndex);
    else if (kind == PictureKind::Endoscopy)
        engine.ImagingVE(width, height, pixels.data(), NumberOf(random, -10, 200), false, record);
    else if (kind == PictureKind::Imaging)
        engine.Imaging(width, height, pixels.data(), true, record, volumeIndex);
    else if (volumeIndex < 1)
        engine.ImagingMIP(width, height, values.data(), false, record ? &projection : nullptr);
    else if (volumeIndex < 2)
        engine.ImagingAIP(width, height, values.data(), false, record ? &projection : nullptr);
    else
        engine.ImagingMinIP(width, height, values.data(), false, record ? &projection : nullptr);
}

void DrawSlab(Engine3D& engine, Random& random)
{
    PnImageParam plane = {uint32_t(random.Below(kLongestSide)),
                          uint32_t(random.Below(kLongestSide)),
                          NumberOf(random, 0.1, 2),
                          NumberOf(random, 0.1, 2),
                          {},
                          {},
                          {}};
    if (random.Below(20) == 0)
        plane.rows = plane.columns = 70000;
    KsSliceParam slice = {};
    slice.sideLength = random.Below(10) ? random.Real(-1, 12) : std::numeric_limits<double>::quiet_NaN();
    core::Store(random.UnitVector(), plane.rowDirection);
    core::Store(random.UnitVector(), plane.columnDirection);
    core::Store(random.Vector(-40, 20), plane.position);
    std::copy_n(plane.rowDirection, 3, slice.rowDirection);
    std::copy_n(plane.columnDirection, 3, slice.columnDirection);
    std::copy_n(plane.position, 3, slice.position);
    KsImageData image = {};
    KsImageData* const record = random.Below(20) ? &image : nullptr;
    const float thickness = NumberOf(random, 0, 20);
    engine.ImagingMIP(plane, thickness, record);
    engine.ImagingAIP(slice, thickness, record);
    random.Below(2) ? engine.ImagingMinIP(plane, thickness, record) : engine.ImagingMinIP(slice, thickness, record);
    if (image.ownsValues)
        delete[] image.values;
}
} // namespace corvane::tests::calls
