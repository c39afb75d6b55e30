#ifndef CORVANE_TESTS_CAMERA_CAMERA_CHECKS_H
#define CORVANE_TESTS_CAMERA_CAMERA_CHECKS_H

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "camera/camera.h"

namespace corvane::camera
{
using core::Vec3d;

constexpr double kRounding = 1e-14; // a few roundings of numbers near 1
constexpr float kQuarterTurn = 1.57079632679f;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

inline void ExpectNear(Vec3d actual, Vec3d expected, double tolerance = kRounding)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

// Everything of a camera that its operations show, to compare two states bit for bit.
inline std::vector<double> StateOf(const Camera& camera)
{
    std::vector<double> state(2);
    camera.GetSize(state[0], state[1]);
    for (const Vec3d& v :
         {camera.Eye(), camera.Origin(), camera.Direction(), camera.Up(), camera.AxisX(), camera.AxisY()})
        state.insert(state.end(), {v.x, v.y, v.z});
    return state;
}

// Unit vectors, perpendicular, and the right way round: x to the right, y down, direction into the screen.
inline void ExpectScreenAxes(const Camera& camera, double tolerance = kRounding)
{
    EXPECT_NEAR(core::Length(camera.Direction()), 1.0, tolerance);
    EXPECT_NEAR(core::Length(camera.AxisX()), 1.0, tolerance);
    EXPECT_NEAR(core::Dot(camera.AxisX(), camera.Direction()), 0.0, tolerance);
    ExpectNear(camera.AxisY(), core::Cross(camera.Direction(), camera.AxisX()), tolerance);
    ExpectNear(camera.Up(), -1.0 * camera.AxisY(), tolerance);
}

// A standard view, its axes exact.
inline void ExpectView(const Camera& camera, Vec3d direction, Vec3d up, Vec3d axisX, Vec3d axisY)
{
    ExpectNear(camera.Direction(), direction, 0.0);
    ExpectNear(camera.Up(), up, 0.0);
    ExpectNear(camera.AxisX(), axisX, 0.0);
    ExpectNear(camera.AxisY(), axisY, 0.0);
}

// A vector turned about a unit axis, by Rodrigues' formula.
inline Vec3d Turned(Vec3d v, Vec3d axis, double angle)
{
    return std::cos(angle) * v + std::sin(angle) * core::Cross(axis, v) +
           (core::Dot(axis, v) * (1.0 - std::cos(angle))) * axis;
}
} // namespace corvane::camera

#endif
