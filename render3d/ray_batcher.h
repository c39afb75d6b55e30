#ifndef CORVANE_RENDER3D_RAY_BATCHER_H
#define CORVANE_RENDER3D_RAY_BATCHER_H

#include "frame.h"

#include <limits>
#include <span>

namespace corvane::render3d
{
// The step along a projection's ray, in units of the smallest spacing.
constexpr float kProjectionStep = 1.0f;

// How a ray runs: unit directions in patient and in voxel-index space, and its step in the latter. A direction of
// length 0 stays 0.
struct RayCourse
{
    core::Vec3f patientDirection;
    core::Vec3f indexDirection;
    core::Vec3f indexStep;
    float stepLength;                                        // voxels
    float farthest = std::numeric_limits<float>::infinity(); // voxels from the start, where rays end at the latest
};

// The course of a ray in patient space, with steps of a multiple of the smallest spacing.
RayCourse CourseOf(const core::VolumeGeometry& geometry, core::Vec3f patientDirection, float step);

// Appends a ray in patient space to a batch.
//   layers  the flat images that it crosses, by depth
void AppendRay(core::Vec3f start, core::Vec3f direction, std::span<const BlendLayer> layers, RayBatch& batch);

// Hands rays to a kernel a batch at a time and puts its pixels into their places. One per worker.
template <class Pixel>
class RayBatcher
{
public:
    using Kernel = void (*)(const Scene& scene, const RayBatch& rays, Pixel* pixels);

    RayBatcher(const Frame& frame, Kernel kernel, Pixel* image) : frame_(frame), kernel_(kernel), image_(image) {}
    ~RayBatcher() { Flush(); }
    RayBatcher(const RayBatcher&) = delete;
    RayBatcher& operator=(const RayBatcher&) = delete;

    // A ray for the pixel of an index; the others as for AppendRay.
    void Add(core::Vec3f start, core::Vec3f direction, size_t pixel, std::span<const BlendLayer> layers = {})
    {
        pixelOf_[batch_.count] = pixel;
        AppendRay(start, direction, layers, batch_);
        if (batch_.count == kRaysPerBatch)
            Flush();
    }

private:
    void Flush()
    {
        Pixel pixels[kRaysPerBatch];
        kernel_(frame_.SceneOf(), batch_, pixels);
        for (int ray = 0; ray < batch_.count; ++ray)
            image_[pixelOf_[ray]] = pixels[ray];
        batch_.count = 0;
    }

    const Frame& frame_;
    Kernel kernel_;
    Pixel* image_;
    RayBatch batch_ = {};
    size_t pixelOf_[kRaysPerBatch];
};
} // namespace corvane::render3d

#endif
