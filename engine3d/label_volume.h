#ifndef CORVANE_ENGINE3D_LABEL_VOLUME_H
#define CORVANE_ENGINE3D_LABEL_VOLUME_H

#include "corvane/Records.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace corvane::engine3d
{
// The engine's labels and their memory, one byte per voxel.
class LabelVolume
{
public:
    LabelVolume() = default;
    LabelVolume(const LabelVolume&) = delete;
    LabelVolume& operator=(const LabelVolume&) = delete;

    // The record that hosts edit in place.
    KsVolumeMark& Record() { return record_; }

    // Labels of 0 for every voxel of a volume. What there was is released first; a null pointer or a volume without
    // slices or voxels gets no labels. Throws what the allocator throws, without labels.
    void Build(const KsVolumeData* volume);

    // Frees the labels; the record keeps the sizes.
    void Release();

private:
    struct Free
    {
        void operator()(uint8_t* memory) const { std::free(memory); }
    };

    KsVolumeMark record_ = {};
    std::vector<uint8_t*> slices_;
    std::unique_ptr<uint8_t, Free> labels_;
};
} // namespace corvane::engine3d

#endif
