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

void AppendRay(Vec3f start, Vec3f direction, std::span<const BlendLayer> layers, RayBatch& batch)
{
    const int ray = batch.count++;
    batch.startX[ray] = start.x;
    batch.startY[ray] = start.y;
    batch.startZ[ray] = start.z;
    batch.directionX[ray] = direction.x;
    batch.directionY[ray] = direction.y;
    batch.directionZ[ray] = direction.z;
    std::copy(layers.begin(), layers.end(), batch.layers[ray]);
    batch.layerCount[ray] = int(layers.size());
}
} // namespace corvane::render3d
