#include "bench_volume.h"
#include "engine3d/cutting.h"
#include "engine3d/palette_tables.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <vector>

// Selecting what a drawn region covers and cutting it away, in 512 x 512 x 300 voxels of label 0. The unit of work is a
// voxel; voxels' values are not looked at. CPU is the time of all threads together.
namespace corvane::bench
{
namespace
{
constexpr uint32_t kSizeX = 512, kSizeY = 512, kSizeZ = 300;

struct Labels
{
    explicit Labels(uint8_t filling = 0) : bytes(size_t(kSizeX) * kSizeY * kSizeZ, filling)
    {
        for (size_t k = 0; k < kSizeZ; ++k)
            slices.push_back(bytes.data() + k * kSizeX * kSizeY);
        mark.slices = slices.data();
    }

    std::vector<uint8_t> bytes;
    std::vector<uint8_t*> slices;
    KsVolumeMark mark = {nullptr, kSizeX, kSizeY, kSizeZ};
};

// A head's scan, and a disc drawn on an oblique picture of it.
struct Cut
{
    Cut()
    {
        KsPalettePoint points[] = {{145, 0xFF1111, 0.05f}, {1448, 0xFFF5F5, 0.62f}};
        KsPalette palette;
        palette.points = points;
        palette.pointCount = 2;
        tables.Build(palette, 0);
        for (int row = 0; row < 512; ++row)
            for (int column = 0; column < 512; ++column)
                drawn[size_t(512) * size_t(row) + size_t(column)] =
                    (row - 256) * (row - 256) + (column - 256) * (column - 256) < 128 * 128;
    }

    KsVolumeData volume = {nullptr,   kSizeX,    kSizeY,    kSizeZ,   {0.5f, 0.5f, 0.8f},
                           {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    engine3d::PaletteTables tables;
    Labels labels, selection;
    std::vector<uint8_t> drawn = std::vector<uint8_t>(size_t(512) * 512);
    // 300 mm wide, turned by 36.87 degrees about z; its middle before the volume's.
    KsImageMark region = {drawn.data(), {512, 512, 0.6, 0.6, {0.8, 0.6, 0}, {0, 0, -1}, {97.2, -65.6, 273.6}}};
};

void CountVoxels(benchmark::State& state)
{
    state.counters["voxels/s"] =
        benchmark::Counter(double(state.iterations()) * kSizeX * kSizeY * kSizeZ, benchmark::Counter::kIsRate);
    state.SetLabel("512 x 512 x 300");
}

void Fill(benchmark::State& state, double aside)
{
    const auto cut = std::make_unique<Cut>();
    cut->region.param.position[2] += aside;
    for ([[maybe_unused]] const auto iteration : state)
        engine3d::SelectCovered(cut->volume, cut->labels.mark, cut->tables.Records(), cut->region, 1,
                                cut->selection.mark);
    const std::vector<uint8_t>& selected = cut->selection.bytes;
    state.counters["selected"] = double(std::count(selected.begin(), selected.end(), 1));
    CountVoxels(state);
}

// One thread: half a slice at a time is too little to share out.
void FillAlone(benchmark::State& state)
{
    const auto cut = std::make_unique<Cut>();
    for ([[maybe_unused]] const auto iteration : state)
        for (uint32_t half = 0; half < 2 * kSizeZ; ++half)
        {
            const uint32_t slice = half / 2, firstRow = half % 2 * (kSizeY / 2);
            KsVolumeData volume = cut->volume;
            volume.sizeY = kSizeY / 2;
            volume.sizeZ = 1;
            volume.origin[1] = float(firstRow) * 0.5f;
            volume.origin[2] = float(slice) * 0.8f;
            const size_t first = size_t(half) * kSizeX * (kSizeY / 2);
            uint8_t *labels = cut->labels.bytes.data() + first, *selection = cut->selection.bytes.data() + first;
            engine3d::SelectCovered(volume, {&labels, kSizeX, kSizeY / 2, 1}, cut->tables.Records(), cut->region, 1,
                                    {&selection, kSizeX, kSizeY / 2, 1});
        }
    CountVoxels(state);
}

void Append(benchmark::State& state)
{
    const auto cut = std::make_unique<Cut>();
    engine3d::SelectCovered(cut->volume, cut->labels.mark, cut->tables.Records(), cut->region, 1, cut->selection.mark);
    for ([[maybe_unused]] const auto iteration : state)
        engine3d::CutSelected(cut->selection.mark, cut->labels.mark);
    CountVoxels(state);
}

void Register(const char* name, void (*run)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}
} // namespace

void RegisterCutting()
{
    Register("cut/fill/middle/one_thread", FillAlone);
    Register("cut/fill/middle", [](benchmark::State& state) { Fill(state, 0); });
    Register("cut/fill/missing", [](benchmark::State& state) { Fill(state, 1000); });
    Register("cut/append", Append);
}
} // namespace corvane::bench
