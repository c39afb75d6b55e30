#ifndef CORVANE_ENGINE3D_PALETTE_RECORD_H
#define CORVANE_ENGINE3D_PALETTE_RECORD_H

#include "corvane/Records.h"

namespace corvane::engine3d
{
// How many control points a palette really has.
int PointCount(const KsPalette& palette);

// Copies a palette and its points. The target's points are freed when it owns them, otherwise left to their owner; the
// copies are its own, from new[]. Throws what the allocator throws, with nothing changed.
void CopyPalette(KsPalette& target, const KsPalette& source);

// The engine's copy of what the host gave.
class PaletteRecord
{
public:
    PaletteRecord() = default;
    ~PaletteRecord();
    PaletteRecord(const PaletteRecord&) = delete;
    PaletteRecord& operator=(const PaletteRecord&) = delete;

    KsPalette& Record() { return record_; }

private:
    KsPalette record_;
};
} // namespace corvane::engine3d

#endif
