#ifndef CORVANE_MPR_KERNELS_KERNELS_H
#define CORVANE_MPR_KERNELS_KERNELS_H

#include "core/views.h"

#include <cstdint>
#include <span>

// The kernels of plane resampling, compiled once per instruction set and reached through one table.
namespace corvane::mpr
{
// How many rows a kernel takes at once: the additions from pixel to pixel of one row wait for one another, those of
// different rows do not.
constexpr int kRowsAtOnce = 4;

// A row of pixels, and where its values go.
struct RowToFill
{
    core::PixelRow pixels;
    int16_t* values;
};

struct KernelTable
{
    const char* instructionSet; // the name of the copy's namespace

    // Trilinear stored values of 1 to kRowsAtOnce rows of pixels, plus 0.5 and truncated toward zero. In the last slice
    // a sample is interpolated with itself. A pixel with a neighbour outside the volume is left alone. Every slice
    // pointer is valid.
    void (*resampleRows)(const core::VolumeView& volume, const RowToFill* rows, int rowCount);
};

// The copies that this machine runs, the fastest last.
std::span<const KernelTable* const> AvailableKernels();

// The fastest of them.
const KernelTable& Kernels();
} // namespace corvane::mpr

#endif
