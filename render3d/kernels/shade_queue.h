#ifndef CORVANE_RENDER3D_KERNELS_SHADE_QUEUE_H
#define CORVANE_RENDER3D_KERNELS_SHADE_QUEUE_H

#include "kernels.h"
#include "shading.h"

namespace corvane::KERNEL_ISA
{
constexpr float kOpaque = 0.001f; // a ray with less transmittance left is done

// What the rays of a batch have gathered so far.
struct BatchLight
{
    float transmittance[render3d::kRaysPerBatch + 1]; // the last one is nobody's, and none
    Quad colour[render3d::kRaysPerBatch];             // red, green, blue
    Quad axis[render3d::kRaysPerBatch];               // the direction of the light, patient space
};

// Samples that are seen. Transmittance does not depend on how they are shaded, so they wait until packs are full.
class ShadeQueue
{
public:
    ShadeQueue(const render3d::Scene& scene, BatchLight& light) : scene_(scene), light_(light)
    {
        const uint8_t label0[kLanes] = {};
        weightsOfLabel0_ = WeightsOf(label0);
    }

    // A sample that so much of the light behind it passes through to.
    void Add(Quad place, int ray, int label, int index, float opacity, float transmittance)
    {
        places_[count_] = place;
        rays_[count_] = uint8_t(ray);
        labels_[count_] = uint8_t(label);
        indices_[count_] = index;
        opacities_[count_] = opacity;
        transmittances_[count_] = transmittance;
        if (++count_ == kCapacity)
            Flush();
    }

    // Shades all samples and adds them to the light of their rays, in the order in which they came.
    void Flush()
    {
        for (int n = count_; n % kLanes != 0; ++n)
        {
            // What fills the last pack is seen by nobody.
            places_[n] = places_[0];
            rays_[n] = rays_[0];
            labels_[n] = labels_[0];
            opacities_[n] = transmittances_[n] = 0.0f;
        }
        for (int first = 0; first < count_; first += kLanes)
            ShadePack(first, count_ - first < kLanes ? count_ - first : kLanes);
        count_ = 0;
    }

private:
    void ShadePack(int first, int count)
    {
        const QuadPack place = LoadQuads(places_ + first);
        Quad axes[kLanes];
        for (int lane = 0; lane < kLanes; ++lane)
            axes[lane] = light_.axis[rays_[first + lane]];
        const QuadPack axis = LoadQuads(axes);
        const FloatPack facing =
            Facing(scene_, SampleGradient(scene_.volume, place.x, place.y, place.z), {axis.x, axis.y, axis.z});
        const Weights weights = scene_.labels.slices ? WeightsOf(labels_ + first) : weightsOfLabel0_;
        const FloatPack shade = weights.ambient + weights.diffuse * facing + weights.specular * Power96(facing);
        const FloatPack share = shade * LoadFloats(opacities_ + first) * LoadFloats(transmittances_ + first);
        float shares[kLanes];
        StoreFloats(share, shares);
        for (int lane = 0; lane < count; ++lane)
        {
            const int n = first + lane;
            const uint8_t* colour = scene_.palette->entries[labels_[n]].colours + 3 * int64_t(indices_[n]);
            light_.colour[rays_[n]] += Quad{float(colour[0]), float(colour[1]), float(colour[2]), 0.0f} * shares[lane];
        }
    }

    struct Weights
    {
        FloatPack ambient, diffuse, specular;
    };

    Weights WeightsOf(const uint8_t* labels) const
    {
        Weights weights;
        for (int lane = 0; lane < kLanes; ++lane)
        {
            const core::PaletteEntryView& entry = scene_.palette->entries[labels[lane]];
            weights.ambient[lane] = entry.ambient;
            weights.diffuse[lane] = entry.diffuse;
            weights.specular[lane] = entry.specular;
        }
        return weights;
    }

    static constexpr int kCapacity = 64;
    const render3d::Scene& scene_;
    Weights weightsOfLabel0_;
    BatchLight& light_;
    int count_ = 0;
    Quad places_[kCapacity];
    int32_t indices_[kCapacity]; // of the entry in the label's tables
    float opacities_[kCapacity], transmittances_[kCapacity];
    uint8_t rays_[kCapacity], labels_[kCapacity];
};
} // namespace corvane::KERNEL_ISA

#endif
