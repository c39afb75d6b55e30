#ifndef CORVANE_CAPI_ARGUMENTS_H
#define CORVANE_CAPI_ARGUMENTS_H

#include "corvane/corvane_c_common.h"

#include <cmath>

// What is wrong with arguments. Each check is CORVANE_OK or the error; First gives the first error of several.
namespace corvane::capi
{
constexpr CorvaneStatus First(CorvaneStatus status) { return status; }

template <class... Others>
constexpr CorvaneStatus First(CorvaneStatus status, Others... others)
{
    return status != CORVANE_OK ? status : First(others...);
}

constexpr CorvaneStatus Require(bool condition) { return condition ? CORVANE_OK : CORVANE_ERROR_ARGUMENT; }

template <class... Pointers>
constexpr CorvaneStatus NotNull(const Pointers*... pointers)
{
    return Require((... && (pointers != nullptr)));
}

template <class... Numbers>
CorvaneStatus Finite(Numbers... numbers)
{
    return Require((... && std::isfinite(numbers)));
}

CorvaneStatus Finite3(const double* numbers);
CorvaneStatus Finite3(const float* numbers);

// A volume with voxels: a slice table without gaps and sizes of at least 1.
CorvaneStatus IsVolume(const KsVolumeData* volume);

// Sizes that Engine3D and Render3D take.
CorvaneStatus HasRenderableSizes(const KsVolumeData& volume);

// A volume with voxels and such sizes.
CorvaneStatus IsRenderableVolume(const KsVolumeData* volume);

// Labels with a slice table without gaps; sizes are compared with the volume's by the library.
CorvaneStatus IsMark(const KsVolumeMark* mark);

// A palette whose points are there.
CorvaneStatus IsPalette(const KsPalette* palette);

CorvaneStatus IsPlaneType(KsMPRType type);

// Unit vectors at right angles, to 0.001.
CorvaneStatus AreAxes(const double* row, const double* column);

// Three frames of such axes round a point within 1e9 mm; the normals follow the axes.
CorvaneStatus AreFrames(const KsMPRParam* planes);

// A plane of a scene: with pixels of 1e-6 to 1e6 mm, axes, and its first pixel within 1e9 mm.
CorvaneStatus IsPlane(const PnImageParam* plane);

// Whether a buffer of `capacity` elements holds an image.
CorvaneStatus Holds(size_t capacity, uint32_t rows, uint32_t columns);
CorvaneStatus Holds(size_t capacity, int32_t width, int32_t height);

// An image record whose buffer holds its rows and columns.
CorvaneStatus IsImage(const PnImageRGB* image, size_t capacity);
CorvaneStatus IsImage(const KsImageVAL* image, size_t capacity);
CorvaneStatus IsImage(const KsImageMark* image, size_t capacity);
} // namespace corvane::capi

#endif
