#include "label_palettes.h"

#include <algorithm>
#include <utility>

namespace corvane::capi
{
namespace
{
// By value, one point for each value: the first that was given.
std::vector<KsPalettePoint> Sorted(std::vector<KsPalettePoint> points)
{
    const auto before = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value < b.value; };
    const auto same = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value == b.value; };
    std::stable_sort(points.begin(), points.end(), before);
    points.erase(std::unique(points.begin(), points.end(), same), points.end());
    return points;
}

// Single precision, as the opacities; a half is rounded up.
uint8_t ChannelBetween(uint32_t from, uint32_t to, int shift, float share)
{
    const float low = float(from >> shift & 255), high = float(to >> shift & 255);
    return uint8_t(low + (high - low) * share + 0.5f);
}

struct Range
{
    int32_t low, high;
};

Range RangeOfVisible(const VolumePalette& records)
{
    Range range = {INT32_MAX, INT32_MIN};
    for (const VolumePaletteEntry* entry : records.entries)
    {
        if (!entry || !entry->visible)
            continue;
        range.low = std::min(range.low, entry->rangeStart);
        range.high = std::max(range.high, entry->rangeEnd);
    }
    return range;
}
} // namespace

bool LabelPalettes::Set(int label, const KsPalette& palette)
{
    std::unique_ptr<Table> table = TableOf(palette);
    if (!table)
        return false;
    Replace(label, std::move(table));
    return true;
}

const KsPalette* LabelPalettes::Find(int label) const
{
    const std::unique_ptr<Table>& table = tables_[size_t(label)];
    return table ? &table->palette : nullptr;
}

void LabelPalettes::Remove(int label) { Replace(label, nullptr); }

void LabelPalettes::Clear()
{
    records_ = {};
    sums_ = {};
    for (std::unique_ptr<Table>& table : tables_)
        table.reset();
}

std::unique_ptr<LabelPalettes::Table> LabelPalettes::TableOf(const KsPalette& palette)
{
    auto table = std::make_unique<Table>();
    if (palette.points && palette.pointCount > 0)
        table->points.assign(palette.points, palette.points + palette.pointCount);
    const std::vector<KsPalettePoint> sorted = Sorted(table->points);
    if (sorted.size() < 2)
        return nullptr;
    table->palette = palette;
    table->palette.points = table->points.data();
    table->palette.ownsPoints = 0;

    const int first = sorted.front().value, last = sorted.back().value;
    const int32_t size = last - first + 1;
    table->colours.reserve(size_t(size) * 3);
    table->opacities.reserve(size_t(size));
    size_t above = 1; // the first point above the value; for the last value the last point
    for (int value = first; value <= last; ++value)
    {
        while (above + 1 < sorted.size() && sorted[above].value <= value)
            ++above;
        const KsPalettePoint &a = sorted[above - 1], &b = sorted[above];
        const float share = float(value - a.value) / float(b.value - a.value);
        table->opacities.push_back(a.opacity + (b.opacity - a.opacity) * share);
        for (const int shift : {16, 8, 0})
            table->colours.push_back(ChannelBetween(a.colour, b.colour, shift, share));
    }
    table->entry = {first,           last, size, table->colours.data(), table->opacities.data(), palette.opacity,
                    palette.visible, {}};
    std::copy_n(palette.shading, 3, table->entry.shading);
    return table;
}

// The sums of the visible labels' opacities, in label order; writes to the records where they are.
std::vector<float> LabelPalettes::AddUp(VolumePalette& records)
{
    const Range range = RangeOfVisible(records);
    std::vector<float> sums;
    if (range.low < range.high)
        sums.resize(size_t(range.high - range.low) + 1);
    for (const VolumePaletteEntry* entry : records.entries)
    {
        if (!entry || !entry->visible)
            continue;
        float* const sum = sums.data() + (entry->rangeStart - range.low);
        for (int32_t n = 0; n < entry->size; ++n)
            sum[n] += entry->opacities[n];
    }
    records.sumStart = sums.empty() ? 0 : range.low;
    records.sumLength = int32_t(sums.size());
    records.opacitySums = sums.empty() ? nullptr : sums.data();
    return sums;
}

void LabelPalettes::Replace(int label, std::unique_ptr<Table> table)
{
    VolumePalette records = records_;
    records.entries[label] = table ? &table->entry : nullptr;
    sums_ = AddUp(records);
    records_ = records;
    tables_[size_t(label)] = std::move(table);
}
} // namespace corvane::capi
