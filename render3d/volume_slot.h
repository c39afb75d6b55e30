#ifndef CORVANE_RENDER3D_VOLUME_SLOT_H
#define CORVANE_RENDER3D_VOLUME_SLOT_H

#include "core/block_tree.h"
#include "core/geometry.h"

namespace corvane::render3d
{
// What is kept of one volume, the main one or an attached one. Copies are independent; voxels and labels are the
// host's and shared.
struct VolumeSlot
{
    KsVolumeData volume = {}; // a null slice table: no volume
    KsVolumeMark mark = {};   // a null slice table: label 0 everywhere
    core::VolumeGeometry geometry = {};
    core::BlockTree blocks;
    core::Vec3f visibleCorners[8] = {}; // patient space, around everything visible
    bool dataChanged = true;            // the tree's masks are older than labels or tables
};

// Whether a volume can be drawn: loadable, and not larger than what kernels can count.
bool CanBeDrawn(const KsVolumeData& volume);

// Fills an empty slot and builds its block tree. False, with the slot left empty, for a volume that cannot be taken.
// Throws what the allocator throws, with the slot left empty.
bool LoadSlot(const KsVolumeData& volume, const KsVolumeMark& mark, VolumeSlot& slot);

// Empties a slot. Its geometry stays: a next volume whose spacing is not positive keeps the boxes of this one.
void ReleaseSlot(VolumeSlot& slot);

// Brings masks and visible corners up to date if labels or tables have changed.
void UpdateSlot(VolumeSlot& slot, const VolumePalette& palette);
} // namespace corvane::render3d

#endif
