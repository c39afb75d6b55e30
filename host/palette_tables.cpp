#include "palette_tables.h"

#include <algorithm>

#include "error.h"

namespace corvane::host
{
namespace
{
// Between two channels of control points' colours; the share is single precision, as the opacities' is.
uint8_t ChannelBetween(uint32_t a, uint32_t b, int shift, float share)
{
    const float from = float(a >> shift & 255), to = float(b >> shift & 255);
    return uint8_t(from + (to - from) * share + 0.5f);
}
} // namespace

PaletteTables::PaletteTables(const std::map<int, Palette>& byLabel)
{
    for (const auto& [label, palette] : byLabel)
    {
        if (label < 0 || label > 63)
            throw Error(ErrorKind::Usage, "labels are 0 to 63, not " + std::to_string(label));
        Table& table = tables_[label];
        Fill(table, palette);
        records_.entries[label] = &table.entry;
    }
    AddUp();
    if (byLabel.size() == 1 && byLabel.begin()->first == 0)
        only_ = byLabel.begin()->second;
}

void PaletteTables::Fill(Table& table, const Palette& palette)
{
    std::vector<KsPalettePoint> points = palette.points;
    const auto byValue = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value < b.value; };
    const auto sameValue = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value == b.value; };
    std::stable_sort(points.begin(), points.end(), byValue);
    points.erase(std::unique(points.begin(), points.end(), sameValue), points.end());
    if (points.size() < 2)
        throw Error(ErrorKind::Usage, "a transfer function needs points at two different values at least");

    const int first = points.front().value, last = points.back().value, size = last - first + 1;
    table.colours.reserve(size_t(size) * 3);
    table.opacities.reserve(size_t(size));
    size_t next = 1; // the first point above the value; the last one for the last value
    for (int value = first; value <= last; ++value)
    {
        while (next + 1 < points.size() && points[next].value <= value)
            ++next;
        const KsPalettePoint &a = points[next - 1], &b = points[next];
        const float share = float(value - a.value) / float(b.value - a.value);
        table.opacities.push_back(a.opacity + (b.opacity - a.opacity) * share);
        for (int shift : {16, 8, 0})
            table.colours.push_back(ChannelBetween(a.colour, b.colour, shift, share));
    }
    table.entry = {first,
                   last,
                   size,
                   table.colours.data(),
                   table.opacities.data(),
                   1.0f,
                   1,
                   {palette.shading[0], palette.shading[1], palette.shading[2]}};
}

void PaletteTables::AddUp()
{
    if (tables_.empty())
        return;
    int start = INT32_MAX, end = INT32_MIN;
    for (const auto& [label, table] : tables_)
    {
        start = std::min(start, table.entry.rangeStart);
        end = std::max(end, table.entry.rangeEnd);
    }
    sums_.resize(size_t(end - start) + 1);
    for (const auto& [label, table] : tables_)
    {
        float* sum = &sums_[size_t(table.entry.rangeStart - start)];
        for (float opacity : table.opacities)
            *sum++ += opacity;
    }
    records_.sumStart = start;
    records_.sumLength = int32_t(sums_.size());
    records_.opacitySums = sums_.data();
}
} // namespace corvane::host
