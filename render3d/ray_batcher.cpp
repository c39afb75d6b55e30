#include "ray_batcher.h"

#include <algorithm>

using namespace corvane::core;

namespace corvane::render3d
{
void RayBatcher::Add(Vec3f start, Vec3f direction, size_t pixel, std::span<const BlendLayer> layers)
{
    const int ray = batch_.count++;
    pixelOf_[ray] = pixel;
    batch_.startX[ray] = start.x;
    batch_.startY[ray] = start.y;
    batch_.startZ[ray] = start.z;
    batch_.directionX[ray] = direction.x;
    batch_.directionY[ray] = direction.y;
    batch_.directionZ[ray] = direction.z;
    std::copy(layers.begin(), layers.end(), batch_.layers[ray]);
    batch_.layerCount[ray] = int(layers.size());
    if (batch_.count == kRaysPerBatch)
        Flush();
}

void RayBatcher::Flush()
{
    uint32_t pixels[kRaysPerBatch];
    kernels_.integrateRays(frame_.SceneOf(), batch_, pixels);
    for (int ray = 0; ray < batch_.count; ++ray)
        image_[pixelOf_[ray]] = pixels[ray];
    batch_.count = 0;
}
} // namespace corvane::render3d
