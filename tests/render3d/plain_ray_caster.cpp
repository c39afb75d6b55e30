#include "plain_ray_caster.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace corvane::core;

namespace corvane::tests
{
namespace
{
int CellsAlong(int voxels, int edge) { return (voxels + edge - 1) / edge; }

float Lerp(float a, float b, float t) { return a + (b - a) * t; }

// Interpolates what at(x, y, z) gives at the eight voxels around a position, along z, then x, then y.
template <class At>
float Interpolate(Vec3f position, const At& at)
{
    const int x = int(position.x), y = int(position.y), z = int(position.z);
    const float u = position.x - float(x), v = position.y - float(y), w = position.z - float(z);
    const float a = Lerp(at(x, y, z), at(x, y, z + 1), w), b = Lerp(at(x + 1, y, z), at(x + 1, y, z + 1), w);
    const float c = Lerp(at(x, y + 1, z), at(x, y + 1, z + 1), w);
    const float d = Lerp(at(x + 1, y + 1, z), at(x + 1, y + 1, z + 1), w);
    return Lerp(Lerp(a, b, u), Lerp(c, d, u), v);
}

std::array<float, 3> NumbersOf(Vec3f a) { return {a.x, a.y, a.z}; }

// Inside or on an edge, whichever way round the corners run. Corners may be any numbers of 32 bits.
bool TriangleHolds(const int32_t* a, const int32_t* b, const int32_t* c, int64_t column, int64_t row)
{
    __extension__ typedef __int128 Wide;
    const auto edge = [&](const int32_t* from, const int32_t* to)
    {
        const Wide alongX = Wide(to[0]) - from[0], alongY = Wide(to[1]) - from[1];
        return alongX * (Wide(row) - from[1]) - alongY * (Wide(column) - from[0]);
    };
    const Wide ab = edge(a, b), bc = edge(b, c), ca = edge(c, a);
    return (ab >= 0 && bc >= 0 && ca >= 0) || (ab <= 0 && bc <= 0 && ca <= 0);
}

uint32_t ByteOf(float channel) { return uint32_t(std::clamp(channel, 0.0f, 255.0f)); }
} // namespace

PlainRayCaster::PlainRayCaster(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette)
    : volume_(volume), mark_(mark), palette_(palette)
{
    PrepareVolumeGeometry(volume, geometry);
    int low[3] = {volume.sizeX, volume.sizeY, volume.sizeZ}, high[3] = {0, 0, 0};
    for (int level = 0, edge = 2; level < 4; ++level, edge *= 2)
        shows_[level].assign(
            size_t(CellsAlong(volume.sizeX, edge) * CellsAlong(volume.sizeY, edge) * CellsAlong(volume.sizeZ, edge)),
            0);
    for (int z = 0; z < volume.sizeZ; z += 2)
        for (int y = 0; y < volume.sizeY; y += 2)
            for (int x = 0; x < volume.sizeX; x += 2)
            {
                if (!LeafShows(x, y, z))
                    continue;
                for (int level = 0, edge = 2; level < 4; ++level, edge *= 2)
                    shows_[level][size_t((z / edge * CellsAlong(volume.sizeY, edge) + y / edge) *
                                             CellsAlong(volume.sizeX, edge) +
                                         x / edge)] = 1;
                const int corner[3] = {x, y, z};
                for (int axis = 0; axis < 3; ++axis)
                {
                    low[axis] = std::min(low[axis], corner[axis]);
                    high[axis] = std::max(high[axis], corner[axis] + 2);
                }
            }
    for (int corner = 0; corner < 8; ++corner)
    {
        const Vec3f index = {float(corner & 1 ? high[0] : low[0]), float(corner & 2 ? high[1] : low[1]),
                             float(corner & 4 ? high[2] : low[2])};
        visibleCorners_[corner] =
            IndexToPatient(geometry.origin, geometry.directions, geometry.spacing, index).value_or(Vec3f{});
    }
}

// A leaf cell shows something when one voxel of it, or next to it on its upper side, has a label with a table, and one
// value of its range has a summed opacity that counts.
bool PlainRayCaster::LeafShows(int x0, int y0, int z0) const
{
    int least = 32767, most = -32768;
    bool labelled = false;
    for (int z = z0; z < std::min(z0 + 3, volume_.sizeZ); ++z)
        for (int y = y0; y < std::min(y0 + 3, volume_.sizeY); ++y)
            for (int x = x0; x < std::min(x0 + 3, volume_.sizeX); ++x)
            {
                least = std::min(least, int(VoxelAt(x, y, z)));
                most = std::max(most, int(VoxelAt(x, y, z)));
                labelled = labelled || EntryOf(LabelAt(x, y, z));
            }
    for (int value = least; labelled && value <= most; ++value)
    {
        const int64_t index = int64_t(value) - palette_.sumStart;
        if (palette_.opacitySums && index >= 0 && index < palette_.sumLength && palette_.opacitySums[index] > 0.01f)
            return true;
    }
    return false;
}

int PlainRayCaster::LabelAt(int x, int y, int z) const
{
    const bool held =
        uint32_t(x) < mark_.sizeX && uint32_t(y) < mark_.sizeY && uint32_t(z) < mark_.sizeZ && mark_.slices;
    return held && mark_.slices[z] ? mark_.slices[z][size_t(y) * mark_.sizeX + size_t(x)] : 0;
}

const VolumePaletteEntry* PlainRayCaster::EntryOf(int label) const
{
    const VolumePaletteEntry* entry = label < 64 ? palette_.entries[label] : nullptr;
    return entry && entry->visible ? entry : nullptr;
}

float PlainRayCaster::VoxelAt(int x, int y, int z) const
{
    return volume_.slices[z][size_t(y) * size_t(volume_.sizeX) + size_t(x)];
}

// The edge of the largest cell around a position that has nothing to show; 0 when even the smallest has.
int PlainRayCaster::EmptyEdgeAround(Vec3f position) const
{
    const int x = int(position.x), y = int(position.y), z = int(position.z);
    for (int level = 3, edge = 16; level >= 0; --level, edge /= 2)
        if (!shows_[level][size_t(
                (z / edge * CellsAlong(volume_.sizeY, edge) + y / edge) * CellsAlong(volume_.sizeX, edge) + x / edge)])
            return edge;
    return 0;
}

PlainRayCaster::Ray PlainRayCaster::RayAlong(Vec3f patientStart, Vec3f patientDirection) const
{
    Ray ray;
    ray.patientStart = patientStart;
    ray.patientDirection = patientDirection;
    ray.start = PatientToIndex(geometry, patientStart);
    ray.direction = UnitOrZero(PatientToIndexStep(geometry, patientDirection));
    const Vec3f relative = geometry.relativeSpacing;
    ray.stepLength =
        0.33f / Length(Vec3f{ray.direction.x * relative.x, ray.direction.y * relative.y, ray.direction.z * relative.z});
    ray.step = ray.stepLength * ray.direction;
    return ray;
}

void PlainRayCaster::DrawVolume(const PnImageRGB& image, std::span<const KsBlendImage> blends) const
{
    const Vec3f rowDirection = ToFloat(VecOf(image.param.rowDirection));
    const Vec3f columnDirection = ToFloat(VecOf(image.param.columnDirection));
    const Vec3f position = ToFloat(VecOf(image.param.position));
    const float rowSpacing = float(image.param.rowSpacing), columnSpacing = float(image.param.columnSpacing);
    const int64_t columns = image.param.columns, rows = image.param.rows;

    float left = INFINITY, right = -INFINITY, top = INFINITY, bottom = -INFINITY;
    for (const Vec3f& corner : visibleCorners_)
    {
        const float column = Dot(corner - position, rowDirection) / columnSpacing;
        const float row = Dot(corner - position, columnDirection) / rowSpacing;
        left = std::min(left, column), right = std::max(right, column);
        top = std::min(top, row), bottom = std::max(bottom, row);
    }
    int64_t x0 = int64_t(std::floor(left + 0.5f * columnSpacing)),
            x1 = int64_t(std::floor(right + 0.5f * columnSpacing));
    int64_t y0 = int64_t(std::floor(top + 0.5f * rowSpacing)), y1 = int64_t(std::floor(bottom + 0.5f * rowSpacing));
    x0 = std::max<int64_t>(x0, 0), y0 = std::max<int64_t>(y0, 0);
    x1 = std::max(std::min(x1, columns - 1), x0), y1 = std::max(std::min(y1, rows - 1), y0);
    for (const KsBlendImage& blend : blends)
        for (const int32_t(&corner)[2] : blend.corners)
        {
            x0 = std::min<int64_t>(x0, corner[0]), x1 = std::max<int64_t>(x1, corner[0]);
            y0 = std::min<int64_t>(y0, corner[1]), y1 = std::max<int64_t>(y1, corner[1]);
        }

    const Vec3f direction = UnitOrZero(Cross(rowDirection, columnDirection));
    for (int64_t row = std::max<int64_t>(y0, 0); row <= std::min(y1, rows - 1); ++row)
        for (int64_t column = std::max<int64_t>(x0, 0); column <= std::min(x1, columns - 1); ++column)
        {
            const Vec3f start =
                position + float(column) * (columnSpacing * rowDirection) + float(row) * (rowSpacing * columnDirection);
            const Ray ray = RayAlong(start, direction);
            image.pixels[row * columns + column] = Cast(ray, LayersOf(image, blends, ray, column, row));
        }
}

void PlainRayCaster::DrawEndoscopy(Vec3f eye, const PnImageRGB& image) const
{
    const Vec3f columnStep = float(image.param.columnSpacing) * ToFloat(VecOf(image.param.rowDirection));
    const Vec3f rowStep = float(image.param.rowSpacing) * ToFloat(VecOf(image.param.columnDirection));
    const Vec3f position = ToFloat(VecOf(image.param.position));
    for (uint32_t row = 0; row < image.param.rows; ++row)
        for (uint32_t column = 0; column < image.param.columns; ++column)
        {
            const Vec3f pixel = position + float(column) * columnStep + float(row) * rowStep;
            image.pixels[size_t(row) * image.param.columns + column] = Cast(RayAlong(eye, UnitOrZero(pixel - eye)), {});
        }
}

std::vector<PlainRayCaster::Layer> PlainRayCaster::LayersOf(const PnImageRGB& image,
                                                            std::span<const KsBlendImage> blends, const Ray& ray,
                                                            int64_t column, int64_t row) const
{
    std::vector<Layer> layers;
    for (const KsBlendImage& blend : blends)
    {
        const auto& corners = blend.corners;
        if (!TriangleHolds(corners[0], corners[1], corners[2], column, row) &&
            !TriangleHolds(corners[0], corners[2], corners[3], column, row))
            continue;
        const Vec3d across = Cross(VecOf(blend.rowDirection), VecOf(blend.columnDirection));
        const double length = Length(across) + 0.000001;
        const Vec3f normal = UnitOrZero(ToFloat({across.x / length, across.y / length, across.z / length}));
        const float along = Dot(normal, ray.patientDirection);
        if (std::abs(along) < 0.000001f)
            continue;
        const float t = (Dot(normal, ToFloat(VecOf(blend.position))) - Dot(normal, ray.patientStart)) / along;
        if (t < 0.0f)
            continue;
        const uint32_t pixel = blend.pixels[row * int64_t(image.param.columns) + column];
        layers.push_back({Length(PatientToIndexStep(geometry, t * ray.patientDirection)), float(pixel >> 8 & 255),
                          float(pixel >> 16 & 255), float(pixel >> 24)});
    }
    std::stable_sort(layers.begin(), layers.end(), [](const Layer& a, const Layer& b) { return a.depth < b.depth; });
    return layers;
}

uint32_t PlainRayCaster::Cast(const Ray& ray, const std::vector<Layer>& layers) const
{
    const float opaque = 0.001f;
    Light colour;
    size_t nextLayer = 0;
    const auto addLayer = [&]
    {
        const Layer& layer = layers[nextLayer++];
        colour.red += layer.red * colour.transmittance;
        colour.green += layer.green * colour.transmittance;
        colour.blue += layer.blue * colour.transmittance;
        colour.transmittance = 0.0f;
    };

    const std::optional<ClippedRay> clipped =
        ClipRay(geometry, ray.patientStart, ray.start, ray.patientDirection, ray.direction, geometry.visibleBox);
    const bool goesNowhere = ray.direction.x == 0 && ray.direction.y == 0 && ray.direction.z == 0;
    if (clipped && goesNowhere)
    {
        Sample sample;
        if (Classify(clipped->entry, sample) && EmptyEdgeAround(clipped->entry) == 0)
            Shade(clipped->entry, ray.patientDirection, sample, colour);
    }
    else if (clipped)
    {
        const std::array<float, 3> start = NumbersOf(ray.start), direction = NumbersOf(ray.direction);
        const std::array<float, 3> inverse = NumbersOf(geometry.inverseRelativeSpacing);
        const int sizes[3] = {volume_.sizeX, volume_.sizeY, volume_.sizeZ};
        const int mostJumps = sizes[0] + sizes[1] + sizes[2] + 64;
        float t = clipped->entryDistance;
        Vec3f position = clipped->entry;
        for (int jumps = 0; t < clipped->exitDistance && colour.transmittance >= opaque;)
        {
            const std::array<float, 3> at = NumbersOf(position);
            bool inside = true;
            for (int axis = 0; axis < 3; ++axis)
                inside = inside && at[axis] >= 0 && at[axis] < float(sizes[axis]);
            if (!inside)
                break;

            const int emptyEdge = EmptyEdgeAround(position);
            const int edge = emptyEdge ? emptyEdge : 2;
            float leaves = 10000.0f;
            for (int axis = 0; axis < 3; ++axis)
            {
                const int low = int(at[axis]) / edge * edge;
                if (direction[axis] > 0.0001f)
                    leaves = std::min(leaves, (float(low + edge) - start[axis]) / direction[axis]);
                else if (direction[axis] < -0.0001f)
                    leaves = std::min(leaves, (float(low) - start[axis]) / direction[axis]);
            }
            if (emptyEdge)
            {
                if (++jumps > mostJumps)
                    break;
                if (leaves + 0.001f > t)
                {
                    t = leaves + 0.001f;
                    float moved[3];
                    for (int axis = 0; axis < 3; ++axis)
                    {
                        const float nudge = 0.001f * inverse[axis];
                        moved[axis] = start[axis] + leaves * direction[axis] + (direction[axis] < 0 ? -nudge : nudge);
                    }
                    position = VecOf(moved);
                }
                else
                {
                    t += ray.stepLength;
                    position = position + ray.step;
                }
                continue;
            }

            const float steps = std::max(1.0f, std::ceil((leaves - t) / ray.stepLength));
            for (float step = 0; step < steps && colour.transmittance >= opaque; ++step)
            {
                t += ray.stepLength;
                if (nextLayer < layers.size() && layers[nextLayer].depth < t)
                    addLayer();
                if (t > clipped->exitDistance || colour.transmittance < opaque)
                    break;
                position = position + ray.step;
                Sample sample;
                if (Classify(position, sample))
                    Shade(position, ray.patientDirection, sample, colour);
            }
        }
    }
    while (nextLayer < layers.size() && colour.transmittance >= opaque)
        addLayer();

    const uint32_t coverage = colour.transmittance < opaque ? 255 : uint32_t((1.0f - colour.transmittance) * 255.0f);
    return coverage | ByteOf(colour.red) << 8 | ByteOf(colour.green) << 16 | ByteOf(colour.blue) << 24;
}

bool PlainRayCaster::Classify(Vec3f position, Sample& sample) const
{
    const std::array<float, 3> at = NumbersOf(position);
    const int sizes[3] = {volume_.sizeX, volume_.sizeY, volume_.sizeZ};
    for (int axis = 0; axis < 3; ++axis)
        if (!(at[axis] >= 1.0f && at[axis] < float(sizes[axis] - 2)))
            return false;
    sample.entry = EntryOf(LabelAt(int(at[0] + 0.5f), int(at[1] + 0.5f), int(at[2] + 0.5f)));
    if (!sample.entry || !sample.entry->opacities || !sample.entry->colours)
        return false;
    const float value = Interpolate(position, [&](int x, int y, int z) { return VoxelAt(x, y, z); });
    const int64_t index = int64_t(int16_t(int(value + 0.5f))) - sample.entry->rangeStart;
    if (index < 0 || index >= sample.entry->size || !(sample.entry->opacities[index] > 0.01f))
        return false;
    sample.opacity = sample.entry->opacities[index];
    sample.red = sample.entry->colours[3 * index];
    sample.green = sample.entry->colours[3 * index + 1];
    sample.blue = sample.entry->colours[3 * index + 2];
    return true;
}

void PlainRayCaster::Shade(Vec3f position, Vec3f light, const Sample& sample, Light& colour) const
{
    const Vec3f gradient = GradientAt(position), inverse = geometry.inverseRelativeSpacing;
    const Directions& axes = geometry.directions;
    const Vec3f turned =
        gradient.x * inverse.x * axes.row + gradient.y * inverse.y * axes.column + gradient.z * inverse.z * axes.slice;
    const float facing = std::abs(Dot(UnitOrZero(turned), light));
    float power = facing;
    for (int squaring = 0; squaring < 5; ++squaring)
        power = power * power;
    power = power * power * power;
    const float* shading = sample.entry->shading;
    const float shade = shading[0] + shading[1] * facing + shading[2] * power;
    const float share = shade * sample.opacity * colour.transmittance;
    colour.red += sample.red * share;
    colour.green += sample.green * share;
    colour.blue += sample.blue * share;
    colour.transmittance = std::max(0.0f, colour.transmittance * (1.0f - sample.opacity));
}

// Not halved: only the direction counts.
Vec3f PlainRayCaster::GradientAt(Vec3f position) const
{
    return {Interpolate(position, [&](int x, int y, int z) { return VoxelAt(x + 1, y, z) - VoxelAt(x - 1, y, z); }),
            Interpolate(position, [&](int x, int y, int z) { return VoxelAt(x, y + 1, z) - VoxelAt(x, y - 1, z); }),
            Interpolate(position, [&](int x, int y, int z) { return VoxelAt(x, y, z + 1) - VoxelAt(x, y, z - 1); })};
}
} // namespace corvane::tests
