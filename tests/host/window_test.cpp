#include "host/window.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
// The numbers 1 to 100, shuffled over the volume; not CT.
Volume Hundred()
{
    Volume volume;
    volume.grid.sizeX = 10;
    volume.grid.sizeY = 10;
    volume.grid.sizeZ = 1;
    volume.modality = "MR";
    for (int n = 0; n < 100; ++n)
        volume.voxels.push_back(int16_t(37 * n % 100 + 1));
    return volume;
}

TEST(Window, MapsItsEndsToBlackAndWhiteAndItsCentreToGrey)
{
    const Window window = {50, 400}; // -150 to 250
    EXPECT_EQ(GreyOf(window, -2000), 0);
    EXPECT_EQ(GreyOf(window, -150), 0);
    EXPECT_EQ(GreyOf(window, -50), 64);  // 0.25 * 255 = 63.75
    EXPECT_EQ(GreyOf(window, 50), 128);  // 127.5 rounds up
    EXPECT_EQ(GreyOf(window, 150), 191); // 191.25
    EXPECT_EQ(GreyOf(window, 250), 255);
    EXPECT_EQ(GreyOf(window, 3000), 255);
}

TEST(Window, PercentilesAreThoseOfTheSortedVoxels)
{
    // The p-th percentile of 1 to 100 is p.
    const Window window = PercentileWindow(Hundred(), 20, 90);
    EXPECT_EQ(window.centre, 55);
    EXPECT_EQ(window.width, 70);
    const Window all = PercentileWindow(Hundred(), 0, 100);
    EXPECT_EQ(all.centre, 50.5);
    EXPECT_EQ(all.width, 99);
}

TEST(Window, PercentilesAreInRealValues)
{
    Volume volume = Hundred();
    volume.valueSlope = -0.5;
    volume.valueIntercept = 10; // 20 becomes 0, 90 becomes -35
    const Window window = PercentileWindow(volume, 20, 90);
    EXPECT_EQ(window.centre, -17.5);
    EXPECT_EQ(window.width, 35);
}

TEST(Window, OfAConstantVolumeHasAWidth)
{
    Volume volume = Hundred();
    std::fill(volume.voxels.begin(), volume.voxels.end(), int16_t(7));
    const Window window = PercentileWindow(volume, 1, 99);
    EXPECT_EQ(window.centre, 7);
    EXPECT_EQ(window.width, 1);
}

TEST(Window, IsReadAsCentreThenWidthOrByName)
{
    const Window numbers = ParseWindow("-600,1500.5", Hundred());
    EXPECT_EQ(numbers.centre, -600);
    EXPECT_EQ(numbers.width, 1500.5);
    EXPECT_EQ(ParseWindow("brain", Hundred()).width, 80);
    EXPECT_EQ(ParseWindow("lung", Hundred()).centre, -600);
    EXPECT_EQ(ParseWindow("auto", Hundred()).centre, 50); // 1 to 99
    EXPECT_EQ(ParseWindow("auto", Hundred()).width, 98);
    for (const char* bad : {"liver", "40", "40,0", "40,-80", "40,80,1", "nan,1"})
        EXPECT_TRUE(Contains(ErrorOf([&] { ParseWindow(bad, Hundred()); }, ErrorKind::Usage), "CENTRE,WIDTH"));
}

TEST(Window, WithoutAWordIsAbdomenForHounsfieldUnitsAndAutoForTheRest)
{
    Volume volume = Hundred();
    EXPECT_EQ(ParseWindow("", volume).width, 98);
    volume.modality = "CT";
    EXPECT_EQ(ParseWindow("", volume).width, 400);
    volume.modality = "";
    EXPECT_FALSE(HoldsHounsfieldUnits(volume));
    volume.voxels[0] = -1000; // one in a hundred is air
    EXPECT_TRUE(HoldsHounsfieldUnits(volume));
    EXPECT_EQ(ParseWindow("", volume).width, 400);
    volume.modality = "MR";
    EXPECT_FALSE(HoldsHounsfieldUnits(volume));
}
} // namespace
} // namespace corvane::host
