#include "view_rendering.h"

#include <algorithm>

#include "error.h"
#include "quiet_output.h"

namespace corvane::host
{
namespace
{
void Require(bool done)
{
    if (!done)
        throw Error(ErrorKind::Computation, "the library refuses this rendering; memory may be short");
}

RenderedImage EmptyImage(uint32_t rows, uint32_t columns)
{
    RenderedImage image = {};
    image.plane.rows = rows;
    image.plane.columns = columns;
    image.pixels.resize(size_t(rows) * columns); // pixels that nothing covers are left alone
    return image;
}
} // namespace

ViewRenderer::ViewRenderer(const VolumeView& volume, const PaletteTables& tables)
{
    Require(renderer_.InitData(volume.Data(), volume.Labels(), tables.Records()));
}

void ViewRenderer::SetVisibleBox(const PatientBox& box)
{
    const float from[3] = {float(box.from.x), float(box.from.y), float(box.from.z)};
    const float to[3] = {float(box.to.x), float(box.to.y), float(box.to.z)};
    Require(renderer_.SetVisibleBox(from, to));
}

RenderedImage ViewRenderer::Render(const PnImageParam& plane, std::vector<KsBlendImage> blends)
{
    RenderedImage rendered = EmptyImage(plane.rows, plane.columns);
    PnImageRGB image = {rendered.pixels.data(), plane};
    renderer_.SetBlendImage(blends.data(), int(blends.size()));
    {
        const QuietOutput quiet;
        Require(renderer_.ImagingVR(&image, 0));
    }
    rendered.plane = plane;
    return rendered;
}

RenderedImage ViewRenderer::RenderInside(const KsViewPoint& view, double fieldOfViewDegrees, uint32_t rows,
                                         uint32_t columns)
{
    RenderedImage rendered = EmptyImage(rows, columns);
    PnImageRGB image = {rendered.pixels.data(), rendered.plane};
    {
        const QuietOutput quiet;
        Require(renderer_.ImagingVE(view, float(fieldOfViewDegrees), &image));
    }
    rendered.plane = image.param;
    return rendered;
}

Picture PictureOf(const RenderedImage& image, Rgb background, bool pixelsHaveSize)
{
    const PnImageParam& plane = image.plane;
    Picture picture = {int(plane.rows),
                       int(plane.columns),
                       pixelsHaveSize ? plane.rowSpacing : 0,
                       pixelsHaveSize ? plane.columnSpacing : 0,
                       {}};
    picture.rgb.resize(image.pixels.size() * 3);
    const uint8_t behind[3] = {background.red, background.green, background.blue};
    for (size_t n = 0; n < image.pixels.size(); ++n)
    {
        const uint32_t pixel = image.pixels[n], left = 255 - (pixel & 255);
        for (uint32_t channel = 0; channel < 3; ++channel)
        {
            const uint32_t lit = pixel >> (8 * channel + 8) & 255;
            picture.rgb[n * 3 + channel] = uint8_t(std::min(255u, lit + (behind[channel] * left + 127) / 255));
        }
    }
    return picture;
}
} // namespace corvane::host
