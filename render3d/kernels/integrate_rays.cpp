#include "integrate_rays.h"

#include "core/simd/sampling.h"
#include "labels.h"
#include "shading.h"
#include "visible_run.h"

namespace corvane::KERNEL_ISA
{
namespace
{
using render3d::BlendLayer;
using render3d::RayBatch;
using render3d::Scene;

constexpr float kOpaque = 0.001f;        // a ray with less transmittance left is done
constexpr float kVisibleOpacity = 0.01f; // a sample at or below it is not composited
constexpr float kNoLayer = 3.0e38f;

// What a pack of rays has gathered so far.
struct Light
{
    FloatPack transmittance, red, green, blue;
};

// What the samples of a pack look like before shading.
struct Samples
{
    FloatPack opacity, red, green, blue, ambient, diffuse, specular;
};

// Looks the samples of the wanted lanes up in their labels' tables; the others, and what cannot be seen, have opacity
// 0.
Samples Classify(const Scene& scene, IntPack wanted, IntPack values, FloatPack x, FloatPack y, FloatPack z)
{
    const IntPack i = ToInt(x + 0.5f), j = ToInt(y + 0.5f), k = ToInt(z + 0.5f);
    Samples samples = {};
    for (int lane = 0; lane < kLanes; ++lane)
    {
        if (!wanted[lane])
            continue;
        const core::PaletteEntryView& entry = scene.palette->entries[LabelAt(scene.labels, i[lane], j[lane], k[lane])];
        const int64_t index = int64_t(values[lane]) - entry.start;
        if (index < 0 || index >= int64_t(entry.size) || !(entry.opacities[index] > kVisibleOpacity))
            continue;
        samples.opacity[lane] = entry.opacities[index];
        samples.red[lane] = entry.colours[3 * index];
        samples.green[lane] = entry.colours[3 * index + 1];
        samples.blue[lane] = entry.colours[3 * index + 2];
        samples.ambient[lane] = entry.ambient;
        samples.diffuse[lane] = entry.diffuse;
        samples.specular[lane] = entry.specular;
    }
    return samples;
}

void Composite(Light& light, int lane, const BlendLayer& layer)
{
    const float share = layer.opacity * light.transmittance[lane];
    light.red[lane] += layer.red * share;
    light.green[lane] += layer.green * share;
    light.blue[lane] += layer.blue * share;
    light.transmittance[lane] *= 1.0f - layer.opacity;
}

// Samples, classifies, shades and composites the wanted lanes at their places.
void CompositeSamples(const Scene& scene, IntPack wanted, FloatPack x, FloatPack y, FloatPack z, VectorPack lightAxis,
                      Light& light)
{
    const IntPack values = ToInt(SampleTrilinear(scene.volume, x, y, z) + 0.5f);
    const Samples samples = Classify(scene, wanted, values, x, y, z);
    const IntPack seen = samples.opacity > kVisibleOpacity;
    if (!Any(seen))
        return;
    const FloatPack facing = Facing(scene, SampleGradient(scene.volume, x, y, z), lightAxis);
    const FloatPack shade = samples.ambient + samples.diffuse * facing + samples.specular * Power96(facing);
    const FloatPack share = shade * samples.opacity * light.transmittance;
    const FloatPack left = light.transmittance * (1.0f - samples.opacity);
    light.red = seen ? light.red + samples.red * share : light.red;
    light.green = seen ? light.green + samples.green * share : light.green;
    light.blue = seen ? light.blue + samples.blue * share : light.blue;
    light.transmittance = seen ? (left > 0.0f ? left : FloatPack{}) : light.transmittance;
}

uint32_t ByteOf(float channel)
{
    if (!(channel > 0.0f))
        return 0;
    return channel < 255.0f ? uint32_t(channel) : 255u;
}

uint32_t PixelOf(const Light& light, int lane)
{
    const float transmittance = light.transmittance[lane];
    const uint32_t coverage = transmittance < kOpaque ? 255u : ByteOf((1.0f - transmittance) * 255.0f);
    return coverage | ByteOf(light.red[lane]) << 8 | ByteOf(light.green[lane]) << 16 | ByteOf(light.blue[lane]) << 24;
}

// Samples between these bounds have all their gradient's neighbours. Rays are clipped to them; rounding may carry a
// long row of steps beyond.
IntPack HaveNeighbours(const core::VolumeView& volume, const VectorPack& p)
{
    return (p.x >= 1.0f) & (p.x < float(volume.nx - 2)) & (p.y >= 1.0f) & (p.y < float(volume.ny - 2)) & (p.z >= 1.0f) &
           (p.z < float(volume.nz - 2));
}

// The blend layers of a pack of rays, as they come up.
class PendingLayers
{
public:
    PendingLayers(const RayBatch& rays, int first, int count) : rays_(rays), first_(first), count_(count)
    {
        for (int lane = 0; lane < count; ++lane)
            Await(lane);
    }

