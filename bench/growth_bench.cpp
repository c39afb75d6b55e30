#include "bench_volume.h"
#include "core/fan_out.h"
#include "host/palette_presets.h"
#include "host/palette_tables.h"
#include "host/view.h"
#include "render3d/projection.h"
#include "render3d/volume_rendering.h"

#include <benchmark/benchmark.h>

#include <memory>

// How cost grows: with the size of the picture, with the size of the volume (the phantom, whatever the input) and with
// the number of workers. The unit of work is a pixel.
namespace corvane::bench
{
namespace
{
using render3d::ProjectionKind;

constexpr float kWhole = 10000.0f; // mm

// The volume, drawn with its default palette from the front so that its whole diagonal fits a square picture.
class Frames
{
public:
    explicit Frames(const BenchVolume& volume)
        : volume_(volume),
          tables_({{0, host::PaletteOf(*host::PresetOf("default", volume.volume), volume.volume.valueSlope,
                                       volume.volume.valueIntercept, double(volume.geometry.minSpacing))}})
    {
        render3d::LoadSlot(volume.records.Data(), {}, slot_);
        render3d::UpdateSlot(slot_, tables_.Records());
    }

    void Run(benchmark::State& state, bool rendering, int side) const
    {
        const core::Box& box = volume_.geometry.boundingBox;
        const PnImageParam plane =
            host::ViewPlaneOf(host::NamedView("anterior"), host::CornersOf(volume_.volume.grid), uint32_t(side),
                              uint32_t(side), double(core::Length(box.max - box.min)) / side);
        std::vector<uint32_t> pixels(size_t(side) * size_t(side));
        std::vector<int16_t> values(pixels.size());
        KsImageVAL image = {values.data(), plane};
        for ([[maybe_unused]] const auto iteration : state)
        {
            if (rendering)
                render3d::RenderVolume(slot_, tables_.Records(), {}, {pixels.data(), plane}, render3d::Kernels());
            else
                render3d::Project(ProjectionKind::Maximum, slot_, nullptr, kWhole, image);
            benchmark::ClobberMemory();
        }
        state.counters["pixels/s"] =
            benchmark::Counter(double(state.iterations()) * double(pixels.size()), benchmark::Counter::kIsRate);
        state.SetLabel(volume_.name);
    }

private:
    const BenchVolume& volume_;
    host::PaletteTables tables_;
    render3d::VolumeSlot slot_;
};

template <class Run>
void Register(const std::string& name, const Run& run)
{
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}
} // namespace

void RegisterGrowth(const BenchVolume& volume)
{
    const auto frames = std::make_shared<const Frames>(volume);
    for (const int side : {256, 512, 1024, 2048})
        for (const bool rendering : {true, false})
            Register(std::string("frame_size/") + (rendering ? "rendering/" : "maximum/") + std::to_string(side),
                     [frames, rendering, side](benchmark::State& state) { frames->Run(state, rendering, side); });
    // The same patient in ever smaller voxels. Made when it is its turn: the largest takes most of a gigabyte.
    for (const int edge : {64, 128, 256, 512})
        for (const bool rendering : {true, false})
            Register(std::string("volume_size/") + (rendering ? "rendering/" : "maximum/") + std::to_string(edge),
                     [rendering, edge](benchmark::State& state)
                     {
                         const std::string size = std::to_string(edge), spacing = std::to_string(320.0 / edge);
                         const BenchVolume phantom("phantom:size=" + size + "x" + size + "x" + size +
                                                   ",spacing=" + spacing + "x" + spacing + "x" + spacing);
                         Frames(phantom).Run(state, rendering, 512);
                     });
    for (const int workers : {1, 2, 4, 8, 16, 32, core::kMaxWorkerThreads})
        for (const bool rendering : {true, false})
            Register(std::string("workers/") + (rendering ? "rendering/" : "maximum/") + std::to_string(workers),
                     [frames, rendering, workers](benchmark::State& state)
                     {
                         core::LimitWorkers(workers);
                         frames->Run(state, rendering, 512);
                         core::LimitWorkers(core::kMaxWorkerThreads);
                     });
}
} // namespace corvane::bench
