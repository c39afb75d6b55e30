#include "projection.h"

#include "core/fan_out.h"
#include "ray_batcher.h"
#include "view_plane.h"

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
RayBatcher<int16_t>::Kernel KernelOf(ProjectionKind kind, const KernelTable& kernels)
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
} // namespace

void Project(ProjectionKind kind, const VolumeSlot& slot, const VolumePalette* palette, float thickness,
             KsImageVAL& image, const KernelTable& kernels)
{
    const ViewPlane plane(image.param);
    const Frame frame(slot, palette);
    RayCourse course = CourseOf(slot.geometry, plane.ViewDirection(), kProjectionStep);
    course.farthest = Length(PatientToIndexStep(slot.geometry, thickness * course.patientDirection));
    const RayBatcher<int16_t>::Kernel kernel = KernelOf(kind, kernels);
    FanOut(plane.rows * plane.columns,
           [&](int64_t first, int64_t end) noexcept
           {
               RayBatcher<int16_t> batcher(frame, kernel, image.values);
               for (int64_t pixel = first; pixel < end; ++pixel)
               {
                   const Vec3f start = plane.PixelAt(pixel % plane.columns, pixel / plane.columns);
                   batcher.Add(start, PatientToIndex(slot.geometry, start), course, size_t(pixel));
               }
           });
}
} // namespace corvane::render3d
