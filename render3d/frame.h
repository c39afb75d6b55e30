#ifndef CORVANE_RENDER3D_FRAME_H
#define CORVANE_RENDER3D_FRAME_H

#include "kernels/kernels.h"
#include "volume_slot.h"

namespace corvane::render3d
{
// What all rays of a frame share. Borrows the slot and the palette's tables for as long as the frame is drawn.
//   palette  null: every voxel is shown, whatever its label
class Frame
{
public:
    Frame(const VolumeSlot& slot, const VolumePalette* palette);
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    const Scene& SceneOf() const { return scene_; }

private:
    core::PaletteView palette_ = {};
    Scene scene_;
};
} // namespace corvane::render3d

#endif
