#ifndef CORVANE_CAPI_LABEL_PALETTES_H
#define CORVANE_CAPI_LABEL_PALETTES_H

#include "corvane/Records.h"

#include <array>
#include <memory>
#include <vector>

namespace corvane::capi
{
// A palette for each label, and the lookup tables that the renderer reads, made by the rules by which Engine3D makes
// those of label 0. Every change moves or frees tables: the renderer must be given the records again before it draws.
class LabelPalettes
{
public:
    static constexpr int kLabelCount = 64;

    LabelPalettes() = default;
    LabelPalettes(const LabelPalettes&) = delete;
    LabelPalettes& operator=(const LabelPalettes&) = delete;

    const VolumePalette& Records() const { return records_; }

    // Copies a palette and makes its tables. False, with nothing changed, for fewer than two different values. Throws
    // what the allocator throws, with nothing changed.
    bool Set(int label, const KsPalette& palette);

    // The palette of a label as it was set; its points are the palettes' own. Null for a label without one.
    const KsPalette* Find(int label) const;

    void Remove(int label);
    void Clear();

    // Whether a label is shown in volume renderings.
    bool IsVisible(int label) const { return records_.entries[label] && records_.entries[label]->visible; }

private:
    struct Table
    {
        KsPalette palette;
        std::vector<KsPalettePoint> points;
        VolumePaletteEntry entry = {};
        std::vector<uint8_t> colours;
        std::vector<float> opacities;
    };

    static std::unique_ptr<Table> TableOf(const KsPalette& palette);
    static std::vector<float> AddUp(VolumePalette& records);
    void Replace(int label, std::unique_ptr<Table> table);

    std::array<std::unique_ptr<Table>, kLabelCount> tables_;
    std::vector<float> sums_;
    VolumePalette records_ = {};
};
} // namespace corvane::capi

#endif
