#include "orthographic_camera.h"

#include "core/trigonometry.h"

#include <cmath>

namespace corvane::camera
{
using namespace core;

bool OrthographicCamera::SetSize(float width, float height)
{
    if (!Camera::SetSize(width, height))
        return false;
    zoom_ = 1.0f;
    baseWidth_ = width;
    baseHeight_ = height;
    return true;
}

void OrthographicCamera::RotateH(float angle) { Orbit(angle, axisX_); }

void OrthographicCamera::RotateV(float angle) { Orbit(angle, up_); }

void OrthographicCamera::RotateToSagittal() { LookAlong({-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}); }

void OrthographicCamera::RotateToCoronal() { LookAlong({0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}); }

void OrthographicCamera::RotateToAxial() { LookAlong({0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}); }

void OrthographicCamera::RotateToZ() { RotateToAxial(); }

void OrthographicCamera::RotateToX() { LookAlong({-1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}); }

void OrthographicCamera::RotateToY() { RotateToCoronal(); }

void OrthographicCamera::RotateToBack()
{
    eye_ = origin_ + distance_ * direction_;
    Update();
}

bool OrthographicCamera::GetImageParams(int rows, int columns, PnImageParam& param) const
{
    if (rows < 1 || columns < 1)
        return false;
    const double aspect = double(columns) / rows;
    if (aspect > width_ / height_)
        WriteParams(rows, columns, height_ * aspect, height_, param);
    else
        WriteParams(rows, columns, width_, width_ / aspect, param);
    return true;
}

void OrthographicCamera::Zoom(float factor)
{
    if (!std::isfinite(factor))
        return;
    zoom_ = factor;
    const float width = float(baseWidth_) * factor;
    const float height = float(baseHeight_) * factor;
    if (width > 0.0f && height > 0.0f && std::isfinite(width) && std::isfinite(height))
    {
        width_ = width;
        height_ = height;
    }
}

void OrthographicCamera::Orbit(float angle, Vec3d towards)
{
    if (!std::isfinite(angle))
        return;
    const SineCosine turn = SineCosineOf(angle);
    eye_ = origin_ - (distance_ * turn.cosine) * direction_ + (distance_ * turn.sine) * towards;
    Update();
}

void OrthographicCamera::LookAlong(Vec3d direction, Vec3d up)
{
    eye_ = origin_ - distance_ * direction;
    up_ = up;
    Update();
}
} // namespace corvane::camera
