#ifndef CORVANE_HOST_VOLUME_H
#define CORVANE_HOST_VOLUME_H

#include "corvane/Records.h"
#include "vec3.h"

#include <cstdint>
#include <string>
#include <vector>

namespace corvane::host
{
// Where the voxels of a grid lie, in patient space (LPS mm). Voxel (i, j, k) lies at
// origin + i * spacing.x * rowDirection + j * spacing.y * columnDirection + k * spacing.z * sliceDirection.
// Row and column direction are perpendicular; the slice direction may lean (a tilted stack).
struct Grid
{
    int sizeX = 0, sizeY = 0, sizeZ = 0;                // voxels
    Vec3 spacing;                                       // mm, each above 0
    Vec3 origin;                                        // centre of voxel (0, 0, 0)
    Vec3 rowDirection, columnDirection, sliceDirection; // unit vectors

    size_t VoxelsPerSlice() const { return size_t(sizeX) * size_t(sizeY); }
    size_t VoxelCount() const { return VoxelsPerSlice() * size_t(sizeZ); }
};

// Patient mm of a voxel index and back; exact for tilted stacks.
Vec3 IndexToPatient(const Grid& grid, Vec3 index);
Vec3 PatientToIndex(const Grid& grid, Vec3 patient);

// The angle between the slice direction and the line perpendicular to the slices, degrees, 0 to 90.
double TiltDegrees(const Grid& grid);

// Three letters for the directions in which i, j and k grow: R or L, A or P, I or S, the closest one each ("LPS").
std::string OrientationLetters(const Grid& grid);

// A volume in memory.
struct Volume
{
    Grid grid;
    std::vector<int16_t> voxels; // VoxelCount() stored values, x fastest, then y, then z
    std::vector<uint8_t> labels; // as many label bytes (label_byte.h), or none

    // Real value (HU for CT) = valueSlope * stored value + valueIntercept.
    double valueSlope = 1.0;
    double valueIntercept = 0.0;

    std::string modality;              // "CT", "MR", ... as DICOM says it, or empty
    std::string description;           // series description, file name or the like; one line
    std::vector<std::string> warnings; // what reading lost or doubts, one line each
};

// Which axes get one replicated layer of voxels on either side, so that the outermost voxels can be sampled.
struct Padding
{
    bool x = false, y = false, z = false;
};

// Padding of every axis along which the grid has fewer than 16 voxels.
Padding PaddingOfThinAxes(const Grid& grid);

// A volume as the library reads it: the records, and the memory that they point to as far as it is not the volume's.
// Borrows the volume's voxels and labels; padding along z only repeats slice pointers, padding along x or y copies.
class VolumeView
{
public:
    VolumeView(const Volume& volume, Padding padding);
    VolumeView(const VolumeView&) = delete;
    VolumeView& operator=(const VolumeView&) = delete;

    const KsVolumeData& Data() const { return data_; }
    const KsVolumeMark& Labels() const { return labels_; } // null slice table when the volume has no labels
    const Grid& PaddedGrid() const { return grid_; }

private:
    Grid grid_;
    std::vector<int16_t> paddedVoxels_;
    std::vector<uint8_t> paddedLabels_;
    std::vector<const int16_t*> slices_;
    std::vector<uint8_t*> labelSlices_;
    KsVolumeData data_ = {};
    KsVolumeMark labels_ = {};
};
} // namespace corvane::host

#endif
