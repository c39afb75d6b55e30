#ifndef CORVANE_TESTS_MPR_PLAIN_PLANES_H
#define CORVANE_TESTS_MPR_PLAIN_PLANES_H

#include "corvane/Records.h"

#include <cstdint>
#include <optional>
#include <vector>

// Plane resampling once more, one number at a time, to hold the library against. Shares no code with it. Single
// precision and the order of operations are part of the result.
namespace corvane::tests
{
// A plane along patient x and y with square pixels.
inline PnImageParam AxialPlane(double x, double y, double z, uint32_t rows, uint32_t columns, double spacing)
{
    return {rows, columns, spacing, spacing, {1, 0, 0}, {0, 1, 0}, {x, y, z}};
}

// What a plane needs to know of a volume.
struct PlainGeometry
{
    float origin[3], spacing[3], row[3], column[3];
    float normal[3];       // row x column
    float sliceInFrame[3]; // slice direction along row, column and normal
    float corners[8][3];   // patient space, 1.1 voxels inside the outermost voxel centres
    float boxLow[3], boxHigh[3];
    float clipLow[3], clipHigh[3];   // the box and 0.1 mm around it
    float boundLow[3], boundHigh[3]; // voxels: where sampling is safe
};

// For a volume with positive spacings.
PlainGeometry PlainGeometryOf(const KsVolumeData& volume);

// The stored value at a place in voxels, trilinear, plus 0.5 and truncated; nothing when a neighbour lies outside. In
// the last slice it is interpolated with itself.
std::optional<int16_t> PlainValue(const KsVolumeData& volume, const float* place);

// The label nearest to a place in voxels; 0 outside.
uint8_t PlainLabel(const KsVolumeMark& mark, const float* place);

// Stored values on a plane; -1024 outside.
std::vector<int16_t> PlainImage(const KsVolumeData& volume, const PnImageParam& plane);

// Labels on a plane; 0 outside. The rows are clipped with the vectors in this order: patient direction in place of the
// index start, index direction in place of the patient direction, index start in place of the index direction.
std::vector<uint8_t> PlainLabels(const KsVolumeData& volume, const KsVolumeMark& mark, const PnImageParam& plane);
} // namespace corvane::tests

#endif
