#include "host/picture.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
// A straight grid of n x n x n voxels of 1 mm at the origin.
Volume CubeOf(int n)
{
    Volume volume;
    volume.grid.sizeX = volume.grid.sizeY = volume.grid.sizeZ = n;
    volume.grid.spacing = {1, 1, 1};
    volume.grid.rowDirection = {1, 0, 0};
    volume.grid.columnDirection = {0, 1, 0};
    volume.grid.sliceDirection = {0, 0, 1};
    return volume;
}

// Values along x at y = z = 5, one mm apart.
KsImageData RowOf(std::vector<int16_t>& values)
{
    KsImageData image = {};
    image.rows = 1;
    image.columns = uint32_t(values.size());
    image.values = values.data();
    image.param = {1, image.columns, 1, 1, {1, 0, 0}, {0, 1, 0}, {0, 5, 5}};
    return image;
}

TEST(GreyPicture, ShowsRealValuesThroughTheWindow)
{
    Volume volume = CubeOf(11);
    volume.valueSlope = 2;
    volume.valueIntercept = -100;
    std::vector<int16_t> values = {0, 50, 75, 100, 200};
    const Picture picture = GreyPicture(RowOf(values), volume, volume.grid, {50, 200}); // -50 to 150
    // Real values -100, 0, 50, 100, 300.
    const std::vector<uint8_t> greys = {0, 64, 128, 191, 255};
    ASSERT_EQ(picture.rgb.size(), size_t(15));
    for (size_t n = 0; n < 15; ++n)
        EXPECT_EQ(picture.rgb[n], greys[n / 3]);
}

TEST(GreyPicture, IsBlackWhereTheLibraryLeftItEmptyAndOnlyThere)
{
    const Volume volume = CubeOf(11);
    std::vector<int16_t> values(14, -1024); // voxels 2 to 8 lie two voxels within the edge, 11 to 13 outside
    const Picture picture = GreyPicture(RowOf(values), volume, volume.grid, {-1024, 100});
    for (int column = 0; column < 14; ++column)
        EXPECT_EQ(picture.rgb[size_t(column) * 3], column >= 2 && column <= 8 ? 128 : 0) << column;
}

TEST(BlendLabels, MixesColourAndGreyByOpacity)
{
    Picture picture = {1, 4, 1, 1, std::vector<uint8_t>(12, 100)};
    LabelColours colours;
    colours[1] = {"", 200, 0, 100, 1};
    colours[2] = {"", 255, 255, 255, 0.5};
    BlendLabels(picture, {0, 1, 2, 3}, colours, 0.5);
    EXPECT_EQ(picture.rgb, (std::vector<uint8_t>{100, 100, 100,    // no label
                                                 150, 50, 100,     // halfway to (200, 0, 100)
                                                 139, 139, 139,    // a quarter of the way to white: 138.75
                                                 100, 100, 100})); // a label without a colour
}

TEST(BlendLabels, DarkensWhatIsCutAwayWhateverItsLabel)
{
    Picture picture = {1, 3, 1, 1, std::vector<uint8_t>(9, 100)};
    LabelColours colours;
    colours[1] = {"", 200, 0, 100, 1};
    BlendLabels(picture, {64, 65, 127}, colours, 0.25);
    EXPECT_EQ(picture.rgb, std::vector<uint8_t>(9, 75));
}

TEST(BlendLabels, AtFullOpacityIsTheColourItself)
{
    Picture picture = {1, 1, 1, 1, {100, 100, 100}};
    LabelColours colours;
    colours[63] = {"", 1, 2, 255, 1};
    BlendLabels(picture, {63}, colours, 1);
    EXPECT_EQ(picture.rgb, (std::vector<uint8_t>{1, 2, 255}));
}
} // namespace
} // namespace corvane::host
