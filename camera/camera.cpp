#include "camera.h"

#include "core/trigonometry.h"

#include <cmath>

namespace corvane::camera
{
using namespace core;

namespace
{
constexpr double kLeastDistance = 0.0001; // mm
constexpr double kSameComponent = 1e-5f;  // of unit vectors
constexpr double kFarthest = 1e100;       // mm; the square of a distance stays finite

bool IsSame(Vec3d a, Vec3d b)
{
    return std::abs(a.x - b.x) <= kSameComponent && std::abs(a.y - b.y) <= kSameComponent &&
           std::abs(a.z - b.z) <= kSameComponent;
}

bool IsParallel(Vec3d a, Vec3d b) { return IsSame(a, b) || IsSame(a, -1.0 * b); }
} // namespace

void Camera::SetEye(Vec3d eye)
{
    if (!IsUsable(eye))
        return;
    eye_ = eye;
    Update();
}

void Camera::SetOrigin(Vec3d origin)
{
    if (!IsUsable(origin))
        return;
    origin_ = origin;
    Update();
}

void Camera::GetImageOrigin(double width, double height, double* corner) const
{
    Store(eye_ - (width / 2.0) * axisX_ - (height / 2.0) * axisY_, corner);
}

void Camera::GetImageOrigin(double* corner) const { GetImageOrigin(width_, height_, corner); }

void Camera::RotateScreen(float angle)
{
    if (!std::isfinite(angle))
        return;
    const SineCosine turn = SineCosineOf(angle);
    axisX_ = Unit(turn.cosine * axisX_ + turn.sine * axisY_);
    up_ = Unit(Cross(axisX_, direction_));
    axisY_ = Unit(Cross(direction_, axisX_));
}

bool Camera::SetSize(float width, float height)
{
    if (!(width > 0.0f && height > 0.0f) || std::isinf(width) || std::isinf(height))
        return false;
    width_ = width;
    height_ = height;
    return true;
}

bool Camera::GetSize(double& width, double& height) const
{
    width = width_;
    height = height_;
    return true;
}

void Camera::Update()
{
    distance_ = Length(origin_ - eye_);
    if (distance_ <= kLeastDistance)
        return;
    direction_ = Unit(origin_ - eye_);
    if (IsParallel(up_, direction_))
    {
        // A view chosen while eye and origin coincided sets only up, so axisX may lie along the direction too. Then
        // axisY, perpendicular to it, does not.
        up_ = Unit(Cross(IsParallel(axisX_, direction_) ? axisY_ : axisX_, direction_));
        axisX_ = Unit(Cross(direction_, up_));
    }
    else
    {
        axisX_ = Unit(Cross(direction_, up_));
        up_ = Unit(Cross(axisX_, direction_));
    }
    axisY_ = Unit(Cross(direction_, axisX_));
}

void Camera::WriteParams(int rows, int columns, double width, double height, PnImageParam& param) const
{
    param.rows = uint32_t(rows);
    param.columns = uint32_t(columns);
    param.rowSpacing = height / rows;
    param.columnSpacing = width / columns;
    GetAxisX(param.rowDirection);
    GetAxisY(param.columnDirection);
    GetImageOrigin(width, height, param.position);
}

bool Camera::IsUsable(Vec3d point)
{
    return std::abs(point.x) <= kFarthest && std::abs(point.y) <= kFarthest && std::abs(point.z) <= kFarthest;
}
} // namespace corvane::camera
