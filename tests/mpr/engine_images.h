#ifndef CORVANE_TESTS_MPR_ENGINE_IMAGES_H
#define CORVANE_TESTS_MPR_ENGINE_IMAGES_H

#include "corvane/EngineMPR.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace corvane::tests
{
// Every form of EngineMPR that makes an image, by plane and by slice; the slabs after the plain ones.
using ImagingForm = std::function<bool(KsImageData*)>;

inline std::vector<ImagingForm> FormsByType(EngineMPR& engine, KsMPRType type, const KsVolumeData& volume)
{
    return {[&engine, type](KsImageData* image) { return engine.Imaging(type, image); },
            [&engine, type, &volume](KsImageData* image) { return engine.Imaging(type, volume, image); },
            [&engine, type](KsImageData* image) { return engine.ImagingMIP(type, 5.0f, image); },
            [&engine, type](KsImageData* image) { return engine.ImagingMinIP(type, 5.0f, image); },
            [&engine, type](KsImageData* image) { return engine.ImagingAIP(type, 5.0f, image); }};
}

inline std::vector<ImagingForm> FormsBySlice(EngineMPR& engine, const KsSliceParam& slice)
{
    return {[&engine, slice](KsImageData* image) { return engine.Imaging(slice, image); },
            [&engine, slice](KsImageData* image) { return engine.ImagingMIP(slice, 5.0f, image); },
            [&engine, slice](KsImageData* image) { return engine.ImagingMinIP(slice, 5.0f, image); },
            [&engine, slice](KsImageData* image) { return engine.ImagingAIP(slice, 5.0f, image); }};
}

inline KsSliceParam SliceAt(double x, double y, double z, double sideLength)
{
    return {{x, y, z}, {1, 0, 0}, {0, 1, 0}, sideLength};
}

inline void ExpectSized(const KsImageData& image, uint32_t rows, uint32_t columns)
{
    EXPECT_EQ(image.rows, rows);
    EXPECT_EQ(image.columns, columns);
    EXPECT_EQ(image.valueCount, rows * columns);
    EXPECT_EQ(image.ownsValues, 1);
    EXPECT_NE(image.values, nullptr);
    EXPECT_EQ(image.param.rows, rows);
    EXPECT_EQ(image.param.columns, columns);
}
} // namespace corvane::tests

#endif
