#include "host/write_png.h"
#include "png_reader.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(WritePng, KeepsEveryPixelOfAGreyPictureInOneChannel)
{
    Picture picture = {3, 5, 0.8, 0.4, {}};
    for (int n = 0; n < 15; ++n)
        picture.rgb.insert(picture.rgb.end(), 3, uint8_t(17 * n));
    const PngFile file = ReadPng(PngOf(picture));
    EXPECT_EQ(file.rows, 3);
    EXPECT_EQ(file.columns, 5);
    EXPECT_EQ(file.bitDepth, 8);
    ASSERT_EQ(file.channels, 1);
    for (int n = 0; n < 15; ++n)
        EXPECT_EQ(file.samples[size_t(n)], 17 * n);
    EXPECT_EQ(file.pixelsPerMetreX, 2500u); // 0.4 mm
    EXPECT_EQ(file.pixelsPerMetreY, 1250u);
}

TEST(WritePng, KeepsColours)
{
    Picture picture = {2, 2, 1, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9, 250, 251, 252}};
    const PngFile file = ReadPng(PngOf(picture));
    ASSERT_EQ(file.channels, 3);
    for (size_t n = 0; n < 12; ++n)
        EXPECT_EQ(file.samples[n], picture.rgb[n]);
}

TEST(WritePng, LeavesThePixelSizeOutWhereItIsUnknown)
{
    EXPECT_EQ(ReadPng(PngOf({1, 1, 0, 0, {9, 9, 9}})).pixelsPerMetreX, 0u);
}

TEST(WritePng, HoldsStoredValuesWithAnOffsetAndSaysSo)
{
    std::vector<int16_t> values = {-32768, -1024, -1, 0, 1, 32767};
    KsImageData image = {};
    image.rows = 2;
    image.columns = 3;
    image.values = values.data();
    image.param.rowSpacing = image.param.columnSpacing = 2;
    const PngFile file = ReadPng(Png16Of(image, 0.25, -3));
    EXPECT_EQ(file.bitDepth, 16);
    EXPECT_EQ(file.channels, 1);
    EXPECT_EQ(file.columns, 3);
    for (size_t n = 0; n < 6; ++n)
        EXPECT_EQ(int(file.samples[n]) - 32768, values[n]);
    EXPECT_EQ(file.texts.at("Stored value"), "sample - 32768");
    EXPECT_EQ(file.texts.at("Real value"), "0.25 * stored value + -3");
    EXPECT_EQ(file.pixelsPerMetreX, 500u);
}
} // namespace
} // namespace corvane::host
