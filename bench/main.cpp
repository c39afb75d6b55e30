#include "bench_volume.h"
#include "host/error.h"
#include "host/read_text.h"

#include <benchmark/benchmark.h>

#include <cstdio>

// corvane_bench [Google Benchmark options] [INPUT [EYE]]
//   EYE  the voxel I,J,K from which the endoscopies look, the middle of the volume when left out
int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    std::optional<corvane::core::Vec3d> eye;
    if (argc == 3)
    {
        const auto voxel = corvane::host::ParseNumbers(argv[2], ',');
        if (voxel && voxel->size() == 3)
            eye = {(*voxel)[0], (*voxel)[1], (*voxel)[2]};
    }
    if (argc > 3 || (argc == 3 && !eye))
    {
        std::fprintf(stderr, "corvane_bench: '%s' is too much, or no voxel I,J,K\n", argv[argc - 1]);
        return 2;
    }
    try
    {
        const corvane::bench::BenchVolume volume(argc > 1 ? argv[1] : "phantom:", eye);
        corvane::bench::RegisterBlockTree(volume);
        corvane::bench::RegisterPlanes(volume);
        corvane::bench::RegisterRenderings(volume);
        corvane::bench::RegisterProjections(volume);
        corvane::bench::RegisterCutting();
        corvane::bench::RegisterPalettes();
        corvane::bench::RegisterFirstFrame(volume);
        corvane::bench::RegisterGrowth(volume);
        benchmark::RunSpecifiedBenchmarks();
    }
    catch (const corvane::host::Error& error)
    {
        std::fprintf(stderr, "corvane_bench: %s\n", error.what());
        return int(error.Kind());
    }
    return 0;
}
