#include "plain_projection.h"

#include <gtest/gtest.h>

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

std::array<float, 3> NumbersOf(Vec3f a) { return {a.x, a.y, a.z}; }

// Whether a value, or a cell's range, goes beyond a bound: above it for a maximum, below it for a minimum.
bool IsBeyond(ProjectionKind kind, int value, int bound)
{
    return kind == ProjectionKind::Maximum ? value > bound : value < bound;
}
} // namespace

TestValues::TestValues(const PnImageParam& param)
    : values(size_t(param.rows) * param.columns, kUntouchedValue), image{values.data(), param}
{
}

bool TestValues::AreAll(int value) const
{
    return std::all_of(values.begin(), values.end(), [=](int16_t each) { return each == value; });
}

void ExpectSameValues(const TestValues& drawn, const TestValues& expected)
{
    ASSERT_EQ(drawn.values.size(), expected.values.size());
    size_t first = 0, count = 0;
    for (size_t pixel = drawn.values.size(); pixel-- > 0;)
        if (drawn.values[pixel] != expected.values[pixel])
        {
            first = pixel;
            ++count;
        }
    if (count > 0)
    {
        const size_t columns = drawn.image.param.columns;
        ADD_FAILURE() << count << " of " << drawn.values.size() << " pixels differ; row " << first / columns
                      << ", column " << first % columns << " is " << drawn.values[first] << ", not "
                      << expected.values[first];
    }
}

bool Imaging(Render3D& render, ProjectionKind kind, KsImageVAL* image)
{
    return kind == ProjectionKind::Maximum   ? render.ImagingMIP(image)
           : kind == ProjectionKind::Average ? render.ImagingAIP(image)
                                             : render.ImagingMinIP(image);
}

bool ImagingSlab(Render3D& render, ProjectionKind kind, float thickness, KsImageVAL* image)
{
    return kind == ProjectionKind::Maximum   ? render.ImagingMIP(image, thickness)
           : kind == ProjectionKind::Average ? render.ImagingAIP(image, thickness)
                                             : render.ImagingMinIP(image, thickness);
}

PlainProjector::PlainProjector(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette* palette)
    : volume_(volume), mark_(mark), palette_(palette)
{
    PrepareVolumeGeometry(volume, geometry);
    for (int level = 0, edge = 2; level < 4; ++level, edge *= 2)
        for (int z = 0; z < volume.sizeZ; z += edge)
            for (int y = 0; y < volume.sizeY; y += edge)
                for (int x = 0; x < volume.sizeX; x += edge)
                {
                    // One voxel more than the cell along each axis, as far as the volume goes.
                    Range range = {32767, -32768};
                    for (int k = z; k < std::min(z + edge + 1, volume.sizeZ); ++k)
                        for (int j = y; j < std::min(y + edge + 1, volume.sizeY); ++j)
                            for (int i = x; i < std::min(x + edge + 1, volume.sizeX); ++i)
                            {
                                range.least = std::min(range.least, VoxelAt(i, j, k));
                                range.most = std::max(range.most, VoxelAt(i, j, k));
                            }
                    ranges_[level].push_back(range);
                }
}

