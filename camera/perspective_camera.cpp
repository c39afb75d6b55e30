#include "perspective_camera.h"

#include "core/trigonometry.h"

#include <cmath>

namespace corvane::camera
{
using namespace core;

PerspectiveCamera::PerspectiveCamera(double width, double height)
{
    width_ = width;
    height_ = height;
}

void PerspectiveCamera::SetEye(Vec3d eye)
{
    if (!IsUsable(eye))
        return;
    eye_ = eye;
    origin_ = eye_ + direction_;
    Update();
}

void PerspectiveCamera::RotateH(float angle) { Turn(angle, axisX_); }

void PerspectiveCamera::RotateV(float angle) { Turn(angle, up_); }

void PerspectiveCamera::RotateToSagittal() { LookAlong({-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}); }

void PerspectiveCamera::RotateToCoronal() { LookAlong({0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}); }

void PerspectiveCamera::RotateToAxial() { LookAlong({0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}); }

void PerspectiveCamera::RotateToZ() { RotateToAxial(); }

void PerspectiveCamera::RotateToX() { LookAlong({1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}); }

void PerspectiveCamera::RotateToY() { RotateToCoronal(); }

void PerspectiveCamera::RotateToBack()
{
    origin_ = eye_ - distance_ * direction_;
    Update();
}

bool PerspectiveCamera::GetImageParams(int rows, int columns, PnImageParam& param) const
{
    if (rows < 1 || columns < 1)
        return false;
    WriteParams(rows, columns, width_, height_, param);
    return true;
}

void PerspectiveCamera::Step(float distance)
{
    if (distance == 0.0f || !std::isfinite(distance))
        return;
    const Vec3d step = double(distance) * direction_;
    eye_ = eye_ + step;
    origin_ = origin_ + step;
    Update();
}

void PerspectiveCamera::Turn(float angle, Vec3d towards)
{
    if (!std::isfinite(angle))
        return;
    const SineCosine turn = SineCosineOf(angle);
    origin_ = eye_ + (distance_ * turn.cosine) * direction_ + (distance_ * turn.sine) * towards;
    Update();
}

void PerspectiveCamera::LookAlong(Vec3d direction, Vec3d up)
{
    origin_ = eye_ + direction;
    up_ = up;
    Update();
}
} // namespace corvane::camera
