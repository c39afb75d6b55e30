#include "compressed.h"
#include "host/read_volume.h"
#include "read_testing.h"

#include <sstream>

namespace corvane::host
{
namespace
{
std::string Text(const std::vector<double>& numbers)
{
    std::ostringstream text;
    text.precision(17);
    for (const double number : numbers)
        text << number << " ";
    return text.str();
}

// The header lines of a grid, up to the type of the voxels.
std::string Header(const Grid& grid, const std::string& sizes)
{
    const Vec3 r = grid.rowDirection, c = grid.columnDirection, s = grid.sliceDirection;
    return "ObjectType = Image\nNDims = 3\nBinaryData = True\nTransformMatrix = " +
           Text({r.x, r.y, r.z, c.x, c.y, c.z, s.x, s.y, s.z}) +
           "\nOffset = " + Text({grid.origin.x, grid.origin.y, grid.origin.z}) + "\nCenterOfRotation = 0 0 0\n" +
           "ElementSpacing = " + Text({grid.spacing.x, grid.spacing.y, grid.spacing.z}) + "\nDimSize = " + sizes + "\n";
}

std::string Header(const Grid& grid)
{
    return Header(grid, Text({double(grid.sizeX), double(grid.sizeY), double(grid.sizeZ)}));
}

std::string Voxels(const Grid& grid, bool turned = false)
{
    std::string bytes;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                bytes += BytesOf(int16_t(TestValue(i, j, k)), turned);
    return bytes;
}

const std::string kShortLocal = "ElementType = MET_SHORT\nElementDataFile = LOCAL\n";

Volume Read(const std::string& bytes)
{
    const ScratchFolder folder;
    WriteBytes(folder / "volume.mha", bytes);
    return ReadVolume(folder / "volume.mha");
}

std::string Refusal(const std::string& bytes)
{
    return ErrorOf([&] { Read(bytes); });
}

TEST(ReadMetaImage, KeepsGeometryAndValues)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 20);
    const Volume volume = Read(Header(grid) + kShortLocal + Voxels(grid));
    ExpectSameGrid(volume.grid, grid, 1e-9);
    ExpectValues(volume, TestValue);
    EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
}

TEST(ReadMetaImage, ReadsBothByteOrders)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    for (const std::string key : {"BinaryDataByteOrderMSB", "ElementByteOrderMSB"})
    {
        ExpectValues(Read(Header(grid) + key + " = True\n" + kShortLocal + Voxels(grid, true)), TestValue);
        ExpectValues(Read(Header(grid) + key + " = False\n" + kShortLocal + Voxels(grid)), TestValue);
    }
}

TEST(ReadMetaImage, ReadsCompressedVoxels)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string start = Header(grid) + "CompressedData = True\n" + kShortLocal;
    ExpectValues(Read(start + Deflated(Voxels(grid))), TestValue);
    ExpectValues(Read(start + Gzipped(Voxels(grid))), TestValue);
    const std::string cut = Deflated(Voxels(grid));
    EXPECT_TRUE(Contains(Refusal(start + cut.substr(0, cut.size() / 2)), "the file is cut off"));
    EXPECT_TRUE(Contains(Refusal(start + Voxels(grid)), "the compressed data are damaged"));
    EXPECT_TRUE(Contains(Refusal(start + Deflated("few")), "bytes too early"));
}

TEST(ReadMetaImage, ReadsVoxelsFromAFileOfTheirOwn)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string start = Header(grid) + "ElementType = MET_SHORT\n";
    WriteBytes(folder / "a.mhd", start + "ElementDataFile = a.raw\n");
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.mhd"); }), "should be in a.raw, which is not there"));
    WriteBytes(folder / "a.raw", Voxels(grid));
    ExpectValues(ReadVolume(folder / "a.mhd"), TestValue);
    // A foreign header in front of the voxels, by its length or up to the voxels at the end.
    WriteBytes(folder / "a.raw", "foreign" + Voxels(grid));
    WriteBytes(folder / "a.mhd", start + "HeaderSize = 7\nElementDataFile = a.raw\n");
    ExpectValues(ReadVolume(folder / "a.mhd"), TestValue);
    WriteBytes(folder / "a.mhd", start + "HeaderSize = -1\nElementDataFile = a.raw\n");
    ExpectValues(ReadVolume(folder / "a.mhd"), TestValue);
    WriteBytes(folder / "a.mhd", start + "HeaderSize = 9000\nElementDataFile = a.raw\n");
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.mhd"); }), "HeaderSize = 9000, which does not fit"));
}

