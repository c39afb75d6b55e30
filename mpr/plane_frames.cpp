#include "plane_frames.h"

#include "core/trigonometry.h"
#include "core/vec3.h"

#include <cmath>

using namespace corvane::core;

namespace corvane::mpr
{
namespace
{
constexpr KsPlaneFrame kTransverse = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr KsPlaneFrame kSagittal = {{0, 1, 0}, {0, 0, -1}, {-1, 0, 0}};
constexpr KsPlaneFrame kCoronal = {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}};

// Rodrigues' rotation of a vector about a unit axis, then made a unit vector again so that rounding does not add up
// over many rotations. A zero vector (a frame before the first reset) stays zero.
void RotateVector(double* numbers, Vec3d axis, SineCosine angle)
{
    const Vec3d v = VecOf(numbers);
    const Vec3d turned = angle.cosine * v + angle.sine * Cross(axis, v) + (Dot(axis, v) * (1.0 - angle.cosine)) * axis;
    if (Length(turned) > 0.0)
        Store(Unit(turned), numbers);
}

void RotateFrame(KsPlaneFrame& frame, Vec3d axis, SineCosine angle)
{
    RotateVector(frame.rowDirection, axis, angle);
    RotateVector(frame.columnDirection, axis, angle);
    RotateVector(frame.normal, axis, angle);
}
} // namespace

void PlaneFrames::Reset()
{
    params_.transverse = kTransverse;
    params_.sagittal = kSagittal;
    params_.coronal = kCoronal;
}

const KsPlaneFrame* PlaneFrames::FrameOf(KsMPRType type) const
{
    switch (type)
    {
    case KsMPRTransverse:
        return &params_.transverse;
    case KsMPRSagittal:
        return &params_.sagittal;
    case KsMPRCoronal:
        return &params_.coronal;
    }
    return nullptr;
}

bool PlaneFrames::Rotate(KsMPRType type, float angle)
{
    const KsPlaneFrame* fixed = FrameOf(type);
    if (!fixed || !std::isfinite(angle))
        return false;
    const Vec3d axis = VecOf(fixed->normal);
    const SineCosine turn = SineCosineOf(double(angle));
    KsPlaneFrame* const frames[] = {&params_.transverse, &params_.sagittal, &params_.coronal};
    for (KsPlaneFrame* frame : frames)
        if (frame != fixed)
            RotateFrame(*frame, axis, turn);
    return true;
}
} // namespace corvane::mpr
