#include "volume.h"

#include <algorithm>
#include <numbers>

namespace corvane::host
{
namespace
{
constexpr int kThinAxis = 16; // voxels

// Copies a volume into one with replicated layers at the ends of x and y.
template <typename T>
std::vector<T> PadSlices(const std::vector<T>& voxels, const Grid& grid, int padX, int padY)
{
    const int paddedX = grid.sizeX + 2 * padX, paddedY = grid.sizeY + 2 * padY;
    std::vector<T> padded(size_t(paddedX) * size_t(paddedY) * size_t(grid.sizeZ));
    T* out = padded.data();
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < paddedY; ++j, out += paddedX)
        {
            const int sourceJ = std::clamp(j - padY, 0, grid.sizeY - 1);
            const T* row = voxels.data() + (size_t(k) * size_t(grid.sizeY) + size_t(sourceJ)) * size_t(grid.sizeX);
            std::copy(row, row + grid.sizeX, out + padX);
            std::fill(out, out + padX, row[0]);
            std::fill(out + padX + grid.sizeX, out + paddedX, row[grid.sizeX - 1]);
        }
    return padded;
}

void Copy(Vec3 from, float (&to)[3])
{
    to[0] = float(from.x);
    to[1] = float(from.y);
    to[2] = float(from.z);
}

char Letter(Vec3 direction)
{
    const double x = std::abs(direction.x), y = std::abs(direction.y), z = std::abs(direction.z);
    if (x >= y && x >= z)
        return direction.x > 0 ? 'L' : 'R';
    if (y >= z)
        return direction.y > 0 ? 'P' : 'A';
    return direction.z > 0 ? 'S' : 'I';
}
} // namespace

Vec3 IndexToPatient(const Grid& grid, Vec3 index)
{
    return grid.origin + (index.x * grid.spacing.x) * grid.rowDirection +
           (index.y * grid.spacing.y) * grid.columnDirection + (index.z * grid.spacing.z) * grid.sliceDirection;
}

Vec3 PatientToIndex(const Grid& grid, Vec3 patient)
{
    // Only the slice direction leaves the slice plane: it takes up the whole offset along the normal, and what is then
    // left lies in the plane of the perpendicular row and column direction.
    const Vec3 offset = patient - grid.origin;
    const Vec3 normal = Cross(grid.rowDirection, grid.columnDirection);
    const double alongSlice = Dot(offset, normal) / Dot(grid.sliceDirection, normal);
    const Vec3 inPlane = offset - alongSlice * grid.sliceDirection;
    return {Dot(inPlane, grid.rowDirection) / grid.spacing.x, Dot(inPlane, grid.columnDirection) / grid.spacing.y,
            alongSlice / grid.spacing.z};
}

double TiltDegrees(const Grid& grid)
{
    const Vec3 normal = Cross(grid.rowDirection, grid.columnDirection);
    const double across = Length(Cross(grid.sliceDirection, normal));
    return std::atan2(across, std::abs(Dot(grid.sliceDirection, normal))) * 180 / std::numbers::pi;
}

std::string OrientationLetters(const Grid& grid)
{
    return {Letter(grid.rowDirection), Letter(grid.columnDirection), Letter(grid.sliceDirection)};
}

Padding PaddingOfThinAxes(const Grid& grid)
{
    return {grid.sizeX < kThinAxis, grid.sizeY < kThinAxis, grid.sizeZ < kThinAxis};
}

VolumeView::VolumeView(const Volume& volume, Padding padding) : grid_(volume.grid)
{
    const Grid& source = volume.grid;
    const int padX = padding.x, padY = padding.y, padZ = padding.z;
    grid_.sizeX += 2 * padX;
    grid_.sizeY += 2 * padY;
    grid_.sizeZ += 2 * padZ;
    grid_.origin = IndexToPatient(source, {-double(padX), -double(padY), -double(padZ)});

    const int16_t* voxels = volume.voxels.data();
    const uint8_t* labels = volume.labels.data();
    if (padX || padY)
    {
        paddedVoxels_ = PadSlices(volume.voxels, source, padX, padY);
        voxels = paddedVoxels_.data();
        if (!volume.labels.empty())
        {
            paddedLabels_ = PadSlices(volume.labels, source, padX, padY);
            labels = paddedLabels_.data();
        }
    }
    for (int k = 0; k < grid_.sizeZ; ++k)
    {
        const size_t offset = size_t(std::clamp(k - padZ, 0, source.sizeZ - 1)) * grid_.VoxelsPerSlice();
        slices_.push_back(voxels + offset);
        // The record's labels can be written because cutting marks them there; planes and pictures only read them.
        if (!volume.labels.empty())
            labelSlices_.push_back(const_cast<uint8_t*>(labels) + offset);
    }

    data_.slices = slices_.data();
    data_.sizeX = grid_.sizeX;
    data_.sizeY = grid_.sizeY;
    data_.sizeZ = grid_.sizeZ;
    Copy(grid_.spacing, data_.spacing);
    Copy(grid_.origin, data_.origin);
    Copy(grid_.rowDirection, data_.rowDirection);
    Copy(grid_.columnDirection, data_.columnDirection);
    Copy(grid_.sliceDirection, data_.sliceDirection);
    if (!labelSlices_.empty())
        labels_ = {labelSlices_.data(), uint32_t(grid_.sizeX), uint32_t(grid_.sizeY), uint32_t(grid_.sizeZ)};
}
} // namespace corvane::host
