#ifndef CORVANE_RENDER3D_RAY_BATCHER_H
#define CORVANE_RENDER3D_RAY_BATCHER_H

#include "frame.h"

#include <span>

namespace corvane::render3d
{
// Hands rays in patient space to the kernel a batch at a time and puts its pixels into their places. One per worker.
class RayBatcher
{
public:
    RayBatcher(const Frame& frame, const KernelTable& kernels, uint32_t* image)
        : frame_(frame), kernels_(kernels), image_(image)
    {
    }
    ~RayBatcher() { Flush(); }
    RayBatcher(const RayBatcher&) = delete;
    RayBatcher& operator=(const RayBatcher&) = delete;

    // A ray for the pixel of an index.
    //   layers  the flat images that it crosses, by depth
    void Add(core::Vec3f start, core::Vec3f direction, size_t pixel, std::span<const BlendLayer> layers = {});

private:
    void Flush();

    const Frame& frame_;
    const KernelTable& kernels_;
    uint32_t* image_;
    RayBatch batch_ = {};
    size_t pixelOf_[kRaysPerBatch];
};
} // namespace corvane::render3d

#endif
