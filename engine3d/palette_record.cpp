#include "palette_record.h"

#include <algorithm>
#include <memory>

namespace corvane::engine3d
{
int PointCount(const KsPalette& palette) { return palette.points ? std::max(palette.pointCount, 0) : 0; }

void CopyPalette(KsPalette& target, const KsPalette& source)
{
    const int count = PointCount(source);
    std::unique_ptr<KsPalettePoint[]> points;
    if (count > 0)
    {
        points = std::make_unique<KsPalettePoint[]>(size_t(count));
        std::copy_n(source.points, count, points.get());
    }
    KsPalette copy = source;
    copy.pointCount = count;
    copy.points = points.release();
    copy.ownsPoints = count > 0;
    if (target.ownsPoints)
        delete[] target.points;
    target = copy;
}

PaletteRecord::~PaletteRecord()
{
    if (record_.ownsPoints)
        delete[] record_.points;
}
} // namespace corvane::engine3d
