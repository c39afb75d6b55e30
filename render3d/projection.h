#ifndef CORVANE_RENDER3D_PROJECTION_H
#define CORVANE_RENDER3D_PROJECTION_H

#include "kernels/kernels.h"
#include "volume_slot.h"

namespace corvane::render3d
{
enum class ProjectionKind
{
    Maximum,
    Average,
    Minimum,
};

// Projects a volume, brought up to date, onto an image along parallel rays perpendicular to it. Writes every pixel.
//   palette    whose hidden labels are left out; null: every voxel takes part
//   thickness  how far rays go from the image plane, mm
void Project(ProjectionKind kind, const VolumeSlot& slot, const VolumePalette* palette, float thickness,
             KsImageVAL& image, const KernelTable& kernels = Kernels());
} // namespace corvane::render3d

#endif
