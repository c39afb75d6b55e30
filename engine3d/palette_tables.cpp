#include "palette_tables.h"

#include "palette_record.h"

#include <algorithm>
#include <limits>

namespace corvane::engine3d
{
namespace
{
// A table of sums beyond this is not made: shifts and hidden labels can put ranges billions of values apart, where no
// stored value lies.
constexpr int64_t kLongestSum = int64_t(1) << 24;

std::vector<KsPalettePoint> SortedPoints(const KsPalette& palette)
{
    std::vector<KsPalettePoint> points(palette.points, palette.points + PointCount(palette));
    const auto before = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value < b.value; };
    const auto same = [](const KsPalettePoint& a, const KsPalettePoint& b) { return a.value == b.value; };
    std::stable_sort(points.begin(), points.end(), before);
    points.erase(std::unique(points.begin(), points.end(), same), points.end());
    return points;
}

uint8_t ChannelBetween(uint32_t from, uint32_t to, int shift, float t)
{
    const float low = float(from >> shift & 255), high = float(to >> shift & 255);
    return uint8_t(low + (high - low) * t + 0.5f);
}

int32_t Shifted(int32_t value, int shift)
{
    using Limits = std::numeric_limits<int32_t>;
    return int32_t(std::clamp<int64_t>(int64_t(value) + shift, Limits::min(), Limits::max()));
}
} // namespace

VolumePaletteEntry* PaletteTables::EntryOf(int label)
{
    return label >= 0 && label < 64 ? records_.entries[label] : nullptr;
}

bool PaletteTables::Build(const KsPalette& palette, int label)
{
    if (label < 0 || label >= 64)
        return false;
    std::unique_ptr<Table> table = TableOf(palette);
    if (!table)
        return false;
    VolumePalette records = records_;
    records.entries[label] = &table->entry;
    sums_ = AddUp(records);
    tables_[size_t(label)] = std::move(table);
    records_ = records;
    return true;
}

void PaletteTables::Shift(int shift)
{
    // The sums are those of shifted copies, made before anything changes.
    VolumePaletteEntry shifted[64];
    VolumePalette records = records_;
    for (int label = 0; label < 64; ++label)
    {
        if (!records_.entries[label])
            continue;
        shifted[label] = *records_.entries[label];
        records.entries[label] = &shifted[label];
        if (!shifted[label].visible)
            continue;
        shifted[label].rangeStart = Shifted(shifted[label].rangeStart, shift);
        shifted[label].rangeEnd = Shifted(shifted[label].rangeEnd, shift);
    }
    sums_ = AddUp(records);
    for (int label = 0; label < 64; ++label)
    {
        if (records.entries[label])
            *records_.entries[label] = shifted[label];
        records.entries[label] = records_.entries[label];
    }
    records_ = records;
}

void PaletteTables::Clear()
{
    records_ = {};
    sums_ = {};
    for (std::unique_ptr<Table>& table : tables_)
        table.reset();
}

std::unique_ptr<PaletteTables::Table> PaletteTables::TableOf(const KsPalette& palette)
{
    const std::vector<KsPalettePoint> points = SortedPoints(palette);
    if (points.size() < 2)
        return nullptr;
    auto table = std::make_unique<Table>();
    VolumePaletteEntry& entry = table->entry;
    entry.rangeStart = points.front().value;
    entry.rangeEnd = points.back().value;
    entry.size = entry.rangeEnd - entry.rangeStart + 1;
    table->colours.resize(size_t(entry.size) * 3);
    table->opacities.resize(size_t(entry.size));
    for (size_t n = 0; n + 1 < points.size(); ++n)
    {
        const KsPalettePoint &a = points[n], &b = points[n + 1];
        for (int value = a.value; value <= b.value; ++value)
        {
            const size_t index = size_t(value - entry.rangeStart);
            const float t = float(value - a.value) / float(b.value - a.value);
            table->opacities[index] = a.opacity + (b.opacity - a.opacity) * t;
            for (int channel = 0; channel < 3; ++channel)
                table->colours[3 * index + size_t(channel)] = ChannelBetween(a.colour, b.colour, 16 - 8 * channel, t);
        }
    }
    entry.colours = table->colours.data();
    entry.opacities = table->opacities.data();
    entry.opacity = palette.opacity;
    entry.visible = palette.visible;
    std::copy_n(palette.shading, 3, entry.shading);
    return table;
}

// The sums of the visible labels' opacities for the records of all entries, to which it also writes where they are.
std::vector<float> PaletteTables::AddUp(VolumePalette& records)
{
    int64_t low = std::numeric_limits<int64_t>::max(), high = std::numeric_limits<int64_t>::min();
    for (const VolumePaletteEntry* entry : records.entries)
    {
        if (!entry || !entry->visible)
            continue;
        low = std::min<int64_t>(low, entry->rangeStart);
        high = std::max<int64_t>(high, entry->rangeEnd);
    }
    std::vector<float> sums;
    if (high > low && high - low < kLongestSum)
    {
        sums.resize(size_t(high - low + 1));
        for (const VolumePaletteEntry* entry : records.entries)
        {
            if (!entry || !entry->visible)
                continue;
            // A range that has met the limits of its integers holds fewer values than the table.
            const int64_t count = std::min<int64_t>(entry->size, int64_t(entry->rangeEnd) - entry->rangeStart + 1);
            float* const sum = sums.data() + (entry->rangeStart - low);
            for (int64_t n = 0; n < count; ++n)
                sum[n] += entry->opacities[n];
        }
    }
    records.sumStart = sums.empty() ? 0 : int32_t(low);
    records.sumLength = int32_t(sums.size());
    records.opacitySums = sums.empty() ? nullptr : sums.data();
    return sums;
}
} // namespace corvane::engine3d
