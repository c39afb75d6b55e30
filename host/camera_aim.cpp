#include "camera_aim.h"

#include <algorithm>

namespace corvane::host
{
namespace
{
// A view that the engine has an operation for, or stands behind such a one.
struct StandardView
{
    View view;
    void (Engine3D::*turn)();
    bool fromBehind;
};

const StandardView kStandardViews[] = {
    {{{0, 1, 0}, {0, 0, 1}}, &Engine3D::RotateToCoronal, false},
    {{{0, -1, 0}, {0, 0, 1}}, &Engine3D::RotateToCoronal, true},
    {{{-1, 0, 0}, {0, 0, 1}}, &Engine3D::RotateToSagittal, false},
    {{{1, 0, 0}, {0, 0, 1}}, &Engine3D::RotateToSagittal, true},
    {{{0, 0, 1}, {0, -1, 0}}, &Engine3D::RotateToAxial, false},
    {{{0, 0, -1}, {0, -1, 0}}, &Engine3D::RotateToAxial, true},
};

const StandardView& NearestTo(Vec3 direction)
{
    return *std::max_element(std::begin(kStandardViews), std::end(kStandardViews),
                             [&](const StandardView& a, const StandardView& b)
                             { return Dot(a.view.direction, direction) < Dot(b.view.direction, direction); });
}

// The engine takes angles in single precision: what one step leaves, the next makes up for.
template <class Rotate>
void Turn(double angle, const Rotate& rotate)
{
    constexpr double kLeast = 1e-15, kMost = 1; // the camera keeps its upward side in steps below a right angle
    while (std::fabs(angle) > kLeast)
    {
        const float step = float(std::clamp(angle, -kMost, kMost));
        rotate(step);
        angle -= double(step);
    }
}
} // namespace

void AimCamera(Engine3D& engine, const View& view)
{
    const StandardView& start = NearestTo(view.direction);
    (engine.*start.turn)();
    if (start.fromBehind)
        engine.RotateToBack();

    const Vec3 ahead = start.view.direction, right = RightOf(start.view), up = start.view.up;
    const double toTheRight = std::atan2(Dot(view.direction, right), Dot(view.direction, ahead));
    const double upwards =
        std::atan2(Dot(view.direction, up), std::hypot(Dot(view.direction, right), Dot(view.direction, ahead)));
    // The camera inside turns its sight; the one outside moves its eye, and its sight goes the other way.
    const double sense = engine.GetRenderType() == KsRenderPerspective ? 1 : -1;
    Turn(sense * toTheRight, [&](float angle) { engine.RotateH(angle); });
    Turn(sense * upwards, [&](float angle) { engine.RotateV(angle); });

    const Vec3 reachedRight = std::cos(toTheRight) * right - std::sin(toTheRight) * ahead;
    const Vec3 reachedDown = Cross(view.direction, reachedRight);
    Turn(std::atan2(Dot(RightOf(view), reachedDown), Dot(RightOf(view), reachedRight)),
         [&](float angle) { engine.RotateScreen(angle); });
}
} // namespace corvane::host
