#ifndef CORVANE_HOST_VIEW_PLANES_H
#define CORVANE_HOST_VIEW_PLANES_H

#include "view_rendering.h"
#include "window.h"

#include <optional>

namespace corvane::host
{
// A plane through the volume that a volume rendering is to show, with the pixels that its record points to.
struct SeenPlane
{
    KsBlendImage record = {};
    std::vector<uint32_t> pixels; // as many as the picture has
};

// The volume's values on a plane as they appear in a picture along parallel rays: trilinear, through the window, black
// outside the volume. Nothing for a plane that is seen from its edge.
//   section  the rectangle to be shown
//   picture  the image plane of the volume rendering
//   volume   gives the scale of the stored values in `view`
std::optional<SeenPlane> SeenPlaneOf(const PnImageParam& section, const PnImageParam& picture, const VolumeView& view,
                                     const Volume& volume, const Window& window, Rgb frame);
} // namespace corvane::host

#endif
