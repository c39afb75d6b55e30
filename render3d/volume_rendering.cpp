#include "volume_rendering.h"

#include "core/fan_out.h"
#include "ray_batcher.h"

using namespace corvane::core;

namespace corvane::render3d
{
void RenderVolume(const VolumeSlot& slot, const VolumePalette& palette, const BlendImages& blends,
                  const PnImageRGB& image, const KernelTable& kernels)
{
    const ViewPlane plane(image.param);
    PixelRectangle rectangle = CoveredRectangle(plane, slot.visibleCorners);
    WidenToBlendImages(blends, rectangle);
    rectangle = LimitToImage(rectangle, plane);

    const Frame frame(slot, &palette);
    const RayCourse course = CourseOf(slot.geometry, plane.ViewDirection(), kRenderingStep);
    FanOut(
        rectangle.PixelCount(),
        [&](int64_t first, int64_t end) noexcept
        {
            RayBatcher<uint32_t> batcher(frame, kernels.integrateRays, image.pixels);
            for (int64_t pixel = first; pixel < end; ++pixel)
            {
                const int64_t column = rectangle.x0 + pixel % rectangle.Width();
                const int64_t row = rectangle.y0 + pixel / rectangle.Width();
                const size_t index = size_t(row) * size_t(plane.columns) + size_t(column);
                const Vec3f start = plane.PixelAt(column, row);
                BlendLayer layers[kMostBlendLayers];
                const int layerCount =
                    GatherLayers(blends, slot.geometry, start, course.patientDirection, column, row, index, layers);
                batcher.Add(start, PatientToIndex(slot.geometry, start), course, index, {layers, size_t(layerCount)});
            }
        });
}
} // namespace corvane::render3d
