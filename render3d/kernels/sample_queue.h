#ifndef CORVANE_RENDER3D_KERNELS_SAMPLE_QUEUE_H
#define CORVANE_RENDER3D_KERNELS_SAMPLE_QUEUE_H

#include "core/simd/sampling.h"
#include "labels.h"
#include "shade_queue.h"

namespace corvane::KERNEL_ISA
{
constexpr float kVisibleOpacity = 0.01f; // a sample at or below it is not composited

// Places on rays, to be sampled when packs are full.
class SampleQueue
{
public:
    SampleQueue(const render3d::Scene& scene, const render3d::RayBatch& batch, BatchLight& light)
        : scene_(scene), batch_(batch), light_(light), shading_(scene, light)
    {
    }

    bool IsOpaque(int ray) const { return light_.transmittance[ray] < kOpaque; }

    void Add(Quad place, int ray)
    {
        places_[count_] = place;
        rays_[count_] = uint8_t(ray);
        if (++count_ == kCapacity)
            TakeSamples();
    }

    // The ray reaches its next blend layer here.
    void AddLayer(int ray)
    {
        holdsLayers_ = true;
        Add(Quad{1.0f, 1.0f, 1.0f, 0.0f}, ray | kLayer);
    }

    void Flush()
    {
        TakeSamples();
        shading_.Flush();
    }

    // After the last sample: the layers behind it, and those of rays that miss the volume.
    void CompositeRest(int ray)
    {
        while (nextLayer_[ray] < batch_.layerCount[ray] && light_.transmittance[ray] >= kOpaque)
            CompositeNext(ray);
    }

private:
    void TakeSamples()
    {
        for (int n = count_; n % kLanes != 0; ++n)
        {
            places_[n] = Quad{1.0f, 1.0f, 1.0f, 0.0f};
            rays_[n] = render3d::kRaysPerBatch;
        }
        for (int first = 0; first < count_; first += kLanes)
            TakePack(first);
        count_ = 0;
        holdsLayers_ = false;
    }

    void TakePack(int first)
    {
        const QuadPack at = LoadQuads(places_ + first);
        const IntPack wanted = HaveNeighbours(at);
        // Lanes that are not wanted sample where every volume that rays enter has its neighbours.
        const FloatPack somewhere = FloatPack{} + 1.0f;
        const FloatPack x = wanted ? at.x : somewhere, y = wanted ? at.y : somewhere, z = wanted ? at.z : somewhere;
        const IntPack values = ToInt(SampleTrilinear(scene_.volume, x, y, z) + 0.5f);
        int32_t labels[kLanes] = {}, indices[kLanes];
        float opacities[kLanes];
        const IntPack seen = scene_.labels.slices ? Classify(wanted, values, x, y, z, labels, indices, opacities)
                                                  : Classify(wanted, values, indices, opacities);
        if (holdsLayers_)
            CompositeWithLayers(first, BitsOf(seen), labels, indices, opacities);
        else
            Composite(first, BitsOf(seen), labels, indices, opacities);
    }

    // Lets samples dim those behind them, and keeps them to be shaded.
    void Composite(int first, uint32_t seen, const int32_t* labels, const int32_t* indices, const float* opacities)
    {
        while (seen)
        {
            const int lane = NextBit(seen), ray = rays_[first + lane];
            const float transmittance = light_.transmittance[ray], opacity = opacities[lane];
            if (!(transmittance >= kOpaque))
                continue;
            shading_.Add(places_[first + lane], ray, labels[lane], indices[lane], opacity, transmittance);
            const float left = transmittance * (1.0f - opacity);
            light_.transmittance[ray] = left > 0.0f ? left : 0.0f;
        }
    }

    // The same where rays reach blend layers in between.
    void CompositeWithLayers(int first, uint32_t seen, const int32_t* labels, const int32_t* indices,
                             const float* opacities)
    {
        for (int lane = 0; lane < kLanes; ++lane)
        {
            const int ray = rays_[first + lane] & ~kLayer;
            if (!(rays_[first + lane] & kLayer))
                Composite(first, seen & (1u << lane), labels, indices, opacities);
            else if (light_.transmittance[ray] >= kOpaque)
            {
                shading_.Flush(); // colours add up in the order of the ray
                CompositeNext(ray);
            }
        }
    }

    // Samples between these bounds have all their gradient's neighbours. Rays are clipped to them; rounding may carry a
    // long row of steps beyond.
    IntPack HaveNeighbours(const QuadPack& p) const
    {
        const core::VolumeView& volume = scene_.volume;
        return (p.x >= 1.0f) & (p.x < float(volume.nx - 2)) & (p.y >= 1.0f) & (p.y < float(volume.ny - 2)) &
               (p.z >= 1.0f) & (p.z < float(volume.nz - 2));
    }

    // Without labels: one table for all lanes. Returns those that are seen.
    IntPack Classify(IntPack wanted, IntPack values, int32_t* indices, float* opacities) const
    {
        const core::PaletteEntryView& entry = scene_.palette->entries[0];
        const IntPack index = values - entry.start;
        const IntPack known = wanted & (index >= 0) & (index < int32_t(entry.size));
        if (!Any(known))
            return known;
        const FloatPack opacity = Gather(entry.opacities, known & index);
        StoreInts(index, indices);
        StoreFloats(opacity, opacities);
        return known & (opacity > kVisibleOpacity);
    }

    IntPack Classify(IntPack wanted, IntPack values, FloatPack x, FloatPack y, FloatPack z, int32_t* labels,
                     int32_t* indices, float* opacities) const
    {
        const IntPack i = ToInt(x + 0.5f), j = ToInt(y + 0.5f), k = ToInt(z + 0.5f);
        for (int lane = 0; lane < kLanes; ++lane)
        {
            labels[lane] = LabelAt(scene_.labels, i[lane], j[lane], k[lane]);
            const core::PaletteEntryView& entry = scene_.palette->entries[labels[lane]];
            const int64_t index = int64_t(values[lane]) - entry.start;
            const bool known = uint64_t(index) < entry.size;
            indices[lane] = int32_t(index);
            opacities[lane] = known ? entry.opacities[index] : 0.0f;
        }
        return wanted & (LoadFloats(opacities) > kVisibleOpacity);
    }

    void CompositeNext(int ray)
    {
        const render3d::BlendLayer& layer = batch_.layers[ray][nextLayer_[ray]++];
        const float share = layer.opacity * light_.transmittance[ray];
        light_.colour[ray] += Quad{float(layer.red), float(layer.green), float(layer.blue), 0.0f} * share;
        light_.transmittance[ray] *= 1.0f - layer.opacity;
    }

    static constexpr int kCapacity = 64;
    static constexpr int kLayer = 128; // marks a blend layer among the rays' numbers
    static_assert(render3d::kRaysPerBatch < kLayer);

    const render3d::Scene& scene_;
    const render3d::RayBatch& batch_;
    BatchLight& light_;
    ShadeQueue shading_;
    int count_ = 0;
    Quad places_[kCapacity];
    uint8_t rays_[kCapacity]; // numbers in the batch
    bool holdsLayers_ = false;
    int nextLayer_[render3d::kRaysPerBatch] = {};
};
} // namespace corvane::KERNEL_ISA

#endif
