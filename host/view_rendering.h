#ifndef CORVANE_HOST_VIEW_RENDERING_H
#define CORVANE_HOST_VIEW_RENDERING_H

#include "corvane/Render3D.h"
#include "palette_tables.h"
#include "picture.h"

#include <vector>

namespace corvane::host
{
// What the renderer draws: one pixel each, with colour and coverage.
struct RenderedImage
{
    PnImageParam plane;
    std::vector<uint32_t> pixels;
};

// A box along the axes of patient space, from one corner to the opposite one, mm.
struct PatientBox
{
    Vec3 from, to;
};

// Renders one volume. Volume and tables must live as long as this does. What the library prints on its own does not
// reach standard output. All throw Error (Computation) for what the library refuses.
class ViewRenderer
{
public:
    ViewRenderer(const VolumeView& volume, const PaletteTables& tables);

    // Shows only what lies in the box.
    void SetVisibleBox(const PatientBox& box);

    // Along parallel rays through a plane that stands before the volume.
    //   blends  planes to be shown as well; at most four, their pixels as many as the picture's
    RenderedImage Render(const PnImageParam& plane, std::vector<KsBlendImage> blends = {});

    // From a point inside.
    RenderedImage RenderInside(const KsViewPoint& view, double fieldOfViewDegrees, uint32_t rows, uint32_t columns);

private:
    Render3D renderer_;
};

struct Rgb
{
    uint8_t red = 0, green = 0, blue = 0;
};

// The rendering before a background. `pixelsHaveSize` is false for perspective pictures, whose pixels are no mm wide.
Picture PictureOf(const RenderedImage& image, Rgb background, bool pixelsHaveSize);
} // namespace corvane::host

#endif
