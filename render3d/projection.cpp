#include "projection.h"

#include "core/fan_out.h"
#include "frame.h"
#include "ray_batcher.h"
#include "view_plane.h"

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
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

ParallelRays RaysOf(const ViewPlane& plane, const VolumeSlot& slot, float thickness)
{
    const VolumeGeometry& geometry = slot.geometry;
    const RayCourse course = CourseOf(geometry, plane.ViewDirection(), kProjectionStep);
    ParallelRays rays = {};
    rays.position = plane.position;
    rays.columnStep = plane.columnStep;
    rays.rowStep = plane.rowStep;
    rays.columns = plane.columns;
    rays.patientDirection = course.patientDirection;
    rays.direction = course.indexDirection;
    rays.step = course.indexStep;
    rays.stepLength = course.stepLength;
    rays.farthest = Length(PatientToIndexStep(geometry, thickness * course.patientDirection));
    rays.frame = {geometry.origin, geometry.spacing,     geometry.directions.row, geometry.directions.column,
                  geometry.normal, geometry.sliceInFrame};
    rays.box = {geometry.visibleBox.min, geometry.visibleBox.max};
    rays.bounds = {geometry.lowerBound, geometry.upperBound};
    rays.anyHits = geometry.spacing.x > 0 && geometry.spacing.y > 0 && geometry.spacing.z > 0;
    rays.standsStill = course.indexDirection.x == 0 && course.indexDirection.y == 0 && course.indexDirection.z == 0;
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
