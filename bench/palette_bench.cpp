#include "bench_volume.h"
#include "engine3d/palette_tables.h"

#include <benchmark/benchmark.h>

// Lookup tables of one label and the sum over all labels, as every change of a transfer function makes them. The unit
// of work is a stored value of the label's range.
namespace corvane::bench
{
namespace
{
void Build(benchmark::State& state, int16_t first, int16_t last, int labels)
{
    KsPalettePoint points[] = {
        {first, 0xFF1111, 0.05f}, {264, 0xFFFF75, 0.17f}, {336, 0xFFFFFF, 0.28f}, {last, 0xFFF5F5, 0.62f}};
    KsPalette palette;
    palette.points = points;
    palette.pointCount = 4;
    engine3d::PaletteTables tables;
    for (int label = 0; label < labels; ++label)
        tables.Build(palette, label);
    for ([[maybe_unused]] const auto iteration : state)
    {
        tables.Build(palette, 0);
        benchmark::DoNotOptimize(tables.Records().opacitySums);
    }
    state.counters["values/s"] =
        benchmark::Counter(double(state.iterations()) * (last - first + 1), benchmark::Counter::kIsRate);
}

void Register(const char* name, int16_t first, int16_t last, int labels)
{
    benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { Build(state, first, last, labels); })
        ->Unit(benchmark::kMicrosecond);
}
} // namespace

void RegisterPalettes()
{
    Register("palette/build/1304_values", 145, 1448, 1);
    Register("palette/build/65536_values", -32768, 32767, 1);
    Register("palette/build/65536_values/64_labels", -32768, 32767, 64);
}
} // namespace corvane::bench
