#ifndef CORVANE_HOST_PROJECTION_H
#define CORVANE_HOST_PROJECTION_H

#include "corvane/Render3D.h"
#include "view_rendering.h"

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
class Projector
{
public:
    explicit Projector(const VolumeView& volume);
    Projector(const Projector&) = delete;
    Projector& operator=(const Projector&) = delete;

    // Leaves out what lies outside the box, in all projections.
    void SetVisibleBox(const PatientBox& box);

    // Through the whole volume, wherever along its normal the plane lies; voxels that are cut away take no part.
    ProjectedImage ThroughVolume(Projection projection, const PnImageParam& plane);

    // Through a slab, `thickness` mm (at least 0.1) in all, half of it before the plane and half behind; all voxels
    // take part.
    ProjectedImage ThroughSlab(Projection projection, const PnImageParam& plane, double thickness);

private:
    Grid grid_;
    uint8_t noColour_[2 * 3] = {};
    float noOpacity_[2] = {};
    VolumePaletteEntry shown_;
    Render3D renderer_;
};
} // namespace corvane::host

#endif
