#include "frame.h"

#include <algorithm>

using namespace corvane::core;

namespace corvane::render3d
{
namespace
{
// The part of a label's tables that stored values reach.
PaletteEntryView ViewOf(const VolumePaletteEntry* entry)
{
    if (!entry || !entry->visible || entry->size < 1 || !entry->opacities || !entry->colours)
        return {};
    const int64_t start = std::max<int64_t>(entry->rangeStart, INT16_MIN);
    const int64_t end = std::min<int64_t>(int64_t(entry->rangeStart) + entry->size, INT16_MAX + 1);
    if (end <= start)
        return {};
    const int64_t skipped = start - entry->rangeStart;
    return {int32_t(start),    uint32_t(end - start), entry->opacities + skipped, entry->colours + 3 * skipped,
            entry->shading[0], entry->shading[1],     entry->shading[2]};
}
} // namespace

Frame::Frame(const VolumeSlot& slot, const VolumePalette* palette)
    : scene_{VolumeViewOf(slot.volume),
             palette ? LabelViewOf(slot.mark) : LabelView{},
             {slot.blocks.levels.data(), slot.blocks.rootMasks.data(), slot.blocks.visibleDepths.data(),
              slot.blocks.blocksX, slot.blocks.blocksPerLayer},
             &palette_,
             slot.geometry.directions,
             slot.geometry.relativeSpacing,
             slot.geometry.inverseRelativeSpacing,
             {slot.geometry.origin, slot.geometry.spacing, slot.geometry.directions.row,
              slot.geometry.directions.column, slot.geometry.normal, slot.geometry.sliceInFrame},
             {slot.geometry.visibleBox.min, slot.geometry.visibleBox.max},
             {slot.geometry.lowerBound, slot.geometry.upperBound},
             slot.geometry.spacing.x > 0 && slot.geometry.spacing.y > 0 && slot.geometry.spacing.z > 0}
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