TEST(ReadMetaImage, ReadsEveryNumberType)
{
    const auto expect = [](const std::string& type, const std::string& voxel)
    {
        const Volume volume =
            Read("NDims = 3\nDimSize = 1 1 2\nElementType = " + type + "\nElementDataFile = LOCAL\n" + voxel + voxel);
        EXPECT_EQ(volume.voxels, (std::vector<int16_t>{77, 77})) << type;
    };
    expect("MET_CHAR", BytesOf(int8_t(77)));
    expect("MET_UCHAR", BytesOf(uint8_t(77)));
    expect("MET_SHORT", BytesOf(int16_t(77)));
    expect("MET_USHORT", BytesOf(uint16_t(77)));
    expect("MET_INT", BytesOf(int32_t(77)));
    expect("MET_UINT", BytesOf(uint32_t(77)));
    expect("MET_LONG_LONG", BytesOf(int64_t(77)));
    expect("MET_ULONG_LONG", BytesOf(uint64_t(77)));
    expect("MET_FLOAT", BytesOf(77.0f));
    expect("MET_DOUBLE", BytesOf(77.0));
}

TEST(ReadMetaImage, UnderstandsTheOtherNamesOfItsKeys)
{
    const Volume volume = Read("NDims = 3\nDimSize = 1 1 1\nRotation = 0 1 0 1 0 0 0 0 1\nPosition = 1 2 3\n"
                               "ElementSize = 4 5 6\n" +
                               kShortLocal + "xx");
    ExpectNear(volume.grid.rowDirection, {0, 1, 0}, 0, "row direction");
    ExpectNear(volume.grid.columnDirection, {1, 0, 0}, 0, "column direction");
    ExpectNear(volume.grid.origin, {1, 2, 3}, 0, "origin");
    ExpectNear(volume.grid.spacing, {4, 5, 6}, 0, "spacing");
}

TEST(ReadMetaImage, WarnsOfGeometryThatTheFileDoesNotGive)
{
    const Volume volume = Read("NDims = 3\nDimSize = 1 1 1\n" + kShortLocal + "xx");
    EXPECT_TRUE(HasWarning(volume, "gives no directions"));
    EXPECT_TRUE(HasWarning(volume, "gives no spacing; taken as 1 mm"));
    EXPECT_TRUE(HasWarning(volume, "gives no origin"));
    EXPECT_EQ(OrientationLetters(volume.grid), "LPS");
}

TEST(ReadMetaImage, ReadsTheFirstOfSeveralVolumes)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const Volume volume = Read("NDims = 4\nDimSize = 7 5 4 2\nTransformMatrix = 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1\n"
                               "ElementSpacing = 1 2 3 1\nOffset = 9 8 7 0\n" +
                               kShortLocal + Voxels(grid) + Voxels(grid));
    ExpectValues(volume, TestValue);
    ExpectNear(volume.grid.origin, {9, 8, 7}, 0, "origin");
    EXPECT_TRUE(HasWarning(volume, "2 volumes; only the first is read"));
}

TEST(ReadMetaImage, RefusesWhatItsHeaderCannotMean)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string voxels = Voxels(grid);
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementType = MET_SHORT\n"), "ends before it names its voxels"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementType = MET_OTHER\nElementDataFile = LOCAL\n" + voxels),
                         "voxels of type 'MET_OTHER'"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementNumberOfChannels = 3\n" + kShortLocal + voxels),
                         "voxels of 3 values each"));
    EXPECT_TRUE(
        Contains(Refusal(Header(grid, "7 5") + kShortLocal + voxels), "DimSize = 7 5, which should be 3 numbers"));
    EXPECT_TRUE(Contains(Refusal(Header(grid, "7 5 0") + kShortLocal + voxels), "sizes are whole and above 0"));
    EXPECT_TRUE(Contains(Refusal(Header(grid, "7 5 1e9") + kShortLocal + voxels), "more than the limits"));
    EXPECT_TRUE(Contains(Refusal(Header(grid, "7 5 9000") + kShortLocal + voxels), "asks for 630000 bytes of voxels"));
    EXPECT_TRUE(
        Contains(Refusal(Header(grid) + "ElementSpacing = 1 1 -2\n" + kShortLocal + voxels), "must be above 0"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementSpacing = 1 1 nan\n" + kShortLocal + voxels), "3 numbers"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "BinaryData = False\n" + kShortLocal + voxels), "save them as binary"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "TransformMatrix = 1 0 0 0 2 0 0 0 1\n" + kShortLocal + voxels),
                         "axis 2 in TransformMatrix has length 2, not 1"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "TransformMatrix = 1 0 0 0.6 0.8 0 0 0 1\n" + kShortLocal + voxels),
                         "enclose 53.1301 degrees, not 90"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementType = MET_SHORT\nElementDataFile = LIST\n"), "several files"));
    EXPECT_TRUE(Contains(Refusal(Header(grid) + "ElementType = MET_SHORT\nElementDataFile = a%03d.raw 1 4 1\n"),
                         "several files"));
}
} // namespace
} // namespace corvane::host