void PlainProjector::Project(ProjectionKind kind, float thickness, KsImageVAL& image) const
{
    const Vec3f rowDirection = ToFloat(VecOf(image.param.rowDirection));
    const Vec3f columnDirection = ToFloat(VecOf(image.param.columnDirection));
    const Vec3f position = ToFloat(VecOf(image.param.position));
    const Vec3f columnStep = float(image.param.columnSpacing) * rowDirection;
    const Vec3f rowStep = float(image.param.rowSpacing) * columnDirection;
    const Vec3f view = UnitOrZero(Cross(rowDirection, columnDirection)), relative = geometry.relativeSpacing;
    const float slab = Length(PatientToIndexStep(geometry, thickness * view));
    Ray ray;
    ray.direction = UnitOrZero(PatientToIndexStep(geometry, view));
    ray.stepLength =
        1.0f / Length(Vec3f{ray.direction.x * relative.x, ray.direction.y * relative.y, ray.direction.z * relative.z});
    ray.step = ray.stepLength * ray.direction;
    for (uint32_t row = 0; row < image.param.rows; ++row)
        for (uint32_t column = 0; column < image.param.columns; ++column)
        {
            int16_t& value = image.values[size_t(row) * image.param.columns + column];
            value = kBackground;
            const Vec3f pixel = position + float(column) * columnStep + float(row) * rowStep;
            ray.start = PatientToIndex(geometry, pixel);
            const std::optional<ClippedRay> clipped =
                ClipRay(geometry, pixel, ray.start, view, ray.direction, geometry.visibleBox);
            if (!clipped)
                continue;
            ray.entry = clipped->entry;
            ray.entryDistance = clipped->entryDistance;
            ray.farLimit = std::min(clipped->exitDistance, slab);
            if (ray.farLimit > ray.entryDistance)
                value = int16_t(kind == ProjectionKind::Average ? Average(ray) : Extreme(ray, kind));
        }
}

int PlainProjector::VoxelAt(int x, int y, int z) const
{
    return volume_.slices[z][size_t(y) * size_t(volume_.sizeX) + size_t(x)];
}

int PlainProjector::LabelAt(int x, int y, int z) const
{
    const bool held =
        uint32_t(x) < mark_.sizeX && uint32_t(y) < mark_.sizeY && uint32_t(z) < mark_.sizeZ && mark_.slices;
    return held && mark_.slices[z] ? mark_.slices[z][size_t(y) * mark_.sizeX + size_t(x)] : 0;
}

bool PlainProjector::Counts(int x, int y, int z) const
{
    if (!palette_)
        return true;
    const int label = LabelAt(x, y, z);
    return label < 64 && palette_->entries[label] && palette_->entries[label]->visible;
}

bool PlainProjector::ReadNearest(Vec3f position, int& value) const
{
    const float x = position.x + 0.5f, y = position.y + 0.5f, z = position.z + 0.5f;
    const bool inside =
        x >= 0 && y >= 0 && z >= 0 && x < float(volume_.sizeX) && y < float(volume_.sizeY) && z < float(volume_.sizeZ);
    if (!inside || !Counts(int(x), int(y), int(z)))
        return false;
    value = VoxelAt(int(x), int(y), int(z));
    return true;
}

// The value between the eight voxels around a position, where one of them goes beyond the bound.
bool PlainProjector::ReadBetween(Vec3f position, ProjectionKind kind, int bound, int& value) const
{
    if (!(position.x >= 0 && position.y >= 0 && position.z >= 0 && position.x < float(volume_.sizeX - 1) &&
          position.y < float(volume_.sizeY - 1) && position.z < float(volume_.sizeZ - 1)))
        return false;
    if (!Counts(int(position.x + 0.5f), int(position.y + 0.5f), int(position.z + 0.5f)))
        return false;
    const int x = int(position.x), y = int(position.y), z = int(position.z);
    const float u = position.x - float(x), v = position.y - float(y), w = position.z - float(z);
    bool beyond = false;
    float alongZ[2][2];
    for (int dy = 0; dy < 2; ++dy)
        for (int dx = 0; dx < 2; ++dx)
        {
            const int lower = VoxelAt(x + dx, y + dy, z), upper = VoxelAt(x + dx, y + dy, z + 1);
            beyond = beyond || IsBeyond(kind, lower, bound) || IsBeyond(kind, upper, bound);
            alongZ[dy][dx] = Lerp(float(lower), float(upper), w);
        }
    const float between = Lerp(Lerp(alongZ[0][0], alongZ[0][1], u), Lerp(alongZ[1][0], alongZ[1][1], u), v);
    value = int(between + 0.5f);
    return beyond;
}

