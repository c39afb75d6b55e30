#include "ray_batcher.h"

#include <algorithm>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
bool IsZero(Vec3f v) { return v.x == 0.0f && v.y == 0.0f && v.z == 0.0f; }
} // namespace

RayCourse CourseOf(const VolumeGeometry& geometry, Vec3f patientDirection, float step)
{
    RayCourse course;
    course.patientDirection = patientDirection;
    course.indexDirection = UnitOrZero(PatientToIndexStep(geometry, patientDirection));
    const Vec3f d = course.indexDirection, relative = geometry.relativeSpacing;
    course.stepLength = step / Length(Vec3f{d.x * relative.x, d.y * relative.y, d.z * relative.z});
    course.indexStep = course.stepLength * d;
    // A ray that goes nowhere takes one sample where it stands.
    if (IsZero(course.indexDirection))
    {
        course.stepLength = 1.0f;
        course.indexStep = {0, 0, 0};
        course.farthest = course.stepLength;
    }
    return course;
}

void AppendRay(const VolumeGeometry& geometry, Vec3f patientStart, Vec3f indexStart, const RayCourse& course,
               std::span<const BlendLayer> layers, RayBatch& batch)
{
    const int ray = batch.count++;
    const auto store = [ray](Vec3f v, float* x, float* y, float* z)
    {
        x[ray] = v.x;
        y[ray] = v.y;
        z[ray] = v.z;
    };
    store(indexStart, batch.startX, batch.startY, batch.startZ);
    store(course.indexDirection, batch.directionX, batch.directionY, batch.directionZ);
    store(course.indexStep, batch.stepX, batch.stepY, batch.stepZ);
    store(course.patientDirection, batch.lightX, batch.lightY, batch.lightZ);
    batch.stepLength[ray] = course.stepLength;
    std::copy(layers.begin(), layers.end(), batch.layers[ray]);
    batch.layerCount[ray] = int(layers.size());

    const std::optional<ClippedRay> clipped = ClipRay(geometry, patientStart, indexStart, course.patientDirection,
                                                      course.indexDirection, geometry.visibleBox);
    store(clipped ? clipped->entry : Vec3f{0, 0, 0}, batch.entryX, batch.entryY, batch.entryZ);
    batch.entryDistance[ray] = clipped ? clipped->entryDistance : 0.0f;
    // A ray that goes nowhere has no exit of its own.
    const float exit = clipped && !IsZero(course.indexDirection) ? clipped->exitDistance : course.farthest;
    batch.exitDistance[ray] = clipped ? std::min(exit, course.farthest) : 0.0f;
}
} // namespace corvane::render3d
