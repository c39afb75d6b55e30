#ifndef CORVANE_CORE_IMAGE_PLANE_H
#define CORVANE_CORE_IMAGE_PLANE_H

#include "corvane/Records.h"

#include <cstdint>
#include <optional>

namespace corvane::core
{
// How many pixels of a spacing cover a length: the quotient rounded up. Nothing for what is no count of pixels:
// negative, not a number, or more than 32 bits hold.
std::optional<uint32_t> PixelCount(double length, double spacing);

// Gives an image a zeroed buffer of rows * columns samples and stores both numbers. The one rule for every image
// whose buffer the library sizes: a buffer that the record owns is released, one that it does not own is replaced and
// left alone, and a size of nothing gets no new buffer.
//   returns  false, with nothing changed, for a count of pixels beyond 32 bits
// Throws what the allocator throws, with nothing changed.
bool ResizeImageData(KsImageData& image, uint32_t rows, uint32_t columns);
bool ResizeImageData(KsMarkData& image, uint32_t rows, uint32_t columns);

// Sizes an image for a geometry and gives it that geometry; false, with nothing changed, for too many pixels.
template <class Image>
bool SizeFor(const PnImageParam& param, Image& image)
{
    if (!ResizeImageData(image, param.rows, param.columns))
        return false;
    image.param = param;
    return true;
}

// The image of a square slice: square pixels of a volume's smallest voxel spacing. Nothing for a side that is no count
// of pixels.
std::optional<PnImageParam> ImageOfSlice(const KsSliceParam& slice, const KsVolumeData& volume);

// The smallest voxel spacing, mm.
double PixelSpacing(const KsVolumeData& volume);

// Copies `count` numbers; nothing for a count below 1.
void CopyDoubles(const double* source, double* target, int count);
} // namespace corvane::core

#endif
