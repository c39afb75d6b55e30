#include "state.h"

#include "core/guarded.h"

#include <algorithm>
#include <utility>

// The transfer function of label 0 and what is said of single labels.

using namespace corvane;
using namespace corvane::core;
using namespace corvane::engine3d;

bool Engine3D::SetPalette(const KsPalette& palette)
{
    if (!state_)
        return false;
    if (PointCount(palette) < 2)
        return true;
    const auto taken = [&]
    {
        UpateVolumePalette(palette, 0);
        return true;
    };
    if (!Guarded(taken))
        return false;
    state_->ForwardPalette();
    return true;
}

bool Engine3D::GetPalette(KsPalette& palette)
{
    return state_ && Guarded(
                         [&]
                         {
                             CopyPalette(palette, state_->palette.Record());
                             return true;
                         });
}

bool Engine3D::AdjustColor(int shift)
{
    if (!state_)
        return false;
    const auto shifted = [&]
    {
        state_->tables.Shift(shift);
        return true;
    };
    if (!Guarded(shifted))
        return false;
    KsPalette& palette = state_->palette.Record();
    std::for_each_n(palette.points, palette.pointCount,
                    [shift](KsPalettePoint& point) { point.value = int16_t(uint32_t(point.value) + uint32_t(shift)); });
    state_->ForwardPalette();
    return true;
}

bool Engine3D::SetShading(float ambient, float diffuse, float specular, int label)
{
    if (!state_)
        return false;
    const float shading[3] = {ambient, diffuse, specular};
    std::copy_n(shading, 3, state_->palette.Record().shading);
    if (VolumePaletteEntry* const entry = state_->tables.EntryOf(label))
        std::copy_n(shading, 3, entry->shading);
    state_->ForwardPalette();
    return true;
}

bool Engine3D::SetOpacity(float opacity, int label)
{
    if (!state_)
        return false;
    state_->palette.Record().opacity = opacity;
    if (VolumePaletteEntry* const entry = state_->tables.EntryOf(label))
        entry->opacity = opacity;
    state_->ForwardPalette();
    return true;
}

bool Engine3D::SetVisible(bool visible, int label)
{
    if (!state_)
        return false;
    state_->palette.Record().visible = visible;
    if (VolumePaletteEntry* const entry = state_->tables.EntryOf(label))
        entry->visible = visible;
    state_->ForwardPalette();
    return true;
}

// Keeps a palette and makes a label's tables from it; the caller tells the renderers. Throws what the allocator throws,
// with nothing changed.
bool Engine3D::UpateVolumePalette(const KsPalette& palette, int label)
{
    if (PointCount(palette) < 2)
        return false;
    PaletteRecord kept;
    CopyPalette(kept.Record(), palette);
    const bool built = state_->tables.Build(palette, label);
    std::swap(state_->palette.Record(), kept.Record());
    return built;
}
