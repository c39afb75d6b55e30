#include "bench_volume.h"
#include "host/palette_presets.h"
#include "host/palette_tables.h"
#include "host/view.h"
#include "render3d/endoscopy.h"
#include "render3d/volume_rendering.h"
#include "sample_count.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

// Volume renderings and endoscopies with the default palette, and one in air, on all workers. The unit of work is a
// sample: a place on a ray, in a cell that can be seen, where the volume is interpolated. CPU is the time of all
// threads together, which is what one core would take; Time is that of the machine's cores.
namespace corvane::bench
{
namespace
{
// What borders on air, whatever it is.
host::TransferFunction SurfaceOfAir()
{
    host::TransferFunction function;
    function.opacities = {{-700, 0}, {-500, 0.35}, {-200, 0.6}, {1448, 0.62}};
    function.colours = {{-700, 0.75, 0.25, 0.19}, {-500, 1, 0.56, 0.44}, {-200, 1, 0.75, 0.69}, {1448, 1, 0.96, 0.96}};
    function.holdEnds = false;
    return function;
}

using Draw = std::function<void(const render3d::KernelTable& kernels, std::vector<uint32_t>& pixels)>;

// The volume as a renderer holds it, ready to draw.
struct Loaded
{
    Loaded(const BenchVolume& volume, const host::TransferFunction& function)
        : tables({{0, host::PaletteOf(function, volume.volume.valueSlope, volume.volume.valueIntercept,
                                      double(volume.geometry.minSpacing))}})
    {
        render3d::LoadSlot(volume.records.Data(), {}, slot);
        render3d::UpdateSlot(slot, tables.Records());
    }

    host::PaletteTables tables;
    render3d::VolumeSlot slot;
};

void Run(benchmark::State& state, const Draw& draw, const render3d::KernelTable& kernels, int side,
         const std::string& name)
{
    std::vector<uint32_t> pixels(size_t(side) * size_t(side));
    for ([[maybe_unused]] const auto iteration : state)
    {
        draw(kernels, pixels);
        benchmark::DoNotOptimize(pixels.data());
    }
    const RayCount count = CountSamples([&](const render3d::KernelTable& counting) { draw(counting, pixels); });
    const auto rate = [&](int64_t perFrame)
    { return benchmark::Counter(double(state.iterations()) * double(perFrame), benchmark::Counter::kIsRate); };
    state.counters["samples"] = double(count.samples);
    state.counters["shaded"] = double(count.shaded);
    state.counters["rays/s"] = rate(count.rays);
    state.counters["samples/s"] = rate(count.samples);
    state.SetLabel(name);
}

// Parallel rays; the whole diagonal of the volume fits the picture, magnified by `zoom`.
Draw DrawView(const BenchVolume& volume, std::shared_ptr<const Loaded> loaded, const host::View& view, double zoom,
              int side)
{
    const host::Corners corners = host::CornersOf(volume.volume.grid);
    const core::Box& box = volume.geometry.boundingBox;
    const double diagonal = double(core::Length(box.max - box.min));
    const PnImageParam plane = host::ViewPlaneOf(view, corners, uint32_t(side), uint32_t(side), diagonal / zoom / side);
    return [loaded = std::move(loaded), plane](const render3d::KernelTable& kernels, std::vector<uint32_t>& pixels) {
        render3d::RenderVolume(loaded->slot, loaded->tables.Records(), {}, {pixels.data(), plane}, kernels);
    };
}

// Backwards and a little down, through 90 degrees.
Draw DrawEndoscopy(const BenchVolume& volume, std::shared_ptr<const Loaded> loaded, int side)
{
    const core::Vec3f eye = volume.eye;
    const KsViewPoint view = {{eye.x, eye.y, eye.z}, {0.0f, 0.958f, -0.287f}, {0, 0, 1}};
    PnImageParam plane = {};
    plane.rows = plane.columns = uint32_t(side);
    render3d::PlaceEndoscopy(view, 90.0f, volume.geometry.minSpacing, plane);
    return [loaded = std::move(loaded), plane, eye](const render3d::KernelTable& kernels, std::vector<uint32_t>& pixels)
    {
        render3d::RenderEndoscopy(loaded->slot, loaded->tables.Records(), eye, {pixels.data(), plane}, kernels);
    };
}
} // namespace

void RegisterRenderings(const BenchVolume& volume)
{
    const auto loaded = std::make_shared<const Loaded>(volume, *host::PresetOf("default", volume.volume));
    const auto air = std::make_shared<const Loaded>(volume, SurfaceOfAir());
    const host::View front = host::NamedView("anterior");
    for (const int side : {256, 512, 1024, 2048})
    {
        const std::pair<const char*, Draw> frames[] = {
            {"volume_rendering/front", DrawView(volume, loaded, front, 1.0, side)},
            {"volume_rendering/oblique", DrawView(volume, loaded, host::Turned(front, 30, 20, 0), 1.0, side)},
            {"volume_rendering/zoom", DrawView(volume, loaded, front, 2.2, side)},
            {"endoscopy", DrawEndoscopy(volume, loaded, side)},
            {"endoscopy_air", DrawEndoscopy(volume, air, side)}};
        for (const auto& [frame, draw] : frames)
        {
            for (const render3d::KernelTable* kernels : render3d::AvailableKernels())
            {
                const std::string name =
                    std::string(frame) + "/" + kernels->instructionSet + "/" + std::to_string(side);
                benchmark::RegisterBenchmark(name.c_str(),
                                             [&volume, draw = draw, kernels, side](benchmark::State& state)
                                             { Run(state, draw, *kernels, side, volume.name); })
                    ->Unit(benchmark::kMillisecond)
                    ->MeasureProcessCPUTime()
                    ->UseRealTime();
            }
        }
    }
}
} // namespace corvane::bench
