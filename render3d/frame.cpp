#include "frame.h"

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
PaletteEntryView ViewOf(const VolumePaletteEntry* entry)
{
    if (!entry || !entry->visible || entry->size < 1 || !entry->opacities || !entry->colours)
        return {};
    return {entry->rangeStart, uint32_t(entry->size), entry->opacities, entry->colours,
            entry->shading[0], entry->shading[1],     entry->shading[2]};
}
} // namespace

Frame::Frame(const VolumeSlot& slot, const VolumePalette* palette)
    : scene_{{slot.volume.slices, slot.volume.sizeX, slot.volume.sizeY, slot.volume.sizeZ},
             palette ? LabelViewOf(slot.mark) : LabelView{},
             {slot.blocks.levels.data(), slot.blocks.rootMasks.data(), slot.blocks.blocksX, slot.blocks.blocksPerLayer},
             &palette_,
             slot.geometry.directions,
             slot.geometry.inverseRelativeSpacing},
      geometry_(slot.geometry)
{
    if (!palette)
    {
        palette_.shown[0] = 1; // without labels every voxel has label 0
        return;
    }
    for (int label = 0; label < 64; ++label)
    {
        palette_.entries[label] = ViewOf(palette->entries[label]);
        palette_.shown[label] = palette->entries[label] && palette->entries[label]->visible;
    }
}
} // namespace corvane::render3d
