#include "label_volume.h"

#include <new>

namespace corvane::engine3d
{
void LabelVolume::Build(const KsVolumeData* volume)
{
    Release();
    if (!volume || !volume->slices || volume->sizeX < 1 || volume->sizeY < 1 || volume->sizeZ < 1)
        return;
    const size_t sliceCount = size_t(volume->sizeZ), sliceSize = size_t(volume->sizeX) * size_t(volume->sizeY);
    std::vector<uint8_t*> slices(sliceCount);
    // From calloc, whose pages cost nothing until somebody labels their voxels.
    labels_.reset(static_cast<uint8_t*>(std::calloc(sliceCount, sliceSize)));
    if (!labels_)
        throw std::bad_alloc();
    for (size_t k = 0; k < sliceCount; ++k)
        slices[k] = labels_.get() + k * sliceSize;
    slices_ = std::move(slices);
    record_ = {slices_.data(), uint32_t(volume->sizeX), uint32_t(volume->sizeY), uint32_t(volume->sizeZ)};
}

void LabelVolume::Release()
{
    record_.slices = nullptr;
    slices_ = {};
    labels_.reset();
}
} // namespace corvane::engine3d
