#ifndef CORVANE_TESTS_RENDER3D_SCENES_H
#define CORVANE_TESTS_RENDER3D_SCENES_H

#include "tests/core/random.h"
#include "tests/test_volume.h"

#include <array>
#include <functional>
#include <memory>

// Things to look at, and pictures to draw them in.
namespace corvane::tests
{
using Colour = std::array<uint8_t, 3>;      // red, green, blue
using Shading = std::array<float, 3>;       // ambient, diffuse, specular
constexpr Shading kFlat = {1, 0, 0};        // a colour looks the same from every side
constexpr uint32_t kUntouched = 0x5AA5C33C; // what pixels hold that nobody has drawn

// The lookup tables of a renderer, and their sum.
class TestPalette
{
public:
    // Gives a label a table over stored values from start to end.
    void Add(int label, int start, int end, const std::function<float(int)>& opacity,
             const std::function<Colour(int)>& colour, Shading shading = kFlat, bool visible = true);

    // From a stored value on everything is opaque and of one colour.
    void AddOpaqueFrom(int label, int start, Colour colour, Shading shading = kFlat);

    VolumePalette palette = {};

private:
    struct Table
    {
        std::vector<float> opacities;
        std::vector<uint8_t> colours;
        VolumePaletteEntry entry;
    };
    std::unique_ptr<Table> tables_[64];
    std::vector<float> sums_;
};

// An image with its buffer, all untouched.
struct TestImage
{
    explicit TestImage(const PnImageParam& param);
    TestImage(const TestImage& other) : pixels(other.pixels), image{pixels.data(), other.image.param} {}
    TestImage& operator=(const TestImage&) = delete;

    uint32_t At(int row, int column) const { return pixels[size_t(row) * image.param.columns + size_t(column)]; }

    std::vector<uint32_t> pixels;
    PnImageRGB image;
};

// Bits 0 to 7 coverage, then red, green and blue.
constexpr uint32_t PixelOf(int coverage, Colour colour)
{
    return uint32_t(coverage) | uint32_t(colour[0]) << 8 | uint32_t(colour[1]) << 16 | uint32_t(colour[2]) << 24;
}

struct Scene
{
    TestVolume volume;
    TestLabels labels;
    TestPalette palette;
};

// A volume of blobs, of noise or of a thin shell, anywhere and anyhow in space, with up to six labels that have tables
// and some voxels that have none or are cut.
//   shortest, longest  voxels along an axis
Scene RandomScene(Random& random, int shortest, int longest);

// An image plane of any direction in front of, in or behind a volume.
PnImageParam RandomImagePlane(Random& random, const KsVolumeData& volume);

// A smooth ball of stored values around a point in voxels: 1000 at its surface, falling by 200 per voxel outwards.
TestVolume MakeBall(int sizeX, int sizeY, int sizeZ, float x, float y, float z, float radius);

// Reports the first different pixel of two images, and how many differ.
void ExpectSamePixels(const TestImage& drawn, const TestImage& expected);
} // namespace corvane::tests

#endif
