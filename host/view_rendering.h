#ifndef CORVANE_HOST_VIEW_RENDERING_H
#define CORVANE_HOST_VIEW_RENDERING_H

#include "palette_tables.h"
#include "picture.h"
#include "scene.h"
#include "view_path.h"

#include <vector>

namespace corvane::host
{
// What the library draws: one pixel each, with colour and coverage.
struct RenderedImage
{
    PnImageParam plane;
    std::vector<uint32_t> pixels;
};

// Renders one volume. Volume and tables must live as long as this does. What the library prints on its own does not
// reach standard output. All throw Error (Computation) for what the library refuses.
//
// The engine draws when the palette is label 0's alone and, for looks from outside, the picture has the volume's middle
// in its own. Palettes for other labels and pictures with another middle, those of a crop, are drawn beside the engine,
// on the plane of its camera. Both give the same pixels.
class ViewRenderer
{
public:
    ViewRenderer(const VolumeView& volume, const PaletteTables& tables);

    // For what only the engine does, such as cutting. Call UpdateLabels after a change of its labels.
    Engine3D& Engine() { return scene_.Engine(); }
    void UpdateLabels() { scene_.UpdateLabels(); }

    // Shows only what lies in the box.
    void SetVisibleBox(const PatientBox& box) { scene_.SetVisibleBox(box); }

    // The image plane of a picture; the engine's camera is left there.
    PnImageParam PlaneOf(const Framing& framing) { return scene_.Aim(framing); }

    // Along parallel rays.
    //   blends  planes to be shown as well; at most four, their pixels as many as the picture's
    RenderedImage Render(const Framing& framing, std::vector<KsBlendImage> blends = {});

    // From a point inside.
    RenderedImage RenderInside(const InsideView& view, double fieldOfViewDegrees, uint32_t rows, uint32_t columns);

private:
    const VolumeView& volume_;
    const PaletteTables& tables_;
    Scene scene_;
};

struct Rgb
{
    uint8_t red = 0, green = 0, blue = 0;
};

// The rendering before a background. `pixelsHaveSize` is false for perspective pictures, whose pixels are no mm wide.
Picture PictureOf(const RenderedImage& image, Rgb background, bool pixelsHaveSize);
} // namespace corvane::host

#endif
