#include "project_rays.h"

#include "nearest_voxels.h"
#include "parallel_rays.h"

namespace corvane::KERNEL_ISA
{
namespace
{
using render3d::ParallelRays;
using render3d::Scene;

constexpr int32_t kBackground = -1024;
constexpr int32_t kLeastAveraged = -1248; // what lies below is padding outside a scanner's field of view
constexpr float kCoarseSteps = 10.0f;

// Calls search(pack, pixels, count) for the rays of the pixels [first, end), a pack at a time; where a whole pack
// misses the volume the pixels get the value `missed`.
template <class Search>
void ForEachPack(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end, int16_t* values,
                 int32_t missed, const Search& search)
{
    InStrips(rays.columns, first, end,
             [&](PixelRun run)
             {
                 for (; run.column < run.endColumn; run.column += kLanes)
                 {
                     int16_t* const pixels = values + run.row * rays.columns + run.column;
                     const int64_t left = run.endColumn - run.column;
                     const int count = left < kLanes ? int(left) : kLanes;
                     const ParallelPack pack = RaysFrom(scene, rays, run);
                     if (Any(pack.live))
                         search(pack, pixels, count);
                     else
                         for (int lane = 0; lane < count; ++lane)
                             pixels[lane] = int16_t(missed);
                 }
             });
}

typedef int16_t PairPack __attribute__((vector_size(4 * KERNEL_LANES))); // two neighbouring voxels for each lane

// What makes a projection of the highest values, and of the lowest. `Improves` is never true for an equal value, `Can`
// is: a cell that only reaches the best value so far is still walked step by step.
struct Highest
{
    static constexpr int32_t kStart = kBackground;
    template <class Pack>
    static Pack Improves(Pack value, Pack best)
    {
        return value > best;
    }
    static IntPack Can(IntPack extreme, IntPack best) { return extreme >= best; }
    static int32_t Extreme(const core::BlockNode& node) { return node.max; }
    static int32_t Extreme(const ParallelRays& rays) { return rays.highest; }
};

struct Lowest
{
    static constexpr int32_t kStart = INT16_MAX;
    template <class Pack>
    static Pack Improves(Pack value, Pack best)
    {
        return value < best;
    }
    static IntPack Can(IntPack extreme, IntPack best) { return extreme <= best; }
    static int32_t Extreme(const core::BlockNode& node) { return node.min; }
    static int32_t Extreme(const ParallelRays& rays) { return rays.lowest; }
};

template <class Kind>
IntPack Better(IntPack value, IntPack best)
{
    return Kind::Improves(value, best) ? value : best;
}

// The best of the nearest voxels at every tenth step: a first bound, so that most cells need not be sampled.
template <class Kind>
IntPack BestOfCoarsePass(const Scene& scene, const ParallelRays& rays, const ParallelPack& pack)
{
    IntPack best = IntPack{} + Kind::kStart, live = pack.live;
    VectorPack p = pack.entry.position;
    FloatPack distance = pack.entry.distance;
    const float length = kCoarseSteps * rays.stepLength;
    const core::Vec3f step = {kCoarseSteps * rays.step.x, kCoarseSteps * rays.step.y, kCoarseSteps * rays.step.z};
    while (Any(live))
    {
        const NearestVoxels voxels = SampleNearest(scene, live, p);
        best = voxels.counted ? Better<Kind>(voxels.values, best) : best;
        const FloatPack next = distance + length;
        live &= (next > distance) & (next < pack.exitDistance);
        distance = next;
        p = {p.x + step.x, p.y + step.y, p.z + step.z};
    }
    return best;
}

// Where voxels stand in the block tree.
struct LeafPack
{
    IntPack block, leaf; // numbers; 0, which every tree has, for lanes that are not wanted
};

inline IntPack SpreadCell(IntPack voxel)
{
    const IntPack cell = voxel >> 1;
    return (cell & 1) | ((cell & 2) << 2) | ((cell & 4) << 4);
}

inline LeafPack LeavesAt(const core::BlockView& blocks, IntPack wanted, IntPack i, IntPack j, IntPack k)
{
    const IntPack block = (k >> 4) * blocks.blocksPerLayer + (j >> 4) * blocks.blocksX + (i >> 4);
    const IntPack leaf = SpreadCell(i) | (SpreadCell(j) << 1) | (SpreadCell(k) << 2);
    return {block & wanted, leaf & wanted};
}

// The best value in the nodes of a level around leaves.
template <class Kind>
IntPack ExtremesAt(const core::BlockView& blocks, const LeafPack& leaves, int level)
{
    const IntPack node = leaves.leaf >> (3 * (3 - level));
    IntPack extremes;
    for (int lane = 0; lane < kLanes; ++lane)
        extremes[lane] = Kind::Extreme(blocks.levels[4 * int64_t(leaves.block[lane]) + level][node[lane]]);
    return extremes;
}

// The largest cells around leaves of no interest that are of no interest either. A cell holds what its parts hold, so
// the search ends where it fails.
template <class Kind>
IntPack EdgesOfIdleCells(const core::BlockView& blocks, const LeafPack& leaves, IntPack idle, IntPack best)
{
    IntPack edge = IntPack{} + 2;
    for (int level = 2; level >= 0 && Any(idle); --level)
    {
        idle &= ~Kind::Can(ExtremesAt<Kind>(blocks, leaves, level), best);
        edge = idle ? IntPack{} + (16 >> level) : edge;
    }
    return edge;
}

inline FloatPack ExitAlongAxis(FloatPack start, float along, IntPack voxel, IntPack edge, FloatPack exit)
{
    const FloatPack low = ToFloat(voxel & -edge);
    if (along > kBoundsExit)
        return Smaller((low + ToFloat(edge) - start) / along, exit);
    return along < -kBoundsExit ? Smaller((low - start) / along, exit) : exit;
}

// The distance at which rays leave the cells of given edges around voxels.
inline FloatPack ExitOfCells(const ParallelRays& rays, const ParallelPack& pack, IntPack i, IntPack j, IntPack k,
                             IntPack edge)
{
    FloatPack exit = FloatPack{} + kFarthestCell;
    exit = ExitAlongAxis(pack.start.x, rays.direction.x, i, edge, exit);
    exit = ExitAlongAxis(pack.start.y, rays.direction.y, j, edge, exit);
    return ExitAlongAxis(pack.start.z, rays.direction.z, k, edge, exit);
}

// Samples the wanted lanes. A sample counts only if one of the eight voxels around it is better than what there is:
// rounding alone betters nothing.
template <class Kind>
IntPack SampleBest(const Scene& scene, IntPack wanted, const VectorPack& p, IntPack best)
{
    // Lanes that are not wanted sample where every volume that rays enter has its neighbours.
    const FloatPack somewhere = FloatPack{} + 1.0f;
    const FloatPack x = wanted ? p.x : somewhere, y = wanted ? p.y : somewhere, z = wanted ? p.z : somewhere;
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    const CellVoxels cell = LoadCell(scene.volume, i, j, k);
    const PairPack bound = PairPack((best & 0xFFFF) | (best << 16));
    const PairPack better = Kind::Improves(PairPack(cell.near0), bound) | Kind::Improves(PairPack(cell.near1), bound) |
                            Kind::Improves(PairPack(cell.far0), bound) | Kind::Improves(PairPack(cell.far1), bound);
    wanted &= IntPack(better) != 0;
    if (!Any(wanted))
        return best;
    const FloatPack value = Interpolate(cell, x - ToFloat(i), y - ToFloat(j), z - ToFloat(k));
    return wanted ? Better<Kind>(ToInt(value + 0.5f), best) : best;
}

// Walks rays through the block tree: in each round a ray takes a step to a sample, or jumps over a cell that cannot
// better what it has. Not inlined, so that its loop has all registers.
template <class Kind>
__attribute__((noinline)) IntPack BestOfPack(const Scene& scene, const ParallelRays& rays, const ParallelPack& pack)
{
    const core::VolumeView& volume = scene.volume;
    const float sizeX = float(volume.nx), sizeY = float(volume.ny), sizeZ = float(volume.nz);
    const VectorPack nudge = NudgeOf(InAllLanes(rays.direction), scene.inverseRelativeSpacing);
    IntPack best = BestOfCoarsePass<Kind>(scene, rays, pack);
    IntPack live = pack.live, steps = {}, sampled = {}, jumpsLeft = pack.entry.jumpsLeft;
    VectorPack p = pack.entry.position;
    FloatPack distance = pack.entry.distance;
    for (;;)
    {
        // A ray that has the best value of the volume is done.
        live &= Kind::Improves(IntPack{} + Kind::Extreme(rays), best);
        if (!Any(live))
            return best;
        const IntPack inside =
            live & (p.x >= 0.0f) & (p.x < sizeX) & (p.y >= 0.0f) & (p.y < sizeY) & (p.z >= 0.0f) & (p.z < sizeZ);
        const IntPack i = ToInt(p.x), j = ToInt(p.y), k = ToInt(p.z);
        const LeafPack leaves = LeavesAt(scene.blocks, inside, i, j, k);
        const IntPack extremes = ExtremesAt<Kind>(scene.blocks, leaves, 3);

        IntPack wanted = sampled & inside & Kind::Improves(extremes, best);
        if (Any(wanted))
        {
            wanted &= (p.x < sizeX - 1.0f) & (p.y < sizeY - 1.0f) & (p.z < sizeZ - 1.0f);
            wanted = ShownLanes(scene, wanted, ToInt(p.x + 0.5f), ToInt(p.y + 0.5f), ToInt(p.z + 0.5f));
            best = SampleBest<Kind>(scene, wanted, p, best);
        }

        IntPack asking = live & (steps <= 0);
        live &= ~asking | (inside & (distance < pack.exitDistance));
        asking &= live;
        const IntPack found = asking & Kind::Can(extremes, best);
        const IntPack idle = asking & ~found;
        FloatPack exit = ExitOfCells(rays, pack, i, j, k, IntPack{} + 2);
        steps = found ? StepsUntil(exit, distance, FloatPack{} + rays.stepLength) : steps;
        const FloatPack stepped = distance + rays.stepLength;
        // On a scale where floating-point numbers lie too far apart for a step to get ahead, the ray ends.
        live &= ~found | (stepped > distance);
        if (Any(idle))
            exit = ExitOfCells(rays, pack, i, j, k, EdgesOfIdleCells<Kind>(scene.blocks, leaves, idle, best));

        // A jump that would not get ahead becomes a step that is not sampled.
        const IntPack jumps = idle & (exit + kSkipNudge > distance);
        const FloatPack next = jumps ? exit + kSkipNudge : stepped;
        live &= idle ? (next > distance) & (jumpsLeft > 0) : next <= pack.exitDistance;
        jumpsLeft += idle; // a set lane is -1
        sampled = ~idle;
        steps -= 1;
        distance = next;
        p = {jumps ? pack.start.x + exit * rays.direction.x + nudge.x : p.x + rays.step.x,
             jumps ? pack.start.y + exit * rays.direction.y + nudge.y : p.y + rays.step.y,
             jumps ? pack.start.z + exit * rays.direction.z + nudge.z : p.z + rays.step.z};
    }
}

template <class Kind>
void ProjectBest(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end, int16_t* values)
{
    ForEachPack(scene, rays, first, end, values, Kind::kStart,
                [&](const ParallelPack& pack, int16_t* pixels, int count)
                {
                    const IntPack best = BestOfPack<Kind>(scene, rays, pack);
                    for (int lane = 0; lane < count; ++lane)
                        pixels[lane] = int16_t(best[lane]);
                });
}

// The sums and the number of the values that count.
struct Sums
{
    int64_t sums[kLanes] = {}, counts[kLanes] = {};
};

// Not inlined, as above.
__attribute__((noinline)) Sums SumsOfPack(const Scene& scene, const ParallelRays& rays, const ParallelPack& pack)
{
    constexpr int kMostAdded = 1 << 15; // stored values whose sum fits 32 bits
    Sums total;
    IntPack live = pack.live;
    VectorPack p = pack.entry.position;
    FloatPack distance = pack.entry.distance;
    while (Any(live))
    {
        IntPack sums = {}, counts = {};
        for (int added = 0; added < kMostAdded && Any(live); ++added)
        {
            const NearestVoxels voxels = SampleNearest(scene, live, p);
            const IntPack counted = voxels.counted & (voxels.values >= kLeastAveraged);
            sums += voxels.values & counted;
            counts -= counted; // a set lane is -1
            const FloatPack next = distance + rays.stepLength;
            live &= (next > distance) & (next < pack.exitDistance);
            distance = next;
            p = {p.x + rays.step.x, p.y + rays.step.y, p.z + rays.step.z};
        }
        for (int lane = 0; lane < kLanes; ++lane)
        {
            total.sums[lane] += sums[lane];
            total.counts[lane] += counts[lane];
        }
    }
    return total;
}
} // namespace

void ProjectMaximum(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end, int16_t* values)
{
    ProjectBest<Highest>(scene, rays, first, end, values);
}

void ProjectMinimum(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end, int16_t* values)
{
    ProjectBest<Lowest>(scene, rays, first, end, values);
    for (int64_t ray = first; ray < end; ++ray)
        if (values[ray] == Lowest::kStart)
            values[ray] = kBackground; // no sample counted
}

void ProjectAverage(const Scene& scene, const ParallelRays& rays, int64_t first, int64_t end, int16_t* values)
{
    ForEachPack(scene, rays, first, end, values, kBackground,
                [&](const ParallelPack& pack, int16_t* pixels, int count)
                {
                    const Sums total = SumsOfPack(scene, rays, pack);
                    for (int lane = 0; lane < count; ++lane)
                    {
                        const int64_t mean =
                            total.counts[lane] > 0 ? total.sums[lane] / total.counts[lane] : kBackground;
                        pixels[lane] = int16_t(mean < kBackground ? kBackground : mean);
                    }
                });
}
} // namespace corvane::KERNEL_ISA
