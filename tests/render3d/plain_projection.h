#ifndef CORVANE_TESTS_RENDER3D_PLAIN_PROJECTION_H
#define CORVANE_TESTS_RENDER3D_PLAIN_PROJECTION_H

#include "corvane/Render3D.h"
#include "render3d/projection.h"

#include <cstdint>
#include <vector>

// Intensity projections once more, one ray and one number at a time, to hold the library against. Shares with it only
// the mapping between voxels and patient space and the clipping of a ray. Single precision and the order of operations
// are part of the result.
namespace corvane::tests
{
using render3d::ProjectionKind;

constexpr ProjectionKind kAllKinds[3] = {ProjectionKind::Maximum, ProjectionKind::Average, ProjectionKind::Minimum};
constexpr int16_t kBackground = -1024;
constexpr int16_t kUntouchedValue = 0x5AA5; // what images hold that nobody has drawn
constexpr float kWholeVolume = 10000;       // mm: the slab of the forms that take no thickness

// An image of stored values with its buffer, all untouched.
struct TestValues
{
    explicit TestValues(const PnImageParam& param);
    TestValues(const TestValues& other) : values(other.values), image{values.data(), other.image.param} {}
    TestValues& operator=(const TestValues&) = delete;

    int At(int row, int column) const { return values[size_t(row) * image.param.columns + size_t(column)]; }
    bool AreAll(int value) const;

    std::vector<int16_t> values;
    KsImageVAL image;
};

// Reports the first different pixel of two images, and how many differ.
void ExpectSameValues(const TestValues& drawn, const TestValues& expected);

// The forms of a kind that take the geometry of their image.
bool Imaging(Render3D& render, ProjectionKind kind, KsImageVAL* image);
bool ImagingSlab(Render3D& render, ProjectionKind kind, float thickness, KsImageVAL* image);

class PlainProjector
{
public:
    // Slices, labels and tables are borrowed. Without a palette labels are ignored.
    PlainProjector(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette* palette);

    void Project(ProjectionKind kind, float thickness, KsImageVAL& image) const;

    core::VolumeGeometry geometry = {}; // its visible box may be set

private:
    struct Range
    {
        int least, most;
    };
    struct Ray
    {
        core::Vec3f start, direction, step, entry;
        float stepLength, entryDistance, farLimit;
    };

    int VoxelAt(int x, int y, int z) const;
    int LabelAt(int x, int y, int z) const;
    bool Counts(int x, int y, int z) const;
    bool ReadNearest(core::Vec3f position, int& value) const;
    bool ReadBetween(core::Vec3f position, ProjectionKind kind, int bound, int& value) const;
    int HopelessEdgeAround(core::Vec3f position, ProjectionKind kind, int bound) const;
    int Extreme(const Ray& ray, ProjectionKind kind) const;
    int Average(const Ray& ray) const;

    KsVolumeData volume_;
    KsVolumeMark mark_;
    const VolumePalette* palette_;
    std::vector<Range> ranges_[4]; // by edge 2, 4, 8, 16: what a cell, x fastest, and its upper neighbours hold
};
} // namespace corvane::tests

#endif
