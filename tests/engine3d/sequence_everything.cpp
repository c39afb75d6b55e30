#include "sequence_steps.h"

#include <cmath>

namespace corvane::tests
{
namespace
{
template <class Value>
void Add(std::vector<double>& all, const Value* values, size_t count)
{
    for (size_t n = 0; n < count; ++n) // what is no number equals itself here
        all.push_back(std::isnan(double(values[n])) ? -1e300 : double(values[n]));
}
} // namespace

std::vector<double> Everything(Engine3D& engine)
{
    std::vector<double> all;
    for (const int index : {0, 1})
    {
        std::vector<uint32_t> pixels(size_t(kLongestSide) * kLongestSide, 1);
        PnImageRGB image = {};
        all.push_back(engine.ImagingVR(kLongestSide, kLongestSide, pixels.data(), false, &image, index));
        Add(all, pixels.data(), pixels.size());
        Add(all, &image.param.rowSpacing, sizeof(PnImageParam) / sizeof(double) - 1);
    }
    std::vector<uint32_t> pixels(size_t(kLongestSide) * kLongestSide, 1);
    engine.ImagingVE(kLongestSide, kLongestSide, pixels.data(), 100, false, nullptr);
    Add(all, pixels.data(), pixels.size());
    std::vector<int16_t> values(pixels.size());
    all.push_back(engine.ImagingMIP(kLongestSide, kLongestSide, values.data(), false, nullptr));
    Add(all, values.data(), values.size());

    double origin[3];
    engine.GetOrigin(origin);
    Add(all, origin, 3);
    float box[6] = {};
    engine.GetBoundingBox(box, box + 3);
    Add(all, box, 6);
    engine.GetVisibleBox(box, box + 3);
    Add(all, box, 6);
    all.push_back(engine.GetRenderType());
    const KsVolumeMark& mark = *engine.GetMarkData();
    for (uint32_t k = 0; mark.slices && k < mark.sizeZ; ++k)
        Add(all, mark.slices[k], size_t(mark.sizeX) * mark.sizeY);
    KsPalette palette;
    engine.GetPalette(palette);
    all.push_back(palette.visible);
    Add(all, palette.shading, 3);
    Add(all, &palette.opacity, 1);
    for (int n = 0; n < palette.pointCount; ++n)
    {
        const KsPalettePoint& point = palette.points[n];
        all.insert(all.end(), {double(point.value), double(point.colour)});
        Add(all, &point.opacity, 1);
    }
    if (palette.ownsPoints)
        delete[] palette.points;
    return all;
}
} // namespace corvane::tests
