#include "corvane/Records.h"

#include <gtest/gtest.h>

#include <type_traits>

// Offsets and sizes counted by hand: every field at the next multiple of its own width, a record as long as a multiple
// of its widest field.
namespace
{
// The type of a field, and where it stands.
#define EXPECT_FIELD(Record, field, Type, offset)                                                                      \
    static_assert(std::is_same_v<decltype(Record::field), Type>, #Record " " #field);                                  \
    EXPECT_EQ(offsetof(Record, field), size_t(offset)) << #Record " " #field

template <class Record>
void ExpectPlain(size_t size)
{
    EXPECT_EQ(sizeof(Record), size);
    EXPECT_TRUE(std::is_standard_layout_v<Record>);
    EXPECT_TRUE(std::is_trivially_copyable_v<Record>);
}

TEST(Records, VolumeData)
{
    using float3 = float[3];
    EXPECT_FIELD(KsVolumeData, slices, const int16_t* const*, 0);
    EXPECT_FIELD(KsVolumeData, sizeX, int32_t, 8);
    EXPECT_FIELD(KsVolumeData, sizeY, int32_t, 12);
    EXPECT_FIELD(KsVolumeData, sizeZ, int32_t, 16);
    EXPECT_FIELD(KsVolumeData, spacing, float3, 20);
    EXPECT_FIELD(KsVolumeData, origin, float3, 32);
    EXPECT_FIELD(KsVolumeData, rowDirection, float3, 44);
    EXPECT_FIELD(KsVolumeData, columnDirection, float3, 56);
    EXPECT_FIELD(KsVolumeData, sliceDirection, float3, 68);
    ExpectPlain<KsVolumeData>(80);
}

TEST(Records, VolumeMark)
{
    EXPECT_FIELD(KsVolumeMark, slices, uint8_t**, 0);
    EXPECT_FIELD(KsVolumeMark, sizeX, uint32_t, 8);
    EXPECT_FIELD(KsVolumeMark, sizeY, uint32_t, 12);
    EXPECT_FIELD(KsVolumeMark, sizeZ, uint32_t, 16);
    ExpectPlain<KsVolumeMark>(24);
}

TEST(Records, ImageParam)
{
    using double3 = double[3];
    EXPECT_FIELD(PnImageParam, rows, uint32_t, 0);
    EXPECT_FIELD(PnImageParam, columns, uint32_t, 4);
    EXPECT_FIELD(PnImageParam, rowSpacing, double, 8);
    EXPECT_FIELD(PnImageParam, columnSpacing, double, 16);
    EXPECT_FIELD(PnImageParam, rowDirection, double3, 24);
    EXPECT_FIELD(PnImageParam, columnDirection, double3, 48);
    EXPECT_FIELD(PnImageParam, position, double3, 72);
    ExpectPlain<PnImageParam>(96);
}

TEST(Records, ImagesInTheHostsBuffer)
{
    EXPECT_FIELD(PnImageRGB, pixels, uint32_t*, 0);
    EXPECT_FIELD(PnImageRGB, param, PnImageParam, 8);
    ExpectPlain<PnImageRGB>(104);
    EXPECT_FIELD(KsImageVAL, values, int16_t*, 0);
    EXPECT_FIELD(KsImageVAL, param, PnImageParam, 8);
    ExpectPlain<KsImageVAL>(104);
    EXPECT_FIELD(KsImageMark, labels, uint8_t*, 0);
    EXPECT_FIELD(KsImageMark, param, PnImageParam, 8);
    ExpectPlain<KsImageMark>(104);
}

TEST(Records, ImagesThatTheLibrarySizes)
{
    EXPECT_FIELD(KsImageData, valueCount, uint32_t, 0);
    EXPECT_FIELD(KsImageData, values, int16_t*, 8);
    EXPECT_FIELD(KsImageData, ownsValues, uint8_t, 16);
    EXPECT_FIELD(KsImageData, rows, uint32_t, 20);
    EXPECT_FIELD(KsImageData, columns, uint32_t, 24);
    EXPECT_FIELD(KsImageData, param, PnImageParam, 32);
    ExpectPlain<KsImageData>(128);
    EXPECT_FIELD(KsMarkData, labelCount, uint32_t, 0);
    EXPECT_FIELD(KsMarkData, labels, uint8_t*, 8);
    EXPECT_FIELD(KsMarkData, ownsLabels, uint8_t, 16);
    EXPECT_FIELD(KsMarkData, rows, uint32_t, 20);
    EXPECT_FIELD(KsMarkData, columns, uint32_t, 24);
    EXPECT_FIELD(KsMarkData, param, PnImageParam, 32);
    ExpectPlain<KsMarkData>(128);
}

TEST(Records, PaletteOfTheHost)
{
    using float3 = float[3];
    EXPECT_FIELD(KsPalettePoint, value, int16_t, 0);
    EXPECT_FIELD(KsPalettePoint, colour, uint32_t, 4);
    EXPECT_FIELD(KsPalettePoint, opacity, float, 8);
    ExpectPlain<KsPalettePoint>(12);
    EXPECT_FIELD(KsPalette, visible, uint8_t, 0);
    EXPECT_FIELD(KsPalette, shading, float3, 4);
    EXPECT_FIELD(KsPalette, opacity, float, 16);
    EXPECT_FIELD(KsPalette, pointCount, int32_t, 20);
    EXPECT_FIELD(KsPalette, points, KsPalettePoint*, 24);
    EXPECT_FIELD(KsPalette, ownsPoints, uint8_t, 32);
    ExpectPlain<KsPalette>(40);

    const KsPalette palette;
    EXPECT_EQ(palette.visible, 1);
    EXPECT_EQ(palette.shading[0], 0.11f);
    EXPECT_EQ(palette.shading[1], 0.816f);
    EXPECT_EQ(palette.shading[2], 0.0f);
    EXPECT_EQ(palette.opacity, 1.0f);
    EXPECT_EQ(palette.pointCount, 0);
    EXPECT_EQ(palette.points, nullptr);
    EXPECT_EQ(palette.ownsPoints, 0);
}

TEST(Records, PaletteOfTheRenderers)
{
    using float3 = float[3];
    using Entries = VolumePaletteEntry* [64];
    EXPECT_FIELD(VolumePaletteEntry, rangeStart, int32_t, 0);
    EXPECT_FIELD(VolumePaletteEntry, rangeEnd, int32_t, 4);
    EXPECT_FIELD(VolumePaletteEntry, size, int32_t, 8);
    EXPECT_FIELD(VolumePaletteEntry, colours, uint8_t*, 16);
    EXPECT_FIELD(VolumePaletteEntry, opacities, float*, 24);
    EXPECT_FIELD(VolumePaletteEntry, opacity, float, 32);
    EXPECT_FIELD(VolumePaletteEntry, visible, uint8_t, 36);
    EXPECT_FIELD(VolumePaletteEntry, shading, float3, 40);
    ExpectPlain<VolumePaletteEntry>(56);
    EXPECT_FIELD(VolumePalette, entries, Entries, 0);
    EXPECT_FIELD(VolumePalette, sumStart, int32_t, 512);
    EXPECT_FIELD(VolumePalette, sumLength, int32_t, 516);
    EXPECT_FIELD(VolumePalette, opacitySums, float*, 520);
    ExpectPlain<VolumePalette>(528);
}

TEST(Records, Views)
{
    using float3 = float[3];
    using double3 = double[3];
    EXPECT_FIELD(KsViewPoint, eye, float3, 0);
    EXPECT_FIELD(KsViewPoint, direction, float3, 12);
    EXPECT_FIELD(KsViewPoint, up, float3, 24);
    ExpectPlain<KsViewPoint>(36);
    EXPECT_FIELD(KsCamera, center, float3, 0);
    EXPECT_FIELD(KsCamera, direction, float3, 12);
    EXPECT_FIELD(KsCamera, up, float3, 24);
    ExpectPlain<KsCamera>(36);
    EXPECT_FIELD(KsSliceParam, position, double3, 0);
    EXPECT_FIELD(KsSliceParam, rowDirection, double3, 24);
    EXPECT_FIELD(KsSliceParam, columnDirection, double3, 48);
    EXPECT_FIELD(KsSliceParam, sideLength, double, 72);
    ExpectPlain<KsSliceParam>(80);
}

TEST(Records, BlendImage)
{
    using Corners = int32_t[4][2];
    using Reserved = uint8_t[120];
    using double3 = double[3];
    EXPECT_FIELD(KsBlendImage, corners, Corners, 0);
    EXPECT_FIELD(KsBlendImage, pixels, uint32_t*, 32);
    EXPECT_FIELD(KsBlendImage, reserved, Reserved, 40);
    EXPECT_FIELD(KsBlendImage, rowDirection, double3, 160);
    EXPECT_FIELD(KsBlendImage, columnDirection, double3, 184);
    EXPECT_FIELD(KsBlendImage, position, double3, 208);
    ExpectPlain<KsBlendImage>(232);
}

TEST(Records, ReconstructionPlanesStandTransverseCoronalSagittal)
{
    using double3 = double[3];
    EXPECT_FIELD(KsPlaneFrame, rowDirection, double3, 0);
    EXPECT_FIELD(KsPlaneFrame, columnDirection, double3, 24);
    EXPECT_FIELD(KsPlaneFrame, normal, double3, 48);
    ExpectPlain<KsPlaneFrame>(72);
    EXPECT_FIELD(KsMPRParam, origin, double3, 0);
    EXPECT_FIELD(KsMPRParam, transverse, KsPlaneFrame, 24);
    EXPECT_FIELD(KsMPRParam, coronal, KsPlaneFrame, 96);
    EXPECT_FIELD(KsMPRParam, sagittal, KsPlaneFrame, 168);
    ExpectPlain<KsMPRParam>(240);
}

TEST(Records, EnumerationsKeepTheirNumbers)
{
    EXPECT_EQ(sizeof(KsRender), 4u);
    EXPECT_EQ(int(KsRenderParallel), 0);
    EXPECT_EQ(int(KsRenderPerspective), 1);
    EXPECT_EQ(sizeof(KsMPRType), 4u);
    EXPECT_EQ(int(KsMPRTransverse), 1);
    EXPECT_EQ(int(KsMPRSagittal), 2);
    EXPECT_EQ(int(KsMPRCoronal), 3);
}
} // namespace
