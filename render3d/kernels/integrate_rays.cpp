#include "integrate_rays.h"

#include "cast_rays.h"
#include "sample_queue.h"
#include "visible_run.h"

namespace corvane::KERNEL_ISA
{
namespace
{
using render3d::RayBatch;
using render3d::Scene;

constexpr float kNoLayer = 3.0e38f;

uint32_t ByteOf(float channel)
{
    if (!(channel > 0.0f))
        return 0;
    return channel < 255.0f ? uint32_t(channel) : 255u;
}

uint32_t PixelOf(float transmittance, Quad colour)
{
    const uint32_t coverage = transmittance < kOpaque ? 255u : ByteOf((1.0f - transmittance) * 255.0f);
    return coverage | ByteOf(colour[0]) << 8 | ByteOf(colour[1]) << 16 | ByteOf(colour[2]) << 24;
}

// A pack of rays on their way.
class PackWalk
{
public:
    PackWalk(const Scene& scene, const RayBatch& batch, int first)
        : scene_(scene), batch_(batch), first_(first), cast_(CastRays(scene, batch, first)), exits_(cast_.rays)
    {
        const RayPack& rays = cast_.rays;
        StoreQuads({rays.step.x, rays.step.y, rays.step.z, rays.stepLength}, steps_);
        StoreFloats(rays.exitDistance, exitDistances_);
        for (int lane = 0; lane < kLanes && first + lane < batch.count; ++lane)
            AwaitLayer(lane);
    }

    bool IsLive() const { return Any(cast_.live); }

    // Brings every ray to its next cell.
    void Visit() { sampled_ = VisitCells(scene_, cast_.rays, exits_, cast_.place, cast_.live, stepCounts_); }

    // Hands the places of the steps in visible cells to the queue.
    void TakeSteps(const BatchLight& light, SampleQueue& queue)
    {
        if (!Any(sampled_))
            return;
        int32_t counts[kLanes];
        StoreInts(stepCounts_, counts);
        Quad standing[kLanes];
        PlacePack& place = cast_.place;
        StoreQuads({place.position.x, place.position.y, place.position.z, place.distance}, standing);
        for (uint32_t bits = BitsOf(sampled_); bits;)
        {
            const int lane = NextBit(bits);
            standing[lane] = TakeSteps(lane, standing[lane], counts[lane], queue);
        }
        const QuadPack at = LoadQuads(standing);
        place.position = {at.x, at.y, at.z};
        place.distance = at.w;
        cast_.live &= LoadFloats(light.transmittance + first_) >= kOpaque;
    }

private:
    // A ray's steps are one addition each: x, y, z and the distance. A ray that has nothing more to see is set behind
    // its exit.
    Quad TakeSteps(int lane, Quad at, int count, SampleQueue& queue)
    {
        const Quad step = steps_[lane];
        const float exit = exitDistances_[lane];
        const int ray = first_ + lane;
        PrefetchCell(scene_.volume, int(at[0]), int(at[1]), int(at[2])); // sampled when the queue is full
        while (count-- > 0)
        {
            at += step;
            if (at[3] > layerDepths_[lane])
            {
                queue.AddLayer(ray);
                ++layersPassed_[lane];
                AwaitLayer(lane);
            }
            if (!(at[3] <= exit) || queue.IsOpaque(ray))
            {
                at[3] = __builtin_inff();
                break;
            }
            queue.Add(at, ray);
        }
        return at;
    }

    void AwaitLayer(int lane)
    {
        const int ray = first_ + lane, next = layersPassed_[lane];
        layerDepths_[lane] = next < batch_.layerCount[ray] ? batch_.layers[ray][next].depth : kNoLayer;
    }

    const Scene& scene_;
    const RayBatch& batch_;
    int first_; // of the batch
    CastPack cast_;
    CellExits exits_;
    IntPack sampled_ = {}, stepCounts_ = {};
    Quad steps_[kLanes];
    float exitDistances_[kLanes], layerDepths_[kLanes];
    int layersPassed_[kLanes] = {};
};
} // namespace

void IntegrateRays(const Scene& scene, const RayBatch& batch, uint32_t* pixels)
{
    BatchLight light = {};
    for (int ray = 0; ray < batch.count; ++ray)
    {
        light.transmittance[ray] = 1.0f;
        light.axis[ray] = Quad{batch.directionX[ray], batch.directionY[ray], batch.directionZ[ray], 0.0f};
    }
    SampleQueue queue(scene, batch, light);
    // Two packs at a time: one computes while the other waits for its divisions and for memory.
    for (int first = 0; first < batch.count; first += 2 * kLanes)
    {
        PackWalk one(scene, batch, first), other(scene, batch, first + kLanes);
        while (one.IsLive() || other.IsLive())
        {
            one.Visit();
            other.Visit();
            one.TakeSteps(light, queue);
            other.TakeSteps(light, queue);
        }
    }
    queue.Flush();
    for (int ray = 0; ray < batch.count; ++ray)
    {
        queue.CompositeRest(ray);
        pixels[ray] = PixelOf(light.transmittance[ray], light.colour[ray]);
    }
}
} // namespace corvane::KERNEL_ISA
