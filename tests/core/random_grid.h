#ifndef CORVANE_TESTS_CORE_RANDOM_GRID_H
#define CORVANE_TESTS_CORE_RANDOM_GRID_H

#include "corvane/Records.h"
#include "random.h"

#include <cmath>

namespace corvane::tests
{
// A grid in space without voxels: any orientation, slices tilted in any direction, every second one left-handed.
inline KsVolumeData RandomGrid(Random& random, int largestSize)
{
    using namespace core;
    KsVolumeData grid = {};
    grid.sizeX = random.Between(1, largestSize);
    grid.sizeY = random.Between(1, largestSize);
    grid.sizeZ = random.Between(1, largestSize);
    const Vec3d row = random.UnitVector();
    const Vec3d across = Cross(row, random.UnitVector());
    const double acrossLength = Length(across);
    if (acrossLength < 0.1)
        return RandomGrid(random, largestSize);
    const Vec3d column = 1 / acrossLength * across;
    const Vec3d normal = Cross(row, column);
    const Vec3d leaning =
        random.Real(-0.5, 0.5) * row + random.Real(-0.5, 0.5) * column + (random.Below(2) ? 1.0 : -1.0) * normal;
    Store(ToFloat(random.Vector(0.3, 3)), grid.spacing);
    Store(ToFloat(random.Vector(-200, 200)), grid.origin);
    Store(ToFloat(row), grid.rowDirection);
    Store(ToFloat(column), grid.columnDirection);
    Store(ToFloat(1 / Length(leaning) * leaning), grid.sliceDirection);
    return grid;
}
} // namespace corvane::tests

#endif
