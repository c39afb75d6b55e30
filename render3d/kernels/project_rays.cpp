#include "project_rays.h"

#include "core/simd/sampling.h"
#include "labels.h"
#include "ray_walk.h"

namespace corvane::KERNEL_ISA
{
namespace
{
using render3d::RayBatch;
using render3d::Scene;

constexpr int32_t kBackground = -1024;
constexpr int32_t kLeastAveraged = -1248; // what lies below is padding outside a scanner's field of view
constexpr float kCoarseSteps = 10.0f;

// What makes a projection of the highest values, and of the lowest. `Improves` is never true for an equal value, `Can`
// is: a cell that only reaches the best value so far is still sampled.
struct Highest
{
    static constexpr int32_t kStart = kBackground;
    static IntPack Improves(IntPack value, IntPack best) { return value > best; }
    static bool Can(const core::BlockNode& node, int32_t best) { return node.max >= best; }
};

struct Lowest
{
    static constexpr int32_t kStart = INT16_MAX;
    static IntPack Improves(IntPack value, IntPack best) { return value < best; }
    static bool Can(const core::BlockNode& node, int32_t best) { return node.min <= best; }
};

template <class Kind>
IntPack Better(IntPack value, IntPack best)
{
    return Kind::Improves(value, best) ? value : best;
}

// The lanes of a batch that have a ray.
IntPack LiveLanes(const RayBatch& batch, int first)
{
    IntPack live = {};
    for (int lane = 0; lane < kLanes && first + lane < batch.count; ++lane)
        live[lane] = batch.entryDistance[first + lane] < batch.exitDistance[first + lane] ? -1 : 0;
    return live;
}

// The wanted lanes whose nearest voxels have a label that is shown.
IntPack ShownLanes(const Scene& scene, IntPack wanted, IntPack i, IntPack j, IntPack k)
{
    if (!scene.labels.slices)
        return scene.palette->shown[0] ? wanted : IntPack{};
    for (int lane = 0; lane < kLanes; ++lane)
        if (wanted[lane] && !scene.palette->shown[LabelAt(scene.labels, i[lane], j[lane], k[lane])])
            wanted[lane] = 0;
    return wanted;
}

// The nearest voxels of places, and which of the wanted lanes have one inside the volume that is shown.
struct NearestVoxels
{
    IntPack counted;
    IntPack values; // of the counted lanes
};

NearestVoxels SampleNearest(const Scene& scene, IntPack wanted, const VectorPack& p)
{
    const core::VolumeView& volume = scene.volume;
    const FloatPack x = p.x + 0.5f, y = p.y + 0.5f, z = p.z + 0.5f;
    const IntPack inside = (p.x >= 0.0f) & (x < float(volume.nx)) & (p.y >= 0.0f) & (y < float(volume.ny)) &
                           (p.z >= 0.0f) & (z < float(volume.nz));
    const IntPack i = ToInt(x), j = ToInt(y), k = ToInt(z);
    NearestVoxels voxels = {ShownLanes(scene, wanted & inside, i, j, k), {}};
    const IntPack offset = j * volume.nx + i;
    for (int lane = 0; lane < kLanes; ++lane)
        if (voxels.counted[lane])
            voxels.values[lane] = volume.slices[k[lane]][offset[lane]];
    return voxels;
}

// The best of the nearest voxels at every tenth step: a first bound, so that most cells need not be sampled.
template <class Kind>
IntPack BestOfCoarsePass(const Scene& scene, const RayPack& rays, PlacePack place, IntPack live)
{
    IntPack best = IntPack{} + Kind::kStart;
    const FloatPack length = kCoarseSteps * rays.stepLength;
    const VectorPack step = {kCoarseSteps * rays.step.x, kCoarseSteps * rays.step.y, kCoarseSteps * rays.step.z};
    while (Any(live))
    {
        const NearestVoxels voxels = SampleNearest(scene, live, place.position);
        best = voxels.counted ? Better<Kind>(voxels.values, best) : best;
        const FloatPack next = place.distance + length;
        live &= (next > place.distance) & (next < rays.exitDistance);
        place.distance = next;
        place.position = {place.position.x + step.x, place.position.y + step.y, place.position.z + step.z};
    }
    return best;
}

// The largest cells around voxels that cannot better what rays have, or the leaf cells that can.
template <class Kind>
CellPack PromisingCells(const core::BlockView& blocks, IntPack wanted, IntPack best, IntPack i, IntPack j, IntPack k)
{
    const IntPack block = (k >> 4) * blocks.blocksPerLayer + (j >> 4) * blocks.blocksX + (i >> 4);
    CellPack cells = {IntPack{} + 16, {}};
    for (int lane = 0; lane < kLanes; ++lane)
    {
        if (!wanted[lane])
            continue;
        const core::BlockNode* const* levels = blocks.levels + 4 * int64_t(block[lane]);
        int node = 0, level = 0;
        while (Kind::Can(levels[level][node], best[lane]))
        {
            if (++level == 4)
            {
                cells.sampled[lane] = -1;
                break;
            }
            const int bit = 4 - level;
            node = 8 * node + ((k[lane] >> bit) & 1) * 4 + ((j[lane] >> bit) & 1) * 2 + ((i[lane] >> bit) & 1);
            cells.edge[lane] = 16 >> level;
        }
    }
    return cells;
}

// Samples the wanted lanes. A sample counts only if one of the eight voxels around it is better than what there is:
// rounding alone betters nothing.
template <class Kind>
IntPack SampleBest(const Scene& scene, IntPack wanted, const VectorPack& p, IntPack best)
{
    const IntPack i = ToInt(p.x), j = ToInt(p.y), k = ToInt(p.z);
    const CellVoxels cell = LoadCell(scene.volume, i, j, k);
    IntPack extreme = best;
    const IntPack rows[] = {cell.near0, cell.near1, cell.far0, cell.far1};
    for (const IntPack pairs : rows)
    {
        extreme = Better<Kind>((pairs << 16) >> 16, extreme);
        extreme = Better<Kind>(pairs >> 16, extreme);
    }
    wanted &= Kind::Improves(extreme, best);
    if (!Any(wanted))
        return best;
    const FloatPack value = Interpolate(cell, p.x - ToFloat(i), p.y - ToFloat(j), p.z - ToFloat(k));
    return wanted ? Better<Kind>(ToInt(value + 0.5f), best) : best;
}

template <class Kind>
IntPack BestOfPack(const Scene& scene, const RayBatch& batch, int first)
{
    const core::VolumeView& volume = scene.volume;
    const RayPack rays = LoadRays(batch, first, scene.inverseRelativeSpacing);
    PlacePack place = EntryOf(batch, first, volume);
    IntPack live = LiveLanes(batch, first), steps = {};
    IntPack best = BestOfCoarsePass<Kind>(scene, rays, place, live);
    while (Any(live))
    {
        const IntPack asking = live & (steps <= 0);
        if (Any(asking))
            FindRuns(scene, rays, asking, place, steps, live,
                     [&](IntPack wanted, IntPack i, IntPack j, IntPack k)
                     { return PromisingCells<Kind>(scene.blocks, wanted, best, i, j, k); });
        place.distance += rays.stepLength;
        live &= place.distance <= rays.exitDistance;
        Advance(rays, place);
        steps -= 1;

        const VectorPack& p = place.position;
        const IntPack inside = live & (p.x >= 0.0f) & (p.x < float(volume.nx - 1)) & (p.y >= 0.0f) &
                               (p.y < float(volume.ny - 1)) & (p.z >= 0.0f) & (p.z < float(volume.nz - 1));
        const IntPack wanted = ShownLanes(scene, inside, ToInt(p.x + 0.5f), ToInt(p.y + 0.5f), ToInt(p.z + 0.5f));
        if (!Any(wanted))
            continue;
        // Lanes that are not wanted sample where every volume that rays enter has its neighbours.
        const FloatPack somewhere = FloatPack{} + 1.0f;
        best = SampleBest<Kind>(scene, wanted,
                                {wanted ? p.x : somewhere, wanted ? p.y : somewhere, wanted ? p.z : somewhere}, best);
    }
    return best;
}

template <class Kind>
void ProjectBest(const Scene& scene, const RayBatch& batch, int16_t* values)
{
    for (int first = 0; first < batch.count; first += kLanes)
    {
        const IntPack best = BestOfPack<Kind>(scene, batch, first);
        for (int lane = 0; lane < kLanes && first + lane < batch.count; ++lane)
            values[first + lane] = int16_t(best[lane]);
    }
}
} // namespace

void ProjectMaximum(const Scene& scene, const RayBatch& rays, int16_t* values)
{
    ProjectBest<Highest>(scene, rays, values);
}

void ProjectMinimum(const Scene& scene, const RayBatch& rays, int16_t* values)
{
    ProjectBest<Lowest>(scene, rays, values);
    for (int ray = 0; ray < rays.count; ++ray)
        if (values[ray] == Lowest::kStart)
            values[ray] = kBackground; // no sample counted
}

void ProjectAverage(const Scene& scene, const RayBatch& batch, int16_t* values)
{
    for (int first = 0; first < batch.count; first += kLanes)
    {
        const RayPack rays = LoadRays(batch, first, scene.inverseRelativeSpacing);
        PlacePack place = EntryOf(batch, first, scene.volume);
        IntPack live = LiveLanes(batch, first);
        int64_t sums[kLanes] = {}, counts[kLanes] = {};
        while (Any(live))
        {
            const NearestVoxels voxels = SampleNearest(scene, live, place.position);
            for (int lane = 0; lane < kLanes; ++lane)
            {
                if (!voxels.counted[lane] || voxels.values[lane] < kLeastAveraged)
                    continue;
                sums[lane] += voxels.values[lane];
                ++counts[lane];
            }
            const FloatPack next = place.distance + rays.stepLength;
            live &= (next > place.distance) & (next < rays.exitDistance);
            place.distance = next;
            Advance(rays, place);
        }
        for (int lane = 0; lane < kLanes && first + lane < batch.count; ++lane)
        {
            const int64_t mean = counts[lane] > 0 ? sums[lane] / counts[lane] : kBackground;
            values[first + lane] = int16_t(mean < kBackground ? kBackground : mean);
        }
    }
}
} // namespace corvane::KERNEL_ISA
