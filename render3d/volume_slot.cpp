#include "volume_slot.h"

#include <algorithm>
#include <limits>
#include <optional>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
VolumeView ViewOf(const KsVolumeData& volume) { return {volume.slices, volume.sizeX, volume.sizeY, volume.sizeZ}; }

// Kernels number the voxels of a slice and the words of the visible depths in 32 bits and compare places with sizes in
// single precision.
bool FitsKernels(const KsVolumeData& volume)
{
    constexpr int32_t kExactInFloat = 1 << 24;
    constexpr int64_t kMostBlocks = INT32_MAX / kDepthWords;
    const auto isSize = [](int32_t size) { return size >= 1 && size <= kExactInFloat; };
    const auto blocks = [](int32_t size) { return (int64_t(size) + kBlockEdge - 1) / kBlockEdge; };
    return isSize(volume.sizeX) && isSize(volume.sizeY) && isSize(volume.sizeZ) &&
           int64_t(volume.sizeX) * volume.sizeY <= INT32_MAX &&
           blocks(volume.sizeX) * blocks(volume.sizeY) * blocks(volume.sizeZ) <= kMostBlocks;
}

// The corners of what all blocks show. With a spacing that is not positive the corners stay as they were.
void UpdateVisibleCorners(VolumeSlot& slot)
{
    int32_t minX = slot.blocks.nx, minY = slot.blocks.ny, minZ = slot.blocks.nz, maxX = 0, maxY = 0, maxZ = 0;
    for (const BlockRecord& block : slot.blocks.blocks)
    {
        minX = std::min(minX, block.minX);
        minY = std::min(minY, block.minY);
        minZ = std::min(minZ, block.minZ);
        maxX = std::max(maxX, block.maxX);
        maxY = std::max(maxY, block.maxY);
        maxZ = std::max(maxZ, block.maxZ);
    }
    const VolumeGeometry& geometry = slot.geometry;
    for (int corner = 0; corner < 8; ++corner)
    {
        const Vec3f index = {float(corner & 1 ? maxX : minX), float(corner & 2 ? maxY : minY),
                             float(corner & 4 ? maxZ : minZ)};
        const std::optional<Vec3f> patient =
            IndexToPatient(geometry.origin, geometry.directions, geometry.spacing, index);
        if (patient)
            slot.visibleCorners[corner] = *patient;
    }
}
} // namespace

bool CanBeDrawn(const KsVolumeData& volume) { return FitsKernels(volume) && IsLoadable(volume); }

bool LoadSlot(const KsVolumeData& volume, const KsVolumeMark& mark, VolumeSlot& slot)
{
    if (!CanBeDrawn(volume) || !BuildBlockTree(volume, slot.blocks))
        return false;
    ComputeBlockRanges(ViewOf(volume), slot.blocks);
    PrepareVolumeGeometry(volume, slot.geometry);
    slot.volume = volume;
    slot.mark = mark;
    slot.dataChanged = true;
    return true;
}

void ReleaseSlot(VolumeSlot& slot)
{
    slot.volume = {};
    slot.mark = {};
    slot.blocks = {};
}

void UpdateSlot(VolumeSlot& slot, const VolumePalette& palette)
{
    if (!slot.dataChanged)
        return;
    UpdateBlockVisibility(LabelViewOf(slot.mark), palette, slot.blocks);
    UpdateVisibleCorners(slot);
    slot.dataChanged = false;
}
} // namespace corvane::render3d
