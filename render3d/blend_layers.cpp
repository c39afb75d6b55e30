#include "blend_layers.h"

#include <algorithm>
#include <cmath>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
constexpr float kAlongPlane = 0.000001f;

// Which side of the edge from a to b a pixel lies on: the sign of the cross product of the edge and the way from a to
// the pixel. Corners may be any 32-bit numbers, whose products do not fit 64 bits.
int SideOf(const int32_t (&a)[2], const int32_t (&b)[2], int64_t column, int64_t row)
{
    __extension__ typedef __int128 Wide;
    const Wide cross = Wide(int64_t(b[0]) - a[0]) * (row - a[1]) - Wide(int64_t(b[1]) - a[1]) * (column - a[0]);
    return cross > 0 ? 1 : cross < 0 ? -1 : 0;
}

// Inside or on the outline, whichever way round the corners run.
bool TriangleHolds(const KsBlendImage& image, int second, int third, int64_t column, int64_t row)
{
    const int sides[3] = {SideOf(image.corners[0], image.corners[second], column, row),
                          SideOf(image.corners[second], image.corners[third], column, row),
                          SideOf(image.corners[third], image.corners[0], column, row)};
    return std::all_of(sides, sides + 3, [](int side) { return side >= 0; }) ||
           std::all_of(sides, sides + 3, [](int side) { return side <= 0; });
}

bool Covers(const KsBlendImage& image, int64_t column, int64_t row)
{
    return image.pixels && (TriangleHolds(image, 1, 2, column, row) || TriangleHolds(image, 2, 3, column, row));
}

Vec3f NormalOf(const KsBlendImage& image)
{
    const Vec3d normal = Cross(VecOf(image.rowDirection), VecOf(image.columnDirection));
    const double length = Length(normal) + 0.000001;
    return UnitOrZero(ToFloat({normal.x / length, normal.y / length, normal.z / length}));
}
} // namespace

BlendImages TakeBlendImages(const KsBlendImage* images, int count)
{
    BlendImages taken;
    if (images && count > 0)
    {
        taken.count = std::min(count, kMostBlendLayers);
        std::copy(images, images + taken.count, taken.images);
        std::transform(images, images + taken.count, taken.normals, NormalOf);
    }
    return taken;
}

void WidenToBlendImages(const BlendImages& blends, PixelRectangle& rectangle)
{
    for (int image = 0; image < blends.count; ++image)
    {
        for (const auto& corner : blends.images[image].corners)
        {
            rectangle.x0 = std::min<int64_t>(rectangle.x0, corner[0]);
            rectangle.x1 = std::max<int64_t>(rectangle.x1, corner[0]);
            rectangle.y0 = std::min<int64_t>(rectangle.y0, corner[1]);
            rectangle.y1 = std::max<int64_t>(rectangle.y1, corner[1]);
        }
    }
}

int GatherLayers(const BlendImages& blends, const VolumeGeometry& geometry, Vec3f patientStart, Vec3f patientDirection,
                 int64_t column, int64_t row, size_t index, BlendLayer* layers)
{
    int count = 0;
    for (int number = 0; number < blends.count; ++number)
    {
        const KsBlendImage& image = blends.images[number];
        const Vec3f normal = blends.normals[number];
        const float along = Dot(normal, patientDirection);
        if (!Covers(image, column, row) || !(std::abs(along) >= kAlongPlane))
            continue;
        const float crossing = (Dot(normal, ToFloat(VecOf(image.position))) - Dot(normal, patientStart)) / along;
        const float depth = Length(PatientToIndexStep(geometry, crossing * patientDirection));
        if (!(crossing >= 0.0f) || !std::isfinite(depth))
            continue;
        int place = count++;
        for (; place > 0 && layers[place - 1].depth > depth; --place)
            layers[place] = layers[place - 1];
        const uint32_t pixel = image.pixels[index];
        layers[place] = {depth, 1.0f, uint8_t(pixel >> 8), uint8_t(pixel >> 16), uint8_t(pixel >> 24)};
    }
    return count;
}
} // namespace corvane::render3d
