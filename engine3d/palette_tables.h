#ifndef CORVANE_ENGINE3D_PALETTE_TABLES_H
#define CORVANE_ENGINE3D_PALETTE_TABLES_H

#include "corvane/Records.h"

#include <array>
#include <memory>
#include <vector>

namespace corvane::engine3d
{
// The lookup tables that the renderers read, made from palettes, and their memory. Every change moves or frees tables:
// the renderers must be given the records again before they draw.
class PaletteTables
{
public:
    PaletteTables() = default;
    PaletteTables(const PaletteTables&) = delete;
    PaletteTables& operator=(const PaletteTables&) = delete;

    const VolumePalette& Records() const { return records_; }

    // The entry of a label, or null.
    VolumePaletteEntry* EntryOf(int label);

    // Makes a label's tables and adds up the opacities anew. Points may stand in any order; of those with the same
    // value the first counts. False, with nothing changed, for fewer than two different values and for a label outside
    // 0 to 63. Throws what the allocator throws, with nothing changed.
    bool Build(const KsPalette& palette, int label);

    // Slides the entries of all visible labels along the stored values and adds up the opacities anew. Ranges stop at
    // the limits of their integers. Throws what the allocator throws, with nothing changed.
    void Shift(int shift);

    void Clear();

private:
    struct Table
    {
        VolumePaletteEntry entry = {};
        std::vector<uint8_t> colours;
        std::vector<float> opacities;
    };

    static std::unique_ptr<Table> TableOf(const KsPalette& palette);
    static std::vector<float> AddUp(VolumePalette& records);

    std::array<std::unique_ptr<Table>, 64> tables_;
    std::vector<float> sums_;
    VolumePalette records_ = {};
};
} // namespace corvane::engine3d

#endif
