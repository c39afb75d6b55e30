#include "view_rendering.h"

#include <algorithm>

#include "camera_aim.h"
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

KsViewPoint RecordOf(const InsideView& view)
{
    const auto store = [](Vec3 vector, float(&numbers)[3])
    {
        numbers[0] = float(vector.x);
        numbers[1] = float(vector.y);
        numbers[2] = float(vector.z);
    };
    KsViewPoint record = {};
    store(view.eye, record.eye);
    store(view.direction, record.direction);
    store(view.up, record.up);
    return record;
}

bool Gives(Engine3D& engine, const Palette& palette)
{
    std::vector<KsPalettePoint> points = palette.points;
    KsPalette record;
    std::copy_n(palette.shading, 3, record.shading);
    record.points = points.data();
    record.pointCount = int32_t(points.size());
    return engine.SetPalette(record);
}

// The engine reports no failure of an endoscopy; but only a renderer that got as far as drawing writes the geometry, in
// which pixels are as large as the smallest spacing.
bool WasDrawn(const PnImageParam& plane, const VolumeView& volume)
{
    const float(&spacing)[3] = volume.Data().spacing;
    return plane.rowSpacing == double(std::min({spacing[0], spacing[1], spacing[2]}));
}
} // namespace

ViewRenderer::ViewRenderer(const VolumeView& volume, const PaletteTables& tables)
    : volume_(volume), tables_(tables), scene_(volume, 0xFF)
{
    if (const Palette* palette = tables.OnlyPalette())
        Require(Gives(scene_.Engine(), *palette));
}

RenderedImage ViewRenderer::Render(const Framing& framing, std::vector<KsBlendImage> blends)
{
    RenderedImage rendered = EmptyImage(framing.rows, framing.columns);
    PnImageRGB image = {rendered.pixels.data(), scene_.Aim(framing)};
    const int blendCount = int(blends.size());
    const QuietOutput quiet;
    if (tables_.OnlyPalette() && !framing.middle)
    {
        Engine3D& engine = scene_.Engine();
        engine.SetBlendImage(blends.data(), blendCount);
        Require(engine.ImagingVR(int(framing.rows), int(framing.columns), rendered.pixels.data(), false, &image, 0));
    }
    else
    {
        Render3D& renderer = scene_.RendererBeside(tables_.Records());
        renderer.SetBlendImage(blends.data(), blendCount);
        Require(renderer.ImagingVR(&image, 0));
    }
    rendered.plane = image.param;
    return rendered;
}

RenderedImage ViewRenderer::RenderInside(const InsideView& view, double fieldOfViewDegrees, uint32_t rows,
                                         uint32_t columns)
{
    RenderedImage rendered = EmptyImage(rows, columns);
    PnImageRGB image = {rendered.pixels.data(), rendered.plane};
    const float angle = float(fieldOfViewDegrees);
    const QuietOutput quiet;
    if (tables_.OnlyPalette())
    {
        Engine3D& engine = scene_.Engine();
        const double eye[3] = {view.eye.x, view.eye.y, view.eye.z};
        engine.SetRenderType(KsRenderPerspective);
        Require(engine.SetOrigin(eye));
        AimCamera(engine, {view.direction, view.up});
        engine.SetViewAngle(angle);
        Require(engine.Imaging(int(rows), int(columns), rendered.pixels.data(), false, &image, 0) &&
                WasDrawn(image.param, volume_));
    }
    else
        Require(scene_.RendererBeside(tables_.Records()).ImagingVE(RecordOf(view), angle, &image));
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
