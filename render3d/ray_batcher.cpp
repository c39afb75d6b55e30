#include "ray_batcher.h"

#include <algorithm>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
constexpr float kStepFactor = 0.33f; // of the smallest spacing

bool IsZero(Vec3f v) { return v.x == 0.0f && v.y == 0.0f && v.z == 0.0f; }
} // namespace

RayCourse CourseOf(const VolumeGeometry& geometry, Vec3f patientDirection)
{
    RayCourse course;
    course.patientDirection = patientDirection;
    course.indexDirection = UnitOrZero(PatientToIndexStep(geometry, patientDirection));
    const Vec3f d = course.indexDirection, relative = geometry.relativeSpacing;
    course.stepLength = kStepFactor / Length(Vec3f{d.x * relative.x, d.y * relative.y, d.z * relative.z});
    course.indexStep = course.stepLength * d;
    // A ray that goes nowhere takes one sample where it stands.
    if (IsZero(course.indexDirection))
    {
        course.stepLength = 1.0f;
        course.indexStep = {0, 0, 0};
    }
    return course;
}

RayBatcher::RayBatcher(const Frame& frame, const KernelTable& kernels, uint32_t* pixels)
    : frame_(frame), kernels_(kernels), pixels_(pixels)
{
}

void RayBatcher::Add(Vec3f patientStart, Vec3f indexStart, const RayCourse& course, size_t pixel,
                     const BlendLayer* layers, int layerCount)
{
    const int ray = batch_.count++;
    pixelOf_[ray] = pixel;
    const auto store = [ray](Vec3f v, float* x, float* y, float* z)
    {
        x[ray] = v.x;
        y[ray] = v.y;
        z[ray] = v.z;
    };
    store(indexStart, batch_.startX, batch_.startY, batch_.startZ);
    store(course.indexDirection, batch_.directionX, batch_.directionY, batch_.directionZ);
    store(course.indexStep, batch_.stepX, batch_.stepY, batch_.stepZ);
    store(course.patientDirection, batch_.lightX, batch_.lightY, batch_.lightZ);
    batch_.stepLength[ray] = course.stepLength;
    std::copy(layers, layers + layerCount, batch_.layers[ray]);
    batch_.layerCount[ray] = layerCount;

    const VolumeGeometry& geometry = frame_.Geometry();
    const std::optional<ClippedRay> clipped = ClipRay(geometry, patientStart, indexStart, course.patientDirection,
                                                      course.indexDirection, geometry.visibleBox);
    store(clipped ? clipped->entry : Vec3f{0, 0, 0}, batch_.entryX, batch_.entryY, batch_.entryZ);
    batch_.entryDistance[ray] = clipped ? clipped->entryDistance : 0.0f;
    batch_.exitDistance[ray] = clipped ? clipped->exitDistance : 0.0f;
    if (clipped && IsZero(course.indexDirection))
        batch_.exitDistance[ray] = course.stepLength;
    if (batch_.count == kRaysPerBatch)
        Flush();
}

void RayBatcher::Flush()
{
    if (batch_.count == 0)
        return;
    uint32_t pixels[kRaysPerBatch];
    kernels_.integrateRays(frame_.SceneOf(), batch_, pixels);
    for (int ray = 0; ray < batch_.count; ++ray)
        pixels_[pixelOf_[ray]] = pixels[ray];
    batch_.count = 0;
}
} // namespace corvane::render3d
