#ifndef CORVANE_RENDER3D_BLEND_LAYERS_H
#define CORVANE_RENDER3D_BLEND_LAYERS_H

#include "kernels/kernels.h"
#include "view_plane.h"

namespace corvane::render3d
{
// The blend images of a renderer; from a larger count than fits the first ones are kept.
struct BlendImages
{
    KsBlendImage images[kMostBlendLayers] = {};
    core::Vec3f normals[kMostBlendLayers] = {}; // of their planes
    int count = 0;
};

BlendImages TakeBlendImages(const KsBlendImage* images, int count);

// Widens a rectangle to hold every corner of every image.
void WidenToBlendImages(const BlendImages& blends, PixelRectangle& rectangle);

// The images that a pixel's ray crosses, by depth; images at the same depth keep their order.
//   index     of the pixel in the image
//   geometry  of the volume, in whose voxels depths are counted
//   layers    receives at most kMostBlendLayers
//   returns   how many
int GatherLayers(const BlendImages& blends, const core::VolumeGeometry& geometry, core::Vec3f patientStart,
                 core::Vec3f patientDirection, int64_t column, int64_t row, size_t index, BlendLayer* layers);
} // namespace corvane::render3d

#endif
