#include "scene.h"

#include <algorithm>
#include <new>

// What a scene holds, and how it is loaded.

namespace corvane::capi
{
namespace
{
// A palette record of a C++ class, whose points are freed with it.
struct OwnedPalette : KsPalette
{
    OwnedPalette() = default;
    OwnedPalette(const OwnedPalette&) = delete;
    OwnedPalette& operator=(const OwnedPalette&) = delete;
    ~OwnedPalette() { corvane_palette_free(this); }
};
} // namespace

bool Scene::IsUsable()
{
    KsMPRParam planes;
    return camera_.GetMarkData() && render_.SetPalette({}) && planes_.GetParams(planes) && reslice_.GetMarkData();
}

CorvaneStatus Scene::Load(const KsVolumeData& volume, const int16_t* voxels)
{
    Clear();
    try
    {
        const uint64_t sliceSize = uint64_t(volume.sizeX) * uint64_t(volume.sizeY);
        for (int32_t k = 0; k < volume.sizeZ; ++k)
            slices_.push_back(voxels ? voxels + uint64_t(k) * sliceSize : volume.slices[k]);
        KsVolumeData taken = volume;
        taken.slices = slices_.data();
        if (LoadRenderers(taken))
            return CORVANE_OK;
    }
    catch (...)
    {
        Clear();
        throw;
    }
    Clear();
    return CORVANE_ERROR_MEMORY;
}

void Scene::Clear()
{
    render_.Clear();
    planes_.Clear();
    reslice_.Clear();
    camera_.Clear();
    volume_ = {};
    slices_ = {};
    labels_.reset();
    labelSlices_ = {};
    palettes_.Clear();
    history_.Clear();
}

uint64_t Scene::VoxelCount() const
{
    return uint64_t(volume_.sizeX) * uint64_t(volume_.sizeY) * uint64_t(volume_.sizeZ);
}

bool Scene::LoadRenderers(const KsVolumeData& volume)
{
    // The engine aims its camera and gives the standard palette. It keeps both when it is cleared, so that only one
    // renderer holds a block tree.
    OwnedPalette standard;
    if (!camera_.InitData(volume) || !camera_.GetPalette(standard))
        return false;
    camera_.Clear();
    palettes_.Set(0, standard);

    const size_t sliceSize = size_t(volume.sizeX) * size_t(volume.sizeY);
    // From calloc, whose pages cost nothing until somebody labels their voxels.
    labels_.reset(static_cast<uint8_t*>(std::calloc(size_t(volume.sizeZ), sliceSize)));
    if (!labels_)
        throw std::bad_alloc();
    for (size_t k = 0; k < size_t(volume.sizeZ); ++k)
        labelSlices_.push_back(labels_.get() + k * sliceSize);

    volume_ = volume;
    return render_.InitData(volume, Mark(), palettes_.Records()) && render_.GetVisibleBox(wholeLow_, wholeHigh_) &&
           planes_.InitData(volume) && reslice_.InitData(volume);
}

KsVolumeMark Scene::Mark()
{
    return {labelSlices_.data(), uint32_t(volume_.sizeX), uint32_t(volume_.sizeY), uint32_t(volume_.sizeZ)};
}

void Scene::SetLabels(const uint8_t* labels)
{
    for (uint64_t voxel = 0; voxel < VoxelCount(); ++voxel)
    {
        uint8_t& label = labels_.get()[voxel];
        label = uint8_t((label & kCutAway) | labels[voxel]);
    }
    ForwardLabels();
}

void Scene::GetLabels(uint8_t* labels) const { std::copy_n(labels_.get(), VoxelCount(), labels); }

CorvaneStatus Scene::SetPalette(int label, const KsPalette& palette)
{
    if (!palettes_.Set(label, palette))
        return CORVANE_ERROR_ARGUMENT;
    ForwardPalettes();
    return CORVANE_OK;
}

CorvaneStatus Scene::GetPalette(int label, KsPalette& palette) const
{
    const KsPalette* const found = palettes_.Find(label);
    if (!found)
        return CORVANE_ERROR_ARGUMENT;
    auto points = std::make_unique<KsPalettePoint[]>(size_t(found->pointCount));
    std::copy_n(found->points, found->pointCount, points.get());
    corvane_palette_free(&palette);
    palette = *found;
    palette.points = points.release();
    palette.ownsPoints = 1;
    return CORVANE_OK;
}

void Scene::RemovePalette(int label)
{
    palettes_.Remove(label);
    ForwardPalettes();
}
} // namespace corvane::capi
