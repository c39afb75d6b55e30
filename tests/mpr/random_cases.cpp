#include "random_cases.h"

#include <algorithm>
#include <cmath>

namespace corvane::tests
{
RandomFrame MakeRandomFrame(Random& random)
{
    // A unit quaternion as a rotation matrix.
    double w, x, y, z, norm;
    do
    {
        w = random.Real(-1, 1), x = random.Real(-1, 1), y = random.Real(-1, 1), z = random.Real(-1, 1);
        norm = std::sqrt(w * w + x * x + y * y + z * z);
    } while (norm < 0.1);
    w /= norm, x /= norm, y /= norm, z /= norm;
    return {{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
            {2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
            {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}};
}

void PlaceAtRandom(Random& random, KsVolumeData& volume)
{
    RandomFrame frame = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    if (random.Between(0, 3) != 0)
        frame = MakeRandomFrame(random);
    const double handedness = random.Between(0, 2) == 0 ? -1.0 : 1.0;
    const double tilt = random.Between(0, 1) == 0 ? 0.0 : random.Real(-0.7, 0.7);
    const double towards = random.Real(0.0, 6.28);
    for (int axis = 0; axis < 3; ++axis)
    {
        const double inPlane = std::cos(towards) * frame.row[axis] + std::sin(towards) * frame.column[axis];
        volume.spacing[axis] = float(random.Real(0.3, 3.0));
        volume.origin[axis] = float(random.Real(-400.0, 400.0));
        volume.rowDirection[axis] = float(frame.row[axis]);
        volume.columnDirection[axis] = float(frame.column[axis]);
        volume.sliceDirection[axis] =
            float(std::cos(tilt) * handedness * frame.normal[axis] + std::sin(tilt) * inPlane);
    }
}

void PatientPlace(const KsVolumeData& volume, const double* index, double* patient)
{
    for (int axis = 0; axis < 3; ++axis)
        patient[axis] = double(volume.origin[axis]) +
                        index[0] * double(volume.spacing[0]) * double(volume.rowDirection[axis]) +
                        index[1] * double(volume.spacing[1]) * double(volume.columnDirection[axis]) +
                        index[2] * double(volume.spacing[2]) * double(volume.sliceDirection[axis]);
}

PnImageParam MakeRandomPlane(Random& random, const KsVolumeData& volume)
{
    PnImageParam plane = {};
    plane.rows = uint32_t(random.Between(1, 24));
    plane.columns = uint32_t(random.Between(1, 200));
    plane.rowSpacing = random.Real(0.1, 2.5);
    plane.columnSpacing = random.Real(0.05, 1.5);
    const int kind = random.Between(0, 2);
    if (kind == 0)
    {
        const float* axes[3] = {volume.rowDirection, volume.columnDirection, volume.sliceDirection};
        const int along = random.Between(0, 2);
        const int down = (along + random.Between(1, 2)) % 3;
        const double sign = random.Between(0, 1) == 0 ? -1.0 : 1.0;
        for (int axis = 0; axis < 3; ++axis)
        {
            plane.rowDirection[axis] = sign * double(axes[along][axis]);
            plane.columnDirection[axis] = double(axes[down][axis]);
        }
    }
    else if (kind == 1)
    {
        const int along = random.Between(0, 2);
        plane.rowDirection[along] = random.Between(0, 1) == 0 ? -1.0 : 1.0;
        plane.columnDirection[(along + random.Between(1, 2)) % 3] = 1.0;
    }
    else
    {
        const RandomFrame frame = MakeRandomFrame(random);
        std::copy_n(frame.row, 3, plane.rowDirection);
        std::copy_n(frame.column, 3, plane.columnDirection);
    }

    // Most planes go through the volume, some past it.
    const double beyond = random.Between(0, 4) == 0 ? 0.3 : -0.2;
    const double index[3] = {random.Real(-beyond, 1 + beyond) * volume.sizeX,
                             random.Real(-beyond, 1 + beyond) * volume.sizeY,
                             random.Real(-beyond, 1 + beyond) * volume.sizeZ};
    PatientPlace(volume, index, plane.position);
    const double back = random.Real(0.0, 1.0) * plane.columns * plane.columnSpacing;
    const double up = random.Real(0.0, 1.0) * plane.rows * plane.rowSpacing;
    for (int axis = 0; axis < 3; ++axis)
        plane.position[axis] -= back * plane.rowDirection[axis] + up * plane.columnDirection[axis];
    return plane;
}
} // namespace corvane::tests
