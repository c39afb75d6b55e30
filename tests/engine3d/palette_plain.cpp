#include "palette_plain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace corvane::tests
{
TestTransfer::TestTransfer(std::vector<KsPalettePoint> given) : points(std::move(given))
{
    palette.pointCount = int32_t(points.size());
    palette.points = points.data();
}

TestTransfer::TestTransfer(const TestTransfer& other) : points(other.points), palette(other.palette)
{
    palette.points = points.data();
}

TestTransfer DefaultTransfer()
{
    return TestTransfer(
        {{145, 0xFF1111, 0.05f}, {264, 0xFFFF75, 0.17f}, {336, 0xFFFFFF, 0.28f}, {1448, 0xFFF5F5, 0.62f}});
}

TestTransfer RandomTransfer(Random& random, int least, int most)
{
    std::vector<KsPalettePoint> points;
    for (int count = random.Between(2, 12); count > 0; --count)
    {
        const int16_t value =
            random.Below(4) == 0 && !points.empty() ? points.back().value : int16_t(random.Between(least, most));
        const uint32_t colour = uint32_t(random.Below(256)) << 24 | uint32_t(random.Below(1 << 24));
        points.push_back({value, colour, float(random.Real(-0.1, 1.2))});
    }
    TestTransfer transfer(std::move(points));
    transfer.palette.visible = random.Below(4) != 0;
    transfer.palette.opacity = float(random.Real(0, 1));
    for (float& share : transfer.palette.shading)
        share = float(random.Real(0, 1));
    return transfer;
}

std::optional<PlainTable> PlainTableOf(const KsPalette& palette)
{
    std::vector<KsPalettePoint> sorted;
    for (int n = 0; n < palette.pointCount; ++n)
    {
        const KsPalettePoint& point = palette.points[n];
        bool listed = false;
        size_t place = sorted.size();
        for (size_t other = sorted.size(); other-- > 0;)
        {
            listed = listed || sorted[other].value == point.value;
            if (sorted[other].value > point.value)
                place = other;
        }
        if (!listed)
            sorted.insert(sorted.begin() + ptrdiff_t(place), point);
    }
    if (sorted.size() < 2)
        return std::nullopt;

    PlainTable table;
    VolumePaletteEntry& entry = table.entry;
    entry.rangeStart = sorted.front().value;
    entry.rangeEnd = sorted.back().value;
    entry.size = entry.rangeEnd - entry.rangeStart + 1;
    entry.opacity = palette.opacity;
    entry.visible = palette.visible;
    std::copy_n(palette.shading, 3, entry.shading);
    for (int value = entry.rangeStart; value <= entry.rangeEnd; ++value)
    {
        size_t upper = 1;
        while (upper + 1 < sorted.size() && sorted[upper].value <= value)
            ++upper; // at a point the segment that starts there
        const KsPalettePoint &a = sorted[upper - 1], &b = sorted[upper];
        const float t = float(value - a.value) / float(b.value - a.value);
        table.opacities.push_back(a.opacity + (b.opacity - a.opacity) * t);
        for (const int shift : {16, 8, 0})
        {
            const float from = float((a.colour >> shift) & 0xFF), to = float((b.colour >> shift) & 0xFF);
            table.colours.push_back(uint8_t(from + (to - from) * t + 0.5f));
        }
    }
    entry.colours = table.colours.data();
    entry.opacities = table.opacities.data();
    return table;
}

bool PlainTables::Add(const KsPalette& palette, int label)
{
    std::optional<PlainTable> table = PlainTableOf(palette);
    if (!table)
        return false;
    tables_[label] = std::move(*table); // its buffers move along
    Sum();
    return true;
}

void PlainTables::Sum()
{
    sums_.clear();
    records_.sumStart = records_.sumLength = 0;
    records_.opacitySums = nullptr;
    int least = 0, most = -1;
    for (const auto& [label, table] : tables_)
        if (table.entry.visible)
        {
            const bool first = most < least;
            least = first ? table.entry.rangeStart : std::min(least, table.entry.rangeStart);
            most = first ? table.entry.rangeEnd : std::max(most, table.entry.rangeEnd);
        }
    if (most <= least)
        return;
    for (int value = least; value <= most; ++value)
    {
        float sum = 0;
        for (const auto& [label, table] : tables_)
            if (table.entry.visible && value >= table.entry.rangeStart && value <= table.entry.rangeEnd)
                sum += table.opacities[size_t(value - table.entry.rangeStart)];
        sums_.push_back(sum);
    }
    records_.sumStart = least;
    records_.sumLength = int32_t(sums_.size());
    records_.opacitySums = sums_.data();
}

const VolumePalette& PlainTables::Records()
{
    std::fill_n(records_.entries, 64, nullptr);
    for (auto& [label, table] : tables_)
        records_.entries[label] = &table.entry;
    return records_;
}

void ExpectSameEntry(const VolumePaletteEntry& entry, const VolumePaletteEntry& expected)
{
    EXPECT_EQ(entry.rangeStart, expected.rangeStart);
    EXPECT_EQ(entry.rangeEnd, expected.rangeEnd);
    EXPECT_EQ(entry.opacity, expected.opacity);
    EXPECT_EQ(entry.visible, expected.visible);
    EXPECT_TRUE(std::equal(expected.shading, expected.shading + 3, entry.shading));
    ASSERT_EQ(entry.size, expected.size);
    const size_t size = size_t(expected.size);
    EXPECT_EQ(std::memcmp(entry.colours, expected.colours, 3 * size), 0);
    EXPECT_EQ(std::memcmp(entry.opacities, expected.opacities, size * sizeof(float)), 0);
}

void ExpectSameSums(const VolumePalette& palette, const VolumePalette& expected)
{
    ASSERT_EQ(palette.opacitySums != nullptr, expected.opacitySums != nullptr);
    ASSERT_EQ(palette.sumLength, expected.sumLength);
    if (!expected.opacitySums)
        return;
    EXPECT_EQ(palette.sumStart, expected.sumStart);
    EXPECT_EQ(std::memcmp(palette.opacitySums, expected.opacitySums, size_t(expected.sumLength) * sizeof(float)), 0);
}

void ExpectSameTables(const VolumePalette& palette, const VolumePalette& expected)
{
    for (int label = 0; label < 64; ++label)
    {
        SCOPED_TRACE(testing::Message() << "label " << label);
        ASSERT_EQ(palette.entries[label] != nullptr, expected.entries[label] != nullptr);
        if (expected.entries[label])
            ExpectSameEntry(*palette.entries[label], *expected.entries[label]);
    }
    ExpectSameSums(palette, expected);
}
} // namespace corvane::tests
