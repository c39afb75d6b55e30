#ifndef CORVANE_MPR_KERNELS_KERNELS_H
#define CORVANE_MPR_KERNELS_KERNELS_H

#include "core/views.h"

#include <cstdint>
#include <span>

// The kernels of plane resampling, compiled once per instruction set and reached through one table.
namespace corvane::mpr
{
struct KernelTable
{
    const char* instructionSet; // the name of the copy's namespace

    // Trilinear stored values of a row of pixels, plus 0.5 and truncated toward zero. In the last slice a sample is
    // interpolated with itself. A pixel with a neighbour outside the volume is left alone. Every slice pointer is
    // valid.
    void (*resampleRow)(const core::VolumeView& volume, const core::PixelRow& row, int16_t* values);
};

// The copies that this machine runs, the fastest last.
std::span<const KernelTable* const> AvailableKernels();

// The fastest of them.
const KernelTable& Kernels();
} // namespace corvane::mpr

#endif
