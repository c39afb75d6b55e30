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
    const Vec3f direction = plane.ViewDirection();
    FanOut(rectangle.PixelCount(),
           [&](int64_t first, int64_t end) noexcept
           {
               RayBatcher batcher(frame, kernels, image.pixels);
               int64_t column = rectangle.x0 + first % rectangle.Width();
               int64_t row = rectangle.y0 + first / rectangle.Width();
               for (int64_t pixel = first; pixel < end; ++pixel)
               {
                   const size_t index = size_t(row) * size_t(plane.columns) + size_t(column);
                   const Vec3f start = plane.PixelAt(column, row);
                   BlendLayer layers[kMostBlendLayers];
                   const int layerCount =
                       GatherLayers(blends, slot.geometry, start, direction, column, row, index, layers);
                   batcher.Add(start, direction, index, {layers, size_t(layerCount)});
                   if (++column > rectangle.x1)
                   {
                       column = rectangle.x0;
                       ++row;
                   }
               }
           });
}
} // namespace corvane::render3d
