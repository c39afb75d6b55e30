#include "bench_volume.h"
#include "host/error.h"

#include <benchmark/benchmark.h>

#include <cstdio>

// corvane_bench [Google Benchmark options] [INPUT]
int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc > 2)
    {
        std::fprintf(stderr, "corvane_bench: one input at most, not '%s'\n", argv[2]);
        return 2;
    }
    try
    {
        const corvane::bench::BenchVolume volume(argc == 2 ? argv[1] : "phantom:");
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
