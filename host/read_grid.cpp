#include "read_grid.h"

#include "error.h"
#include "read_text.h"

#include <algorithm>
#include <cstdint>
#include <numbers>

namespace corvane::host
{
namespace
{
constexpr int64_t kMaxPixelsPerSlice = INT32_MAX;       // pixels of a slice are counted in 32 bits
constexpr int64_t kMaxVoxels = int64_t(1) << 32;        // 8 GiB of stored values
constexpr double kMinSpacing = 1e-6, kMaxSpacing = 1e6; // mm; beyond them single precision ends
constexpr double kMaxRatio = 1e4;                       // of spacings; beyond it a picture takes minutes
constexpr double kMaxDistance = 1e9;                    // mm from the patient's zero
constexpr double kMaxCosine = 1e-3;                     // of row with column direction: rounding, 0.06 degrees
constexpr double kQuietCosine = 1e-5;                   // single-precision headers reach 1e-7
constexpr double kMinSliceCosine = 0.05;                // of slice direction with the normal: 87 degrees of tilt

bool IsFinite(Vec3 v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }
Vec3 WithoutMinusZero(Vec3 v) { return v + Vec3(); } // so that no message or file shows "-0"
double Degrees(double radians) { return radians * 180 / std::numbers::pi; }
} // namespace

void CheckSizes(const std::string& name, const std::array<int64_t, 3>& sizes)
{
    const std::string text =
        std::to_string(sizes[0]) + " x " + std::to_string(sizes[1]) + " x " + std::to_string(sizes[2]) + " voxels";
    if (*std::min_element(sizes.begin(), sizes.end()) < 1)
        throw Error(ErrorKind::Input, name + ": the header says " + text + "; each size must be at least 1");
    if (sizes[0] > kMaxPixelsPerSlice / sizes[1] || sizes[2] > kMaxVoxels / (sizes[0] * sizes[1]))
        throw Error(ErrorKind::Input, name + ": the header says " + text + ", more than the limits of " +
                                          std::to_string(kMaxPixelsPerSlice) + " per slice and " +
                                          std::to_string(kMaxVoxels) + " in all");
}

Grid GridFromSteps(const std::string& name, const std::array<int64_t, 3>& sizes, Vec3 origin,
                   const std::array<Vec3, 3>& steps, std::vector<std::string>& warnings)
{
    CheckSizes(name, sizes);
    if (!IsFinite(origin) || !IsFinite(steps[0]) || !IsFinite(steps[1]) || !IsFinite(steps[2]))
        throw Error(ErrorKind::Input, name + ": the geometry in the header holds numbers that are not finite");

    const double spacingX = Length(steps[0]), spacingY = Length(steps[1]);
    double spacingZ = Length(steps[2]);
    if (!(spacingX > 0) || !(spacingY > 0) || (!(spacingZ > 0) && sizes[2] > 1))
        throw Error(ErrorKind::Input, name + ": the header says voxel spacings " + Number(spacingX) + " x " +
                                          Number(spacingY) + " x " + Number(spacingZ) + " mm; each must be above 0");

    const double least = std::min({spacingX, spacingY, spacingZ > 0 ? spacingZ : spacingX});
    const double most = std::max({spacingX, spacingY, spacingZ});
    if (least < kMinSpacing || most > kMaxSpacing || most > kMaxRatio * least || !(Length(origin) <= kMaxDistance))
        throw Error(ErrorKind::Input, name + ": the header says voxel spacings from " + Number(least) + " to " +
                                          Number(most) + " mm and the first voxel at " + PointText(origin) +
                                          ", which is no patient; the header or its unit is wrong");

    const Vec3 row = Unit(steps[0]);
    const double cosine = Dot(row, Unit(steps[1]));
    if (std::abs(cosine) > kMaxCosine)
        throw Error(ErrorKind::Input, name + ": row and column direction enclose " +
                                          Number(Degrees(std::acos(cosine))) +
                                          " degrees, not 90; resample the volume onto a rectangular grid first");
    if (std::abs(cosine) > kQuietCosine)
        warnings.push_back("row and column direction enclose " + Number(Degrees(std::acos(cosine))) +
                           " degrees; taken as 90");
    const Vec3 column = Unit(steps[1] - Dot(row, steps[1]) * row);
    const Vec3 normal = Cross(row, column);

    Vec3 slice = normal;
    if (spacingZ > 0)
        slice = Unit(steps[2]);
    else
    {
        spacingZ = std::min(spacingX, spacingY);
        warnings.push_back("a single slice without a slice spacing; taken as " + Number(spacingZ) + " mm");
    }
    if (std::abs(Dot(slice, normal)) < kMinSliceCosine)
        throw Error(ErrorKind::Input, name + ": the slice direction lies in the plane of the slices (" +
                                          Number(Degrees(std::asin(std::abs(Dot(slice, normal))))) +
                                          " degrees from it); the header's geometry is wrong");

    Grid grid;
    grid.sizeX = int(sizes[0]);
    grid.sizeY = int(sizes[1]);
    grid.sizeZ = int(sizes[2]);
    grid.spacing = {spacingX, spacingY, spacingZ};
    grid.origin = WithoutMinusZero(origin);
    grid.rowDirection = WithoutMinusZero(row);
    grid.columnDirection = WithoutMinusZero(column);
    grid.sliceDirection = WithoutMinusZero(slice);
    return grid;
}
} // namespace corvane::host
