#include "projection.h"

#include "core/fan_out.h"
#include "frame.h"
#include "view_plane.h"

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
constexpr float kStep = 1.0f; // of the smallest spacing

KernelTable::Projection KernelOf(ProjectionKind kind, const KernelTable& kernels)
{
    switch (kind)
    {
    case ProjectionKind::Maximum:
        return kernels.projectMaximum;
    case ProjectionKind::Average:
        return kernels.projectAverage;
    case ProjectionKind::Minimum:
        return kernels.projectMinimum;
    }
    return nullptr;
}

// A direction of length 0 stays 0; its rays take one sample where they stand.
ParallelRays RaysOf(const ViewPlane& plane, const VolumeSlot& slot, float thickness)
{
    const VolumeGeometry& geometry = slot.geometry;
    const Vec3f relative = geometry.relativeSpacing;
    ParallelRays rays = {};
    rays.position = plane.position;
    rays.columnStep = plane.columnStep;
    rays.rowStep = plane.rowStep;
    rays.columns = plane.columns;
    rays.patientDirection = plane.ViewDirection();
    const Vec3f d = rays.direction = UnitOrZero(PatientToIndexStep(geometry, rays.patientDirection));
    rays.standsStill = d.x == 0 && d.y == 0 && d.z == 0;
    if (rays.standsStill)
        rays.stepLength = 1.0f;
    else
    {
        rays.stepLength = kStep / Length(Vec3f{d.x * relative.x, d.y * relative.y, d.z * relative.z});
        rays.step = rays.stepLength * d;
    }
    rays.farthest = Length(PatientToIndexStep(geometry, thickness * rays.patientDirection));
    rays.lowest = slot.blocks.lowest;
    rays.highest = slot.blocks.highest;
    return rays;
}
} // namespace

void Project(ProjectionKind kind, const VolumeSlot& slot, const VolumePalette* palette, float thickness,
             KsImageVAL& image, const KernelTable& kernels)
{
    const ViewPlane plane(image.param);
    const Frame frame(slot, palette);
    const ParallelRays rays = RaysOf(plane, slot, thickness);
    const KernelTable::Projection project = KernelOf(kind, kernels);
    FanOut(plane.rows * plane.columns,
           [&](int64_t first, int64_t end) noexcept { project(frame.SceneOf(), rays, first, end, image.values); });
}
} // namespace corvane::render3d
