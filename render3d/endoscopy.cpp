#include "endoscopy.h"

#include "core/fan_out.h"
#include "core/trigonometry.h"
#include "ray_batcher.h"
#include "view_plane.h"

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
constexpr double kPi = 3.1415927410125732; // the single-precision number
} // namespace

void PlaceEndoscopy(const KsViewPoint& view, float fieldOfViewDegrees, float spacing, PnImageParam& param)
{
    const Vec3f direction = VecOf(view.direction);
    const auto [row, column] = AxesOf(direction, VecOf(view.up));
    const SineCosine half = SineCosineOf(double(fieldOfViewDegrees) * 0.5 / 180.0 * kPi);
    const double s = double(spacing);
    const double alongRows = (double(param.rows) - 1.0) * s * 0.5;
    const double alongColumns = (double(param.columns) - 1.0) * s * 0.5;
    const double distance = alongRows / (half.sine / half.cosine);
    param.rowSpacing = param.columnSpacing = s;
    Store(ToDouble(row), param.rowDirection);
    Store(ToDouble(column), param.columnDirection);
    Store(ToDouble(VecOf(view.eye)) + distance * ToDouble(direction) - alongRows * ToDouble(column) -
              alongColumns * ToDouble(row),
          param.position);
}

void RenderEndoscopy(const VolumeSlot& slot, const VolumePalette& palette, Vec3f eye, const PnImageRGB& image,
                     const KernelTable& kernels)
{
    const ViewPlane plane(image.param);
    const Frame frame(slot, &palette);
    FanOut(plane.rows * plane.columns,
           [&](int64_t first, int64_t end) noexcept
           {
               RayBatcher batcher(frame, kernels, image.pixels);
               for (int64_t pixel = first; pixel < end; ++pixel)
               {
                   const Vec3f through = plane.PixelAt(pixel % plane.columns, pixel / plane.columns);
                   batcher.Add(eye, UnitOrZero(through - eye), size_t(pixel));
               }
           });
}
} // namespace corvane::render3d
