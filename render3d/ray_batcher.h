#ifndef CORVANE_RENDER3D_RAY_BATCHER_H
#define CORVANE_RENDER3D_RAY_BATCHER_H

#include "frame.h"

namespace corvane::render3d
{
// How a ray runs: unit directions in patient and in voxel-index space, and its step in the latter. A direction of
// length 0 stays 0.
struct RayCourse
{
    core::Vec3f patientDirection;
    core::Vec3f indexDirection;
    core::Vec3f indexStep;
    float stepLength; // voxels
};

// The course of a ray in patient space; every step covers 0.33 times the smallest spacing.
RayCourse CourseOf(const core::VolumeGeometry& geometry, core::Vec3f patientDirection);

// Clips rays to the visible box and hands them to the kernel a batch at a time. One per worker.
class RayBatcher
{
public:
    RayBatcher(const Frame& frame, const KernelTable& kernels, uint32_t* pixels);
    ~RayBatcher() { Flush(); }
    RayBatcher(const RayBatcher&) = delete;
    RayBatcher& operator=(const RayBatcher&) = delete;

    // A ray for the pixel of an index, from a patient point that lies at an index-space point.
    //   layers  the flat images that it crosses, by depth
    void Add(core::Vec3f patientStart, core::Vec3f indexStart, const RayCourse& course, size_t pixel,
             const BlendLayer* layers, int layerCount);

private:
    void Flush();

    const Frame& frame_;
    const KernelTable& kernels_;
    uint32_t* pixels_;
    RayBatch batch_ = {};
    size_t pixelOf_[kRaysPerBatch];
};
} // namespace corvane::render3d

#endif
