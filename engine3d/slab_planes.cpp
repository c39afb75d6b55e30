#include "slab_planes.h"

#include "core/vec3.h"

namespace corvane::engine3d
{
using namespace core;

namespace
{
// Divided by its length plus 1e-6, so that parallel axes give a normal of no length.
Vec3d NormalOf(Vec3d row, Vec3d column)
{
    const Vec3d normal = Cross(row, column);
    const double length = Length(normal) + 1e-6;
    return {normal.x / length, normal.y / length, normal.z / length};
}
} // namespace

KsCamera CameraOfSlice(const KsSliceParam& slice, float thickness)
{
    const Vec3d row = VecOf(slice.rowDirection), column = VecOf(slice.columnDirection);
    const double half = slice.sideLength / 2;
    const Vec3f middle = ToFloat(VecOf(slice.position) + half * row + half * column);
    const Vec3f normal = ToFloat(NormalOf(row, column));
    KsCamera camera;
    Store(middle - (thickness / 2) * normal, camera.center);
    Store(normal, camera.direction);
    Store(Cross(ToFloat(row), normal), camera.up);
    return camera;
}

PnImageParam StartOfSlab(const PnImageParam& plane, float thickness)
{
    const Vec3d normal = NormalOf(VecOf(plane.rowDirection), VecOf(plane.columnDirection));
    PnImageParam start = plane;
    Store(VecOf(plane.position) - (double(thickness) / 2) * normal, start.position);
    return start;
}
} // namespace corvane::engine3d
