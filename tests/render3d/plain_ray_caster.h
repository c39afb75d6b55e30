#ifndef CORVANE_TESTS_RENDER3D_PLAIN_RAY_CASTER_H
#define CORVANE_TESTS_RENDER3D_PLAIN_RAY_CASTER_H

#include "core/geometry.h"

#include <cstdint>
#include <span>
#include <vector>

// Volume rendering and endoscopy once more, one ray and one number at a time, to hold the library against. Shares with
// it only the mapping between voxels and patient space and the clipping of a ray. Single precision and the order of
// operations are part of the result.
namespace corvane::tests
{
class PlainRayCaster
{
public:
    // Slices, labels and tables are borrowed.
    PlainRayCaster(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette);

    // Draws what Render3D::ImagingVR draws into an image of the host's.
    void DrawVolume(const PnImageRGB& image, std::span<const KsBlendImage> blends = {}) const;

    // Draws what Render3D::ImagingVE draws, on an image plane that stands already.
    void DrawEndoscopy(core::Vec3f eye, const PnImageRGB& image) const;

    core::VolumeGeometry geometry = {}; // its visible box may be set

private:
    struct Layer
    {
        float depth, red, green, blue;
    };
    struct Sample
    {
        const VolumePaletteEntry* entry;
        float opacity, red, green, blue;
    };
    struct Ray
    {
        core::Vec3f patientStart, patientDirection, start, direction, step;
        float stepLength;
    };
    struct Light
    {
        float red = 0.0f, green = 0.0f, blue = 0.0f, transmittance = 1.0f;
    };

    bool LeafShows(int x, int y, int z) const;
    int LabelAt(int x, int y, int z) const;
    const VolumePaletteEntry* EntryOf(int label) const;
    float VoxelAt(int x, int y, int z) const;
    int EmptyEdgeAround(core::Vec3f position) const;
    Ray RayAlong(core::Vec3f patientStart, core::Vec3f patientDirection) const;
    std::vector<Layer> LayersOf(const PnImageRGB& image, std::span<const KsBlendImage> blends, const Ray& ray,
                                int64_t column, int64_t row) const;
    uint32_t Cast(const Ray& ray, const std::vector<Layer>& layers) const;
    bool Classify(core::Vec3f position, Sample& sample) const;
    void Shade(core::Vec3f position, core::Vec3f light, const Sample& sample, Light& colour) const;
    core::Vec3f GradientAt(core::Vec3f position) const;

    KsVolumeData volume_;
    KsVolumeMark mark_;
    VolumePalette palette_;
    std::vector<char> shows_[4]; // by edge 2, 4, 8, 16: whether a cell, x fastest, has anything to show
    core::Vec3f visibleCorners_[8] = {};
};
} // namespace corvane::tests

#endif
