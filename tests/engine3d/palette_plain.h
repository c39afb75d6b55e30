#ifndef CORVANE_TESTS_ENGINE3D_PALETTE_PLAIN_H
#define CORVANE_TESTS_ENGINE3D_PALETTE_PLAIN_H

#include "corvane/Records.h"
#include "tests/core/random.h"

#include <map>
#include <optional>
#include <vector>

// Lookup tables once more, one value at a time, to hold the library's against. Single precision and the order of
// operations are part of the result.
namespace corvane::tests
{
// A transfer function with points of its own.
struct TestTransfer
{
    explicit TestTransfer(std::vector<KsPalettePoint> points);
    TestTransfer(const TestTransfer& other);
    TestTransfer& operator=(const TestTransfer&) = delete;

    std::vector<KsPalettePoint> points;
    KsPalette palette;
};

// The one that a newly loaded volume gets.
TestTransfer DefaultTransfer();

// Points in any order, some with the same value, some colours and opacities beyond what they should be.
TestTransfer RandomTransfer(Random& random, int least, int most);

// One label's tables with their record.
struct PlainTable
{
    VolumePaletteEntry entry = {};
    std::vector<uint8_t> colours;
    std::vector<float> opacities;
};

// Nothing for fewer than two different values.
std::optional<PlainTable> PlainTableOf(const KsPalette& palette);

// The tables of several labels and the sum of those that are visible when Sum is called.
class PlainTables
{
public:
    PlainTables() = default;
    PlainTables(const PlainTables&) = delete;
    PlainTables& operator=(const PlainTables&) = delete;

    bool Add(const KsPalette& palette, int label);
    void Sum();
    VolumePaletteEntry& Entry(int label) { return tables_.at(label).entry; }
    const VolumePalette& Records();

private:
    std::map<int, PlainTable> tables_;
    std::vector<float> sums_;
    VolumePalette records_ = {};
};

// The same numbers in the same ranges, bit for bit; where the tables lie does not matter.
void ExpectSameEntry(const VolumePaletteEntry& entry, const VolumePaletteEntry& expected);
void ExpectSameSums(const VolumePalette& palette, const VolumePalette& expected);
void ExpectSameTables(const VolumePalette& palette, const VolumePalette& expected);
} // namespace corvane::tests

#endif
