#include "geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace corvane::core
{
namespace
{
// The corners are pulled in so far, and the sampling bounds a little less, that every sample of a ray between them
// has a full neighbourhood inside the data, a gradient's included, without bounds tests in the inner loops.
constexpr float kCornerInset = 1.1f;
constexpr float kLowerBound = 1.01f;
constexpr float kBoxMargin = 0.1f;   // mm
constexpr float kParallel = 0.0001f; // a smaller component does not bound the exit
constexpr float kFarthestExit = 10000.0f;
constexpr float kKeepsFinite = 0.000001f; // added to a length before dividing by it

constexpr float Vec3f::*kAxes[3] = {&Vec3f::x, &Vec3f::y, &Vec3f::z};

Vec3f SizeOf(const KsVolumeData& volume) { return {float(volume.sizeX), float(volume.sizeY), float(volume.sizeZ)}; }

bool IsPositive(Vec3f spacing) { return spacing.x > 0 && spacing.y > 0 && spacing.z > 0; }

void MapCorners(const KsVolumeData& volume, const Directions& directions, Vec3f (&corners)[8])
{
    const Vec3f size = SizeOf(volume);
    const Vec3f low = {kCornerInset, kCornerInset, kCornerInset};
    const Vec3f high = {size.x - 1.0f - kCornerInset, size.y - 1.0f - kCornerInset, size.z - 1.0f - kCornerInset};
    const Vec3f indices[8] = {{low.x, low.y, low.z},    {high.x, low.y, low.z}, {high.x, high.y, low.z},
                              {low.x, high.y, low.z},   {low.x, low.y, high.z}, {high.x, low.y, high.z},
                              {high.x, high.y, high.z}, {low.x, high.y, high.z}};
    for (int corner = 0; corner < 8; ++corner)
    {
        const std::optional<Vec3f> patient =
            IndexToPatient(VecOf(volume.origin), directions, VecOf(volume.spacing), indices[corner]);
        if (patient)
            corners[corner] = *patient;
    }
}

// A displacement in patient space as one in voxels, with the slice direction resolved in the frame of row, column and
// normal.
template <class Real>
Vec3<Real> LinearPart(Vec3<Real> row, Vec3<Real> column, Vec3<Real> normal, Vec3<Real> sliceInFrame, Vec3<Real> spacing,
                      Vec3<Real> step)
{
    const Real along = Dot(step, normal) / sliceInFrame.z;
    return {(Dot(step, row) - sliceInFrame.x * along) / spacing.x,
            (Dot(step, column) - sliceInFrame.y * along) / spacing.y, along / spacing.z};
}

// Where a ray enters a box, as a ray parameter; 0 when it starts inside, nothing when it misses or its direction is not
// finite. Every comparison is written so that a NaN fails it.
std::optional<float> EntryOf(const Box& box, Vec3f origin, Vec3f direction)
{
    float entry = 0.0f;
    float exit = std::numeric_limits<float>::infinity();
    for (const auto axis : kAxes)
    {
        const float low = box.min.*axis, high = box.max.*axis, start = origin.*axis, along = direction.*axis;
        if (!std::isfinite(along))
            return std::nullopt;
        if (along == 0.0f)
        {
            if (!(start >= low && start <= high))
                return std::nullopt;
            continue;
        }
        const float nearFace = along > 0.0f ? low : high, farFace = along > 0.0f ? high : low;
        const float nearParameter = (nearFace - start) / along, farParameter = (farFace - start) / along;
        if (!(nearParameter <= farParameter))
            return std::nullopt;
        entry = std::max(entry, nearParameter);
        exit = std::min(exit, farParameter);
    }
    if (!(entry <= exit))
        return std::nullopt;
    return entry;
}

// Where a ray that passed EntryOf leaves the box; nothing when that lies behind its start.
std::optional<float> ExitOf(const Box& box, Vec3f origin, Vec3f direction)
{
    float exit = kFarthestExit;
    for (const auto axis : kAxes)
    {
        const float along = direction.*axis;
        if (along > kParallel)
            exit = std::min(exit, (box.max.*axis - origin.*axis) / along);
        else if (along < -kParallel)
            exit = std::min(exit, (box.min.*axis - origin.*axis) / along);
    }
    if (!(exit >= 0.0f))
        return std::nullopt;
    return exit;
}

// See VolumeView.
int32_t SliceStrideOf(const KsVolumeData& volume)
{
    if (volume.sizeZ < 2)
        return 0;
    const auto distance = [&](int slice)
    { return int64_t(uintptr_t(volume.slices[slice]) - uintptr_t(volume.slices[slice - 1])); };
    const int64_t bytes = distance(1);
    const int64_t stride = bytes / int64_t(sizeof(int16_t));
    const int64_t farthest = (std::abs(stride) + volume.sizeX) * volume.sizeZ + int64_t(volume.sizeX) * volume.sizeY;
    if (bytes % int64_t(sizeof(int16_t)) != 0 || std::abs(stride) > INT32_MAX || farthest > INT32_MAX)
        return 0;
    for (int slice = 2; slice < volume.sizeZ; ++slice)
        if (distance(slice) != bytes)
            return 0;
    return int32_t(stride);
}
} // namespace

bool IsLoadable(const KsVolumeData& volume)
{
    if (!volume.slices || volume.sizeX < 1 || volume.sizeY < 1 || volume.sizeZ < 1)
        return false;
    return std::all_of(volume.slices, volume.slices + volume.sizeZ, [](const int16_t* slice) { return slice; });
}

bool SameSizes(const KsVolumeData& a, const KsVolumeData& b)
{
    return a.sizeX == b.sizeX && a.sizeY == b.sizeY && a.sizeZ == b.sizeZ;
}

VolumeView VolumeViewOf(const KsVolumeData& volume)
{
    return {volume.slices, volume.sizeX, volume.sizeY, volume.sizeZ, SliceStrideOf(volume)};
}

LabelView LabelViewOf(const KsVolumeMark& mark)
{
    const auto size = [](uint32_t voxels) { return int32_t(std::min<uint32_t>(voxels, INT32_MAX)); };
    return {mark.slices, size(mark.sizeX), size(mark.sizeY), size(mark.sizeZ)};
}

void PrepareVolumeGeometry(const KsVolumeData& volume, VolumeGeometry& geometry)
{
    const Vec3f spacing = VecOf(volume.spacing);
    const Vec3f size = SizeOf(volume);
    const float smallest = std::min(std::min(spacing.x, spacing.y), spacing.z);
    geometry.minSpacing = smallest;
    geometry.relativeSpacing = {spacing.x / smallest, spacing.y / smallest, spacing.z / smallest};
    geometry.inverseRelativeSpacing = {smallest / spacing.x, smallest / spacing.y, smallest / spacing.z};

    const Directions directions = {VecOf(volume.rowDirection), VecOf(volume.columnDirection),
                                   VecOf(volume.sliceDirection)};
    MapCorners(volume, directions, geometry.corners);
    geometry.boundingBox = BoundingBoxOfCorners(geometry.corners);
    const Vec3f margin = {kBoxMargin, kBoxMargin, kBoxMargin};
    geometry.visibleBox = {geometry.boundingBox.min - margin, geometry.boundingBox.max + margin};
    geometry.lowerBound = {kLowerBound, kLowerBound, kLowerBound};
    geometry.upperBound = {size.x - 2.0f - 0.01f, size.y - 2.0f - 0.01f, size.z - 2.0f - 0.01f};

    geometry.origin = VecOf(volume.origin);
    geometry.spacing = spacing;
    geometry.directions = directions;
    geometry.normal = Cross(directions.row, directions.column);
    geometry.sliceInFrame = {Dot(directions.slice, directions.row), Dot(directions.slice, directions.column),
                             Dot(directions.slice, geometry.normal)};
}

std::optional<Vec3f> IndexToPatient(Vec3f origin, const Directions& directions, Vec3f spacing, Vec3f index)
{
    if (!IsPositive(spacing))
        return std::nullopt;
    const Vec3f normal = Cross(directions.row, directions.column);
    const float along = spacing.z * index.z;
    const float row = Dot(directions.slice, directions.row) * along + spacing.x * index.x;
    const float column = Dot(directions.slice, directions.column) * along + spacing.y * index.y;
    const float height = Dot(directions.slice, normal) * along;
    return origin + row * directions.row + column * directions.column + height * normal;
}

Vec3f PatientToIndex(const VolumeGeometry& geometry, Vec3f patient)
{
    return PatientToIndexStep(geometry, patient - geometry.origin);
}

Vec3f PatientToIndexStep(const VolumeGeometry& geometry, Vec3f patientStep)
{
    return LinearPart(geometry.directions.row, geometry.directions.column, geometry.normal, geometry.sliceInFrame,
                      geometry.spacing, patientStep);
}

Vec3d PatientToIndexStep(const VolumeGeometry& geometry, Vec3d patientStep)
{
    return LinearPart(ToDouble(geometry.directions.row), ToDouble(geometry.directions.column),
                      ToDouble(geometry.normal), ToDouble(geometry.sliceInFrame), ToDouble(geometry.spacing),
                      patientStep);
}

Vec3f UnitOrZero(Vec3f direction)
{
    const float length = Length(direction) + kKeepsFinite;
    return {direction.x / length, direction.y / length, direction.z / length};
}

Box BoundingBoxOfCorners(const Vec3f (&corners)[8])
{
    Box box = {corners[0], corners[0]};
    for (const Vec3f& corner : corners)
    {
        for (const auto axis : kAxes)
        {
            box.min.*axis = std::min(box.min.*axis, corner.*axis);
            box.max.*axis = std::max(box.max.*axis, corner.*axis);
        }
    }
    return box;
}

std::optional<ClippedRay> ClipRay(const VolumeGeometry& geometry, Vec3f patientOrigin, Vec3f indexOrigin,
                                  Vec3f patientDirection, Vec3f indexDirection, const Box& box)
{
    if (!IsPositive(geometry.spacing))
        return std::nullopt;
    const std::optional<float> patientEntry = EntryOf(box, patientOrigin, patientDirection);
    const std::optional<float> patientExit = ExitOf(box, patientOrigin, patientDirection);
    const Box bounds = {geometry.lowerBound, geometry.upperBound};
    const std::optional<float> indexEntry = EntryOf(bounds, indexOrigin, indexDirection);
    const std::optional<float> indexExit = ExitOf(bounds, indexOrigin, indexDirection);
    if (!patientEntry || !patientExit || !indexEntry || !indexExit)
        return std::nullopt;

    const Vec3f boxEntry = PatientToIndex(geometry, patientOrigin + *patientEntry * patientDirection);
    const Vec3f boxExit = PatientToIndex(geometry, patientOrigin + *patientExit * patientDirection);
    const float boxEntryDistance = Length(boxEntry - indexOrigin);
    const float boxExitDistance = Length(boxExit - indexOrigin);
    ClippedRay ray = {indexOrigin + *indexEntry * indexDirection, *indexEntry,
                      indexOrigin + *indexExit * indexDirection, *indexExit};
    // Written so that a distance that is not a number is kept, and refused below.
    if (!(boxEntryDistance <= ray.entryDistance))
    {
        ray.entry = boxEntry;
        ray.entryDistance = boxEntryDistance;
    }
    if (!(boxExitDistance >= ray.exitDistance))
    {
        ray.exit = boxExit;
        ray.exitDistance = boxExitDistance;
    }
    if (!(ray.entryDistance <= ray.exitDistance))
        return std::nullopt;
    return ray;
}
} // namespace corvane::core
