#ifndef CORVANE_CORE_VIEWS_H
#define CORVANE_CORE_VIEWS_H

#include "vec3.h"

#include <cstdint>

// Borrowed data, as kernels read and write it: pointers and sizes, built on the stack for one call. No functions:
// kernels are compiled once per instruction set, and an inline function of this header would be, too.
namespace corvane::core
{
// Stored values, x fastest within a slice.
struct VolumeView
{
    const int16_t* const* slices;
    int32_t nx, ny, nz; // voxels
};

// Labels, x fastest within a slice. Without a slice table, or without a slice, every label is 0.
struct LabelView
{
    const uint8_t* const* slices;
    int32_t nx, ny, nz; // voxels
};

// Axes of a volume in patient space, as the host gave them.
struct Directions
{
    Vec3f row, column, slice;
};

// One node of a block's tree: the range of the stored values in its cell, one voxel beyond its upper faces included so
// that interpolation cannot leave it, and which children can be seen (all eight bits in a visible leaf). A cell
// without voxels has its minimum above its maximum.
struct BlockNode
{
    int16_t max;
    int16_t min;
    uint16_t mask;
};
static_assert(sizeof(BlockNode) == 6);

// The blocks of a volume, numbered x fastest, then y, then z; see block_tree.h.
struct BlockView
{
    const BlockNode* const* levels; // four pointers per block
    const uint16_t* rootMasks;      // one per block, side by side for rays that cross many empty ones
    int32_t blocksX, blocksPerLayer;
};

// Lookup tables of one label. Without entries where the label cannot be seen.
struct PaletteEntryView
{
    int32_t start;          // stored value of the first entry
    uint32_t size;          // entries
    const float* opacities; // one per entry
    const uint8_t* colours; // three per entry: red, green, blue
    float ambient, diffuse, specular;
};

// Lookup tables by label byte: bytes from 64 up are never seen.
struct PaletteView
{
    PaletteEntryView entries[256];
    uint8_t shown[256]; // whether voxels of the label take part in projections, which need no tables
};

// Neighbouring pixels of one image row in voxel-index space. A pixel's place is that of its neighbour plus the step,
// in single precision.
struct PixelRow
{
    Vec3f first; // place of the first pixel
    Vec3f step;  // from one pixel to the next
    int32_t count;
};
} // namespace corvane::core

#endif
