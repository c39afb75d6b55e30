#ifndef CORVANE_TESTS_ENGINE3D_APPEARANCE_HOST_H
#define CORVANE_TESTS_ENGINE3D_APPEARANCE_HOST_H

#include "imaging_twin.h"

#include <algorithm>

// What a host sees of an engine's appearance.
namespace corvane::tests
{
// A host's record, released as a host would.
struct HostPalette : KsPalette
{
    HostPalette() = default;
    explicit HostPalette(Engine3D& engine) { EXPECT_TRUE(engine.GetPalette(*this)); }
    HostPalette(const HostPalette&) = delete;
    HostPalette& operator=(const HostPalette&) = delete;
    ~HostPalette()
    {
        if (ownsPoints)
            delete[] points;
    }
};

// The stored values of the engine's control points.
inline std::vector<int> ValuesOf(Engine3D& engine)
{
    const HostPalette palette(engine);
    std::vector<int> values;
    std::for_each_n(palette.points, palette.pointCount,
                    [&](const KsPalettePoint& point) { values.push_back(point.value); });
    return values;
}

inline void ExpectDrawnAlike(Twin& twin)
{
    const TestImage image = RenderingOf(twin.engine, 40, 40);
    ExpectSamePixels(image, RenderingOf(twin.render, PlaneOf(twin.engine, 40, 40)));
}
} // namespace corvane::tests

#endif
