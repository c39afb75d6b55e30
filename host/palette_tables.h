#ifndef CORVANE_HOST_PALETTE_TABLES_H
#define CORVANE_HOST_PALETTE_TABLES_H

#include "transfer_function.h"

#include <map>
#include <optional>

namespace corvane::host
{
// The lookup tables of a palette for each label, as the renderer reads them, and their memory. Labels without a
// palette are not shown.
class PaletteTables
{
public:
    // Points may stand in any order; of those with the same value the first counts. Throws Error (Usage) for a label
    // outside 0 to 63 and for a palette without two different values.
    explicit PaletteTables(const std::map<int, Palette>& byLabel);
    PaletteTables(const PaletteTables&) = delete;
    PaletteTables& operator=(const PaletteTables&) = delete;

    const VolumePalette& Records() const { return records_; }

    // The palette of label 0 when no other label has one; else null.
    const Palette* OnlyPalette() const { return only_ ? &*only_ : nullptr; }

private:
    struct Table
    {
        VolumePaletteEntry entry = {};
        std::vector<uint8_t> colours;
        std::vector<float> opacities;
    };

    void Fill(Table& table, const Palette& palette);
    void AddUp();

    std::map<int, Table> tables_;
    std::vector<float> sums_;
    VolumePalette records_ = {};
    std::optional<Palette> only_;
};
} // namespace corvane::host

#endif
