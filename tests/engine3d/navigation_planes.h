#ifndef CORVANE_TESTS_ENGINE3D_NAVIGATION_PLANES_H
#define CORVANE_TESTS_ENGINE3D_NAVIGATION_PLANES_H

#include "corvane/Engine3D.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <cstring>

// Where an engine's cameras stand.
namespace corvane::tests
{
inline bool IsSame(const PnImageParam& a, const PnImageParam& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

inline PnImageParam Outside(Engine3D& engine)
{
    PnImageParam param = {};
    EXPECT_TRUE(engine.GetParamsOfVR(40, 60, param));
    return param;
}

// The perspective camera's own plane: an engine without a volume hands it out unchanged.
inline PnImageParam Inside(Engine3D& engine)
{
    PnImageRGB image = {};
    EXPECT_TRUE(engine.ImagingVE(40, 60, nullptr, 60, false, &image));
    return image.param;
}

inline void ExpectVector(const double* vector, double x, double y, double z)
{
    EXPECT_NEAR(vector[0], x, 1e-6);
    EXPECT_NEAR(vector[1], y, 1e-6);
    EXPECT_NEAR(vector[2], z, 1e-6);
}

inline TestVolume MakeBox()
{
    return MakeVolume(20, 24, 28, [](int, int, int) { return 0; });
}
} // namespace corvane::tests

#endif
