#include "host/read_volume.h"
#include "host/write_nrrd.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
TEST(WriteNrrd, IsReadBackWithTheSameValuesAndGeometry)
{
    std::vector<int16_t> values;
    for (int n = 0; n < 12; ++n)
        values.push_back(int16_t(n * 2731 - 15000));
    KsImageData image = {};
    image.rows = 3;
    image.columns = 4;
    image.values = values.data();
    image.param = {3, 4, 0.7, 1.0 / 3, {0.6, 0.8, 0}, {0, 0, -1}, {-12.25, 1.0 / 7, 1e3}};
    const ScratchFolder folder;
    WriteBytes(folder / "plane.nrrd", NrrdOf(image, 2.5, 1, 0));
    const Volume volume = ReadVolume(folder / "plane.nrrd");
    Grid expected;
    expected.sizeX = 4;
    expected.sizeY = 3;
    expected.sizeZ = 1;
    expected.spacing = {1.0 / 3, 0.7, 2.5};
    expected.origin = {-12.25, 1.0 / 7, 1e3};
    expected.rowDirection = {0.6, 0.8, 0};
    expected.columnDirection = {0, 0, -1};
    expected.sliceDirection = {-0.8, 0.6, 0}; // row x column
    ExpectSameGrid(volume.grid, expected, 1e-12);
    EXPECT_EQ(volume.voxels, values);
}

TEST(WriteNrrd, SaysHowStoredValuesBecomeRealOnes)
{
    std::vector<int16_t> values = {1};
    KsImageData image = {};
    image.rows = image.columns = 1;
    image.values = values.data();
    image.param = {1, 1, 1, 1, {1, 0, 0}, {0, 1, 0}, {}};
    EXPECT_TRUE(Contains(NrrdOf(image, 1, 0.5, -8), "\nvalue slope:=0.5\nvalue intercept:=-8\n\n"));
    EXPECT_EQ(NrrdOf(image, 1, 1, 0).find(":="), std::string::npos);
}
} // namespace
} // namespace corvane::host
