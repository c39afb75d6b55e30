#ifndef CORVANE_RENDER3D_VOLUME_RENDERING_H
#define CORVANE_RENDER3D_VOLUME_RENDERING_H

#include "blend_layers.h"
#include "volume_slot.h"

namespace corvane::render3d
{
// Draws a volume, brought up to date, along parallel rays perpendicular to an image. Writes the pixels that what is
// visible, or a blend image, can cover; the others are left alone.
void RenderVolume(const VolumeSlot& slot, const VolumePalette& palette, const BlendImages& blends,
                  const PnImageRGB& image, const KernelTable& kernels = Kernels());
} // namespace corvane::render3d

#endif