// The edge of the largest cell around a position that neither goes beyond the bound nor reaches it; 0 when even the
// smallest does.
int PlainProjector::HopelessEdgeAround(Vec3f position, ProjectionKind kind, int bound) const
{
    const int x = int(position.x), y = int(position.y), z = int(position.z);
    for (int level = 3, edge = 16; level >= 0; --level, edge /= 2)
    {
        const Range& range = ranges_[level][size_t(
            (z / edge * CellsAlong(volume_.sizeY, edge) + y / edge) * CellsAlong(volume_.sizeX, edge) + x / edge)];
        const int best = kind == ProjectionKind::Maximum ? range.most : range.least;
        if (IsBeyond(kind, bound, best))
            return edge;
    }
    return 0;
}

int PlainProjector::Extreme(const Ray& ray, ProjectionKind kind) const
{
    int bound = kind == ProjectionKind::Maximum ? -1024 : 32767, value;

    Vec3f position = ray.entry;
    const Vec3f coarseStep = 10.0f * ray.step;
    for (float t = ray.entryDistance; t < ray.farLimit;)
    {
        if (ReadNearest(position, value) && IsBeyond(kind, value, bound))
            bound = value;
        const float next = t + 10.0f * ray.stepLength;
        if (!(next > t))
            break;
        t = next;
        position = position + coarseStep;
    }

    const std::array<float, 3> start = NumbersOf(ray.start), direction = NumbersOf(ray.direction);
    const std::array<float, 3> inverse = NumbersOf(geometry.inverseRelativeSpacing);
    const int sizes[3] = {volume_.sizeX, volume_.sizeY, volume_.sizeZ};
    const int mostSkips = sizes[0] + sizes[1] + sizes[2] + 64;
    float t = ray.entryDistance;
    position = ray.entry;
    bool stuck = false;
    for (int skips = 0; t < ray.farLimit && !stuck;)
    {
        const std::array<float, 3> at = NumbersOf(position);
        for (int axis = 0; axis < 3; ++axis)
            stuck = stuck || !(at[axis] >= 0 && at[axis] < float(sizes[axis]));
        if (stuck)
            break;

        const int hopeless = HopelessEdgeAround(position, kind, bound), edge = hopeless ? hopeless : 2;
        float leaves = 10000.0f;
        for (int axis = 0; axis < 3; ++axis)
        {
            const int low = int(at[axis]) / edge * edge;
            if (direction[axis] > 0.0001f)
                leaves = std::min(leaves, (float(low + edge) - start[axis]) / direction[axis]);
            else if (direction[axis] < -0.0001f)
                leaves = std::min(leaves, (float(low) - start[axis]) / direction[axis]);
        }
        if (hopeless)
        {
            stuck = ++skips > mostSkips;
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
                continue;
            }
        }
        const float steps = hopeless ? 1.0f : std::max(1.0f, std::ceil((leaves - t) / ray.stepLength));
        for (float step = 0; step < steps; ++step)
        {
            const float next = t + ray.stepLength;
            stuck = stuck || !(next > t);
            t = next;
            if (t > ray.farLimit || stuck)
                break;
            position = position + ray.step;
            if (!hopeless && ReadBetween(position, kind, bound, value) && IsBeyond(kind, value, bound))
                bound = value;
        }
    }
    return bound == 32767 && kind == ProjectionKind::Minimum ? kBackground : bound;
}

int PlainProjector::Average(const Ray& ray) const
{
    int64_t sum = 0, count = 0;
    Vec3f position = ray.entry;
    for (float t = ray.entryDistance; t < ray.farLimit;)
    {
        int value;
        if (ReadNearest(position, value) && value >= -1248)
        {
            sum += value;
            ++count;
        }
        const float next = t + ray.stepLength;
        if (!(next > t))
            break;
        t = next;
        position = position + ray.step;
    }
    return count > 0 ? int(std::max<int64_t>(sum / count, kBackground)) : kBackground;
}
} // namespace corvane::tests
