#include "host/numbers.h"
#include "host/palette_presets.h"
#include "host/phantom.h"
#include "host/view_rendering.h"
#include "host/write_png.h"
#include "png_reader.h"
#include "read_testing.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// Small pictures of the phantom as they were when somebody looked at them and found them right. A picture that differs
// is written beside the test program, to be looked at and, if it is right, to take the old one's place.
namespace corvane::host
{
namespace
{
constexpr int kSide = 96;
// The library's pictures are the same bits everywhere; the host's tables may differ in the last bit where a C library
// computes a power, which moves a channel by a level.
constexpr int kTolerance = 2; // levels of 255 in any channel of any pixel

constexpr char kSmallPhantom[] = "phantom:size=96x96x80,spacing=3.2x3.2x4";

std::map<int, Palette> AllLabels(const std::string& preset, const Volume& volume)
{
    const Palette palette = PaletteOf(*PresetOf(preset, volume), volume.valueSlope, volume.valueIntercept, 3.2);
    std::map<int, Palette> byLabel;
    for (int label = 0; label < 64; ++label)
        byLabel[label] = palette;
    return byLabel;
}

Picture Rendered(const std::string& phantom, const std::string& preset, const View& view)
{
    const Volume volume = MakePhantom(phantom);
    const VolumeView records(volume, Padding{});
    const PaletteTables tables(AllLabels(preset, volume));
    ViewRenderer renderer(records, tables);
    const double pixel = FittingPixelSize({view}, CornersOf(volume.grid), kSide, kSide);
    return PictureOf(renderer.Render({view, kSide, kSide, pixel, {}}), Rgb{}, true);
}

Picture RenderedInside(const Vec3& eye, const Vec3& direction)
{
    const Volume volume = MakePhantom(kSmallPhantom);
    const VolumeView records(volume, Padding{});
    const PaletteTables tables(AllLabels("airway", volume));
    ViewRenderer renderer(records, tables);
    return PictureOf(renderer.RenderInside(InsideViewOf(eye, direction), 90.0, kSide, kSide), Rgb{}, false);
}

void ExpectLikeReference(const Picture& picture, const std::string& name)
{
    const auto report = [&](const std::string& what)
    {
        std::ofstream(name, std::ios::binary) << PngOf(picture);
        ADD_FAILURE() << what << "; what came out is " << std::filesystem::absolute(name).string();
    };
    const std::filesystem::path path = std::filesystem::path(CORVANE_REFERENCE_PICTURES) / name;
    if (!std::filesystem::exists(path))
        return report("there is no reference " + name);
    const PngFile reference = ReadPng(ReadBytes(path.string()));
    ASSERT_EQ(reference.rows, kSide);
    ASSERT_EQ(reference.columns, kSide);
    ASSERT_EQ(reference.channels, 3);
    for (size_t sample = 0; sample < picture.rgb.size(); ++sample)
        if (std::abs(int(reference.samples[sample]) - int(picture.rgb[sample])) > kTolerance)
            return report(name + " differs from pixel " + std::to_string(sample / 3 % kSide) + ", " +
                          std::to_string(sample / 3 / kSide) + " on");
}

TEST(ReferencePictures, ShowThePhantomsBonesFromTheFront)
{
    ExpectLikeReference(Rendered(kSmallPhantom, "bone", NamedView("anterior")), "bone_anterior.png");
}

TEST(ReferencePictures, ShowTheDefaultPaletteFromAnOddAngle)
{
    ExpectLikeReference(Rendered(kSmallPhantom, "default", Turned(NamedView("anterior"), 30, 20, 10)),
                        "default_oblique.png");
}

TEST(ReferencePictures, ShowTheSkinOfATiltedScanFromTheLeft)
{
    ExpectLikeReference(Rendered(std::string(kSmallPhantom) + ",tilt=20", "skin", NamedView("left")),
                        "skin_tilted_left.png");
}

TEST(ReferencePictures, ShowTheAirwayFromInside)
{
    ExpectLikeReference(RenderedInside({1.5, 7, 120}, {0, 0, -1}), "airway_inside.png");
}
} // namespace
} // namespace corvane::host
