#include "core/simd/isa.h"
#include "corvane/EngineMPR.h"
#include "corvane/Render3D.h"
#include "corvane/RenderMPR.h"
#include "host/picture_hash.h"
#include "mpr/kernels/kernels.h"
#include "patient.h"
#include "render3d/kernels/kernels.h"
#include "tests/mpr/owned_image.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <ostream>
#include <set>
#include <string>

// Every operation that makes an image makes the same bits on every machine: with every compiler, C library and
// instruction set. The hashes below are those of the first machine. A new operation gets a line in kImages; a line
// changes only when what an operation shows is meant to change.
namespace corvane::tests
{
namespace
{
// What an operation has made.
struct Outcome
{
    bool drawn;
    uint64_t hash;
    size_t shades; // different pixels
};

struct NamedImage
{
    const char* name;
    uint64_t hash;
    Outcome (*draw)();
};

template <class Pixel>
Outcome OutcomeOf(bool drawn, const PnImageParam& param, const Pixel* pixels)
{
    const std::set<Pixel> shades(pixels, pixels + size_t(param.rows) * param.columns);
    return {drawn, host::HashOf(param, pixels), shades.size()};
}

// Made once: nothing changes them.
const TestVolume kPatient = MakePatient(), kSecondPatient = MakeSecondPatient();
const TestLabels kLabels = MakePatientLabels(), kManyLabels = MakeManyLabels();
const TestPalette kTranslucent = MakeTranslucentPalette(), kSolid = MakeSolidPalette();

// Image planes in front of the patient, from the front, along an axis of the volume and askew, and one inside.
constexpr PnImageParam kFront = {80, 96, 1, 1, {1, 0, 0}, {0, 0, -1}, {-52.19, -21.03, 77.94}};
constexpr PnImageParam kAlongZ = {80, 96, 1, 1, {0.8, 0.6, 0}, {-0.48, 0.64, 0.6}, {-45.33, 13.99, -33.26}};
constexpr PnImageParam kAskew = {80, 96, 1, 1, {0.36, 0.48, -0.8}, {-0.8, 0.6, 0}, {-18.99, -45.93, 40.44}};
constexpr PnImageParam kInside = {80, 96, 1, 1, {0.36, 0.48, -0.8}, {-0.8, 0.6, 0}, {8.37, -9.45, 74.64}};
// Few planes get labels: those that start close to the first voxel.
constexpr PnImageParam kThroughLabels = {
    80, 96, 0.125, 0.5, {0.768, -0.024, 0.64}, {-0.48, 0.64, 0.6}, {-19.43, 15.74, -7.93}};
constexpr KsViewPoint kInAirway = {{-5.5f, 46.5f, 21}, {0.2112f, -0.2816f, 0.936f}, {0.8f, 0.6f, 0}};
constexpr KsViewPoint kAway = {{-5, -120, 60}, {0, 1, -0.125f}, {0, 0, 1}};
constexpr KsCamera kCamera = {{-4.7f, 39, 38.4f}, {0.48f, 0.64f, 0.6f}, {0.8f, -0.6f, 0}};

void Load(Render3D& render, const TestPalette& palette)
{
    EXPECT_TRUE(render.InitData(kPatient.data, kLabels.mark, palette.palette));
}

Outcome VolumeRendering(Render3D& render, const PnImageParam& param, int volume = 0)
{
    TestImage image(param);
    const bool drawn = render.ImagingVR(&image.image, volume);
    return OutcomeOf(drawn, image.image.param, image.image.pixels);
}

Outcome VolumeRendering(const TestPalette& palette, const PnImageParam& param)
{
    Render3D render;
    Load(render, palette);
    return VolumeRendering(render, param);
}

Outcome VolumeRenderingInVisibleBox()
{
    Render3D render;
    Load(render, kTranslucent);
    const float low[3] = {-25, 20, 0}, high[3] = {20, 42, 60};
    EXPECT_TRUE(render.SetVisibleBox(low, high));
    return VolumeRendering(render, kFront);
}

Outcome VolumeRenderingOfAttachedVolume()
{
    Render3D render;
    Load(render, kTranslucent);
    EXPECT_EQ(render.AttachVolumeData(kSecondPatient.data), 1);
    return VolumeRendering(render, kAskew, 1);
}

Outcome VolumeRenderingWithBlendImages()
{
    std::vector<uint32_t> pixels;
    for (uint32_t pixel = 0; pixel < 80 * 96; ++pixel)
        pixels.push_back(PixelOf(0, {uint8_t(pixel % 96), uint8_t(pixel / 96), 200}));
    KsBlendImage images[2] = {
        {{{10, 8}, {80, 12}, {76, 70}, {6, 60}}, pixels.data(), {}, {1, 0, 0}, {0, 0.28, -0.96}, {-40, 30, 70}},
        {{{30, 2}, {90, 30}, {60, 77}, {20, 40}}, pixels.data(), {}, {0.96, 0.28, 0}, {0, 0, -1}, {-30, 35, 60}}};
    Render3D render;
    Load(render, kTranslucent);
    render.SetBlendImage(images, 2);
    return VolumeRendering(render, kFront);
}

Outcome Endoscopy(const TestPalette& palette, const KsViewPoint& view, float fieldOfView)
{
    Render3D render;
    Load(render, palette);
    TestImage image({80, 96, 0, 0, {}, {}, {}});
    const bool drawn = render.ImagingVE(view, fieldOfView, &image.image);
    return OutcomeOf(drawn, image.image.param, image.image.pixels);
}

// Draws stored values.
template <class Draw>
Outcome Values(const PnImageParam& param, const Draw& draw)
{
    std::vector<int16_t> values(size_t(param.rows) * param.columns);
    KsImageVAL image = {values.data(), param};
    const bool drawn = draw(&image);
    return OutcomeOf(drawn, image.param, image.values);
}

// The forms of a projection.
using OfAll = bool (Render3D::*)(KsImageVAL*);
using OfSlab = bool (Render3D::*)(KsImageVAL*, float);
using OfCamera = bool (Render3D::*)(KsCamera, float, KsImageVAL*);
using OfCameraSlab = bool (Render3D::*)(KsCamera, float, float, KsImageVAL*);

Outcome Projection(const PnImageParam& param, OfAll operation)
{
    Render3D render;
    Load(render, kSolid);
    return Values(param, [&](KsImageVAL* image) { return (render.*operation)(image); });
}

Outcome SlabProjection(OfSlab operation)
{
    Render3D render;
    Load(render, kSolid);
    return Values(kInside, [&](KsImageVAL* image) { return (render.*operation)(image, 12.5f); });
}

Outcome CameraProjection(OfCamera operation)
{
    Render3D render;
    Load(render, kSolid);
    return Values(kFront, [&](KsImageVAL* image) { return (render.*operation)(kCamera, 70, image); });
}

Outcome CameraSlabProjection(OfCameraSlab operation)
{
    Render3D render;
    Load(render, kSolid);
    return Values(kFront, [&](KsImageVAL* image) { return (render.*operation)(kCamera, 60, 9, image); });
}

Outcome Plane()
{
    RenderMPR render;
    EXPECT_TRUE(render.InitData(kPatient.data));
    return Values(kInside, [&](KsImageVAL* image) { return render.Imaging(image); });
}

Outcome PlaneOfLabels()
{
    RenderMPR render;
    EXPECT_TRUE(render.InitData(kPatient.data));
    EXPECT_TRUE(render.SetMarkData(kManyLabels.mark));
    std::vector<uint8_t> labels(size_t(kThroughLabels.rows) * kThroughLabels.columns);
    KsImageMark image = {labels.data(), kThroughLabels};
    const bool drawn = render.Marking(&image);
    return OutcomeOf(drawn, image.param, image.labels);
}

// The three planes turned twice.
Outcome RotatedPlane(KsMPRType type)
{
    EngineMPR engine;
    EXPECT_TRUE(engine.InitData(kPatient.data));
    EXPECT_TRUE(engine.Rotate(KsMPRTransverse, 0.4f));
    EXPECT_TRUE(engine.Rotate(KsMPRSagittal, -1.1f));
    OwnedImage image;
    const bool drawn = engine.Imaging(type, &image);
    return OutcomeOf(drawn, image.param, image.values);
}

const NamedImage kImages[] = {
    {"VolumeRenderingTranslucentFront", 0x8AF4DC54C065D8B9, [] { return VolumeRendering(kTranslucent, kFront); }},
    {"VolumeRenderingTranslucentAlongZ", 0xFE143628AD516E51, [] { return VolumeRendering(kTranslucent, kAlongZ); }},
    {"VolumeRenderingTranslucentAskew", 0xA10828F1647CAE80, [] { return VolumeRendering(kTranslucent, kAskew); }},
    {"VolumeRenderingSolidFront", 0x792ADC8F3B1DB21C, [] { return VolumeRendering(kSolid, kFront); }},
    {"VolumeRenderingSolidAskew", 0xC7D220BF567C718D, [] { return VolumeRendering(kSolid, kAskew); }},
    {"VolumeRenderingInVisibleBox", 0xC82121749C49FDDB, VolumeRenderingInVisibleBox},
    {"VolumeRenderingOfAttachedVolume", 0x6C7DDF8145A9B1C7, VolumeRenderingOfAttachedVolume},
    {"VolumeRenderingWithBlendImages", 0x37417E43569B19C7, VolumeRenderingWithBlendImages},
    {"EndoscopyInAirway", 0x75F4843A4BECB120, [] { return Endoscopy(kSolid, kInAirway, 80); }},
    {"EndoscopyThroughTissue", 0x9B62431D7A314618, [] { return Endoscopy(kTranslucent, kInAirway, 120); }},
    {"EndoscopyFromOutside", 0x88B32627A1C4BCA5, [] { return Endoscopy(kTranslucent, kAway, 40); }},
    {"Maximum", 0xFE123C071A40BEB1, [] { return Projection(kAskew, &Render3D::ImagingMIP); }},
    {"MaximumSlab", 0x5A3C3050C28B099A, [] { return SlabProjection(&Render3D::ImagingMIP); }},
    {"MaximumCamera", 0xE7AAC93297642147, [] { return CameraProjection(&Render3D::ImagingMIP); }},
    {"MaximumCameraSlab", 0xAD2FC64492475043, [] { return CameraSlabProjection(&Render3D::ImagingMIP); }},
    {"Mean", 0x693CC93122E36D8C, [] { return Projection(kAskew, &Render3D::ImagingAIP); }},
    {"MeanSlab", 0xD405BC7FF009D8F9, [] { return SlabProjection(&Render3D::ImagingAIP); }},
    {"MeanCamera", 0x5D9E32B8309BDEA4, [] { return CameraProjection(&Render3D::ImagingAIP); }},
    {"MeanCameraSlab", 0x84BFA670911FD77D, [] { return CameraSlabProjection(&Render3D::ImagingAIP); }},
    {"Minimum", 0x35D9B0B08988EDDE, [] { return Projection(kAskew, &Render3D::ImagingMinIP); }},
    {"MinimumSlab", 0x5094279ABBE255D8, [] { return SlabProjection(&Render3D::ImagingMinIP); }},
    {"MinimumCamera", 0xA89E78849B7E7966, [] { return CameraProjection(&Render3D::ImagingMinIP); }},
    {"MinimumCameraSlab", 0x194639A7DD7BE44C, [] { return CameraSlabProjection(&Render3D::ImagingMinIP); }},
    {"Plane", 0xCBE0BDFE57585111, Plane},
    {"PlaneOfLabels", 0x07B05085C217AF7B, PlaneOfLabels},
    {"RotatedTransversePlane", 0x3B4511A842C4B0D3, [] { return RotatedPlane(KsMPRTransverse); }},
    {"RotatedSagittalPlane", 0x9AC22480C5C191CC, [] { return RotatedPlane(KsMPRSagittal); }},
    {"RotatedCoronalPlane", 0xAE51A01A88F6D66A, [] { return RotatedPlane(KsMPRCoronal); }},
};

class ImageBits : public testing::TestWithParam<NamedImage>
{
};

void PrintTo(const NamedImage& image, std::ostream* stream) { *stream << image.name; }

std::string NameOf(const testing::TestParamInfo<NamedImage>& info) { return info.param.name; }
} // namespace

TEST_P(ImageBits, AreTheSameOnEveryMachine)
{
    for (const core::InstructionSet set : {core::InstructionSet::Base, core::InstructionSet::Avx2})
    {
        if (!core::Runs(set))
            continue;
        core::LimitInstructionSet(set);
        const Outcome outcome = GetParam().draw();
        core::LimitInstructionSet(core::InstructionSet::Avx2);
        EXPECT_TRUE(outcome.drawn);
        EXPECT_GE(outcome.shades, 4u); // it shows something
        char hash[24];
        std::snprintf(hash, sizeof hash, "0x%016" PRIX64, outcome.hash);
        EXPECT_EQ(outcome.hash, GetParam().hash) << GetParam().name << " is now " << hash;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, ImageBits, testing::ValuesIn(kImages), NameOf);

TEST(InstructionSets, AreThoseOfTheLimit)
{
    core::LimitInstructionSet(core::InstructionSet::Base);
    EXPECT_FALSE(core::Runs(core::InstructionSet::Avx2));
    EXPECT_STREQ(mpr::Kernels().instructionSet, "base");
    EXPECT_STREQ(render3d::Kernels().instructionSet, "base");
    core::LimitInstructionSet(core::InstructionSet::Avx2);
    EXPECT_TRUE(core::Runs(core::InstructionSet::Base));
    const char* const widest = core::Runs(core::InstructionSet::Avx2) ? "avx2" : "base";
    EXPECT_STREQ(mpr::Kernels().instructionSet, widest);
    EXPECT_STREQ(render3d::Kernels().instructionSet, widest);
}
} // namespace corvane::tests
