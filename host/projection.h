#ifndef CORVANE_HOST_PROJECTION_H
#define CORVANE_HOST_PROJECTION_H

#include "scene.h"

#include <vector>

namespace corvane::host
{
// What becomes of the stored values along a ray.
enum class Projection
{
    Maximum,
    Average,
    Minimum,
};

// Stored values of a projection, row by row; -1024 where a ray finds nothing.
struct ProjectedImage
{
    PnImageParam plane;
    std::vector<int16_t> values;

    KsImageData Record(); // borrows the values
};

// Projects one volume, which must live as long as this does. Rays are perpendicular to the plane. What the library
// prints on its own does not reach standard output. All throw Error (Computation) for what the library refuses.
//
// The engine projects slabs, and the whole volume when the picture has its middle in its own. Pictures with another
// middle, those of a crop, are projected beside the engine, on the plane of its camera. Both give the same values.
class Projector
{
public:
    explicit Projector(const VolumeView& volume);
    Projector(const Projector&) = delete;
    Projector& operator=(const Projector&) = delete;

    // Leaves out what lies outside the box, in all projections.
    void SetVisibleBox(const PatientBox& box) { scene_.SetVisibleBox(box); }

    // The plane of a picture through the whole volume, through the middle of what it shows.
    PnImageParam PlaneOf(const Framing& framing);

    // Through the whole volume; voxels that are cut away take no part.
    ProjectedImage ThroughVolume(Projection projection, const Framing& framing);

    // Through a slab, `thickness` mm (at least 0.1) in all, half of it before the plane and half behind; all voxels
    // take part.
    ProjectedImage ThroughSlab(Projection projection, const PnImageParam& plane, double thickness);

private:
    // A picture's plane, moved along the line of sight to the middle of what is projected.
    PnImageParam InTheMiddle(const Framing& framing, const PnImageParam& plane);

    // What the renderer beside the engine draws with: a table by which label 0 takes part.
    uint8_t noColour_[2 * 3] = {};
    float noOpacity_[2] = {};
    VolumePaletteEntry shown_ = {0, 1, 2, noColour_, noOpacity_, 1.0f, 1, {}};
    VolumePalette tables_ = {};
    Scene scene_;
};
} // namespace corvane::host

#endif