    // Composites the next layer of each wanted ray that has passed it.
    void CompositePassed(IntPack wanted, FloatPack distance, Light& light)
    {
        const IntPack due = wanted & (depth_ < distance);
        if (!Any(due))
            return;
        for (int lane = 0; lane < count_; ++lane)
            if (due[lane])
                CompositeNext(lane, light);
    }

    // Composites what is left: layers behind the last sample, and those of rays that miss the volume.
    void CompositeRest(int lane, Light& light)
    {
        while (next_[lane] < rays_.layerCount[first_ + lane] && light.transmittance[lane] >= kOpaque)
            CompositeNext(lane, light);
    }

private:
    void Await(int lane)
    {
        const int ray = first_ + lane;
        depth_[lane] = next_[lane] < rays_.layerCount[ray] ? rays_.layers[ray][next_[lane]].depth : kNoLayer;
    }

    void CompositeNext(int lane, Light& light)
    {
        Composite(light, lane, rays_.layers[first_ + lane][next_[lane]++]);
        Await(lane);
    }

    const RayBatch& rays_;
    int first_, count_;
    int next_[kLanes] = {};
    FloatPack depth_ = FloatPack{} + kNoLayer;
};

// The rays of one pack, from `first` of the batch on.
void IntegratePack(const Scene& scene, const RayBatch& batch, int first, uint32_t* pixels)
{
    const int count = batch.count - first < kLanes ? batch.count - first : kLanes;
    const RayPack rays = LoadRays(batch, first, scene.inverseRelativeSpacing);
    const VectorPack lightAxis = {LoadFloats(batch.lightX + first), LoadFloats(batch.lightY + first),
                                  LoadFloats(batch.lightZ + first)};
    PlacePack place = EntryOf(batch, first, scene.volume);
    PendingLayers layers(batch, first, count);
    Light light = {FloatPack{} + 1.0f, {}, {}, {}};
    IntPack live = {}, steps = {};
    for (int lane = 0; lane < count; ++lane)
        live[lane] = place.distance[lane] < rays.exitDistance[lane] ? -1 : 0;

    while (Any(live))
    {
        const IntPack asking = live & (steps <= 0);
        if (Any(asking))
            FindVisibleRuns(scene, rays, asking, place, steps, live);

        place.distance += rays.stepLength;
        layers.CompositePassed(live, place.distance, light);
        live &= (light.transmittance >= kOpaque) & (place.distance <= rays.exitDistance);
        Advance(rays, place);
        steps -= 1;
        const IntPack wanted = live & HaveNeighbours(scene.volume, place.position);
        if (!Any(wanted))
            continue;
        // Lanes that are not wanted sample where every volume that rays enter has its neighbours.
        const FloatPack somewhere = FloatPack{} + 1.0f;
        CompositeSamples(scene, wanted, wanted ? place.position.x : somewhere, wanted ? place.position.y : somewhere,
                         wanted ? place.position.z : somewhere, lightAxis, light);
        live &= light.transmittance >= kOpaque;
    }

    for (int lane = 0; lane < count; ++lane)
    {
        layers.CompositeRest(lane, light);
        pixels[first + lane] = PixelOf(light, lane);
    }
}
} // namespace

void IntegrateRays(const Scene& scene, const RayBatch& rays, uint32_t* pixels)
{
    for (int first = 0; first < rays.count; first += kLanes)
        IntegratePack(scene, rays, first, pixels);
}
} // namespace corvane::KERNEL_ISA
