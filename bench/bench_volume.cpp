#include "bench_volume.h"

#include "host/read_volume.h"

#include <cmath>
#include <numbers>

namespace corvane::bench
{
using core::Vec3d;

BenchVolume::BenchVolume(const std::string& input, std::optional<Vec3d> eyeVoxel)
    : name(input.substr(input.rfind('/') + 1)), volume(host::ReadVolume(input)), records(volume, host::Padding{})
{
    const KsVolumeData& data = records.Data();
    view = core::VolumeViewOf(data);
    core::PrepareVolumeGeometry(data, geometry);
    eye = 0.5f * (geometry.boundingBox.min + geometry.boundingBox.max);
    if (eyeVoxel)
        eye = core::IndexToPatient(geometry.origin, geometry.directions, geometry.spacing, core::ToFloat(*eyeVoxel))
                  .value_or(eye);
}

PnImageParam BenchVolume::ObliquePlane(int side) const
{
    const double about = 30 * std::numbers::pi / 180, over = 20 * std::numbers::pi / 180;
    const Vec3d row = {std::cos(about), std::sin(about), 0};
    const Vec3d column = {-std::sin(about) * std::cos(over), std::cos(about) * std::cos(over), std::sin(over)};
    const Vec3d centre = 0.5 * core::ToDouble(geometry.boundingBox.min + geometry.boundingBox.max);
    PnImageParam plane = {};
    plane.rows = plane.columns = uint32_t(side);
    plane.rowSpacing = plane.columnSpacing = double(geometry.minSpacing);
    core::Store(row, plane.rowDirection);
    core::Store(column, plane.columnDirection);
    core::Store(centre - (0.5 * (side - 1) * plane.rowSpacing) * (row + column), plane.position);
    return plane;
}
} // namespace corvane::bench
