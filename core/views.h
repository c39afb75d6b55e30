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
    int32_t nx, ny, nz;      // voxels
    int32_t sliceStride = 0; // voxels from one slice to the next where that is the same for all and 32 bits number
                             // every voxel from the first slice on; else 0
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
    const int32_t* rootMasks;       // one per block, side by side for rays that cross many empty ones
    const int32_t* visibleDepths;   // kDepthWords per block: two bits per leaf cell, x fastest, then y, then z
    int32_t blocksX, blocksPerLayer;
};

// How many of the cells of 8, 4 and 2 voxels around a voxel hold something visible, 0 to 3, for the 512 leaf cells of a
// block that does.
constexpr int kDepthWords = 32;

// Lookup tables of one label. Without entries where the label cannot be seen.
struct PaletteEntryView
{
    int32_t start;          // stored value of the first entry; every entry is one of a stored value
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
