#include "compressed.h"
#include "host/read_volume.h"
#include "read_testing.h"

#include <sstream>
#include <sys/stat.h>

namespace corvane::host
{
namespace
{
std::string VectorText(Vec3 v)
{
    std::ostringstream text;
    text.precision(17);
    text << "(" << v.x << "," << v.y << "," << v.z << ")";
    return text.str();
}

std::string Voxels(const Grid& grid)
{
    std::string bytes;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                bytes += BytesOf(int16_t(TestValue(i, j, k)));
    return bytes;
}

std::string SizesText(const Grid& grid)
{
    return std::to_string(grid.sizeX) + " " + std::to_string(grid.sizeY) + " " + std::to_string(grid.sizeZ);
}

// The lines that place a grid; signs turn patient space (LPS) into the file's.
std::string PlaceLines(const Grid& grid, const std::string& space, Vec3 signs)
{
    const auto turned = [&](Vec3 v) { return VectorText({signs.x * v.x, signs.y * v.y, signs.z * v.z}); };
    return "space: " + space + "\nspace directions: " + turned(grid.spacing.x * grid.rowDirection) + " " +
           turned(grid.spacing.y * grid.columnDirection) + " " + turned(grid.spacing.z * grid.sliceDirection) +
           "\nspace origin: " + turned(grid.origin) + "\n";
}

std::string Header(const Grid& grid, const std::string& place, const std::string& encoding = "raw")
{
    return "NRRD0004\n# comment\ntype: short\ndimension: 3\nsizes: " + SizesText(grid) + "\n" + place +
           "endian: little\nencoding: " + encoding + "\n";
}

Volume Read(const std::string& bytes)
{
    const ScratchFolder folder;
    WriteBytes(folder / "volume.nrrd", bytes);
    return ReadVolume(folder / "volume.nrrd");
}

TEST(ReadNrrd, KeepsGeometryAndValuesInEverySpace)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 20);
    for (const auto& [space, signs] : {std::pair<const char*, Vec3>{"left-posterior-superior", {1, 1, 1}},
                                       {"LPS", {1, 1, 1}},
                                       {"right-anterior-superior", {-1, -1, 1}},
                                       {"RAS", {-1, -1, 1}},
                                       {"LAS", {1, -1, 1}}})
    {
        const Volume volume = Read(Header(grid, PlaceLines(grid, space, signs)) + "\n" + Voxels(grid));
        ExpectSameGrid(volume.grid, grid, 1e-9);
        ExpectValues(volume, TestValue);
        EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
    }
}

TEST(ReadNrrd, ReadsCompressedAndTextVoxels)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string place = PlaceLines(grid, "LPS", {1, 1, 1});
    ExpectValues(Read(Header(grid, place, "gzip") + "\n" + Gzipped(Voxels(grid))), TestValue);
    std::string text;
    for (int k = 0; k < 4; ++k)
        for (int j = 0; j < 5; ++j)
            for (int i = 0; i < 7; ++i)
                text += std::to_string(TestValue(i, j, k)) + " ";
    ExpectValues(Read(Header(grid, place, "ascii") + "\n" + text), TestValue);
}

TEST(ReadNrrd, ReadsVoxelsFromAFileOfTheirOwn)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    WriteBytes(folder / "a.nhdr", Header(grid, PlaceLines(grid, "LPS", {1, 1, 1})) + "data file: a.raw\n");
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.nhdr"); }), "a.nhdr: "));
    WriteBytes(folder / "a.raw", Voxels(grid));
    ExpectValues(ReadVolume(folder / "a.nhdr"), TestValue);
}

TEST(ReadNrrd, HonoursTheUnitOfLength)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string units = "space units: \"cm\" \"cm\" \"cm\"\n";
    const Volume volume = Read(Header(grid, PlaceLines(grid, "LPS", {1, 1, 1}) + units) + "\n" + Voxels(grid));
    ExpectNear(volume.grid.spacing, {7.5, 12.5, 25}, 1e-9, "spacing");
    ExpectNear(volume.grid.origin, {-1235, 452.5, 6781.25}, 1e-9, "origin");
}

TEST(ReadNrrd, WarnsWhenTheFileDoesNotSayWhereItLies)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const Volume volume = Read(Header(grid, "spacings: 0.5 0.5 2\n") + "\n" + Voxels(grid));
    ExpectNear(volume.grid.spacing, {0.5, 0.5, 2}, 1e-12, "spacing");
    EXPECT_EQ(OrientationLetters(volume.grid), "LPS");
    EXPECT_TRUE(HasWarning(volume, "does not say how its space lies in the patient"));
    EXPECT_TRUE(HasWarning(volume, "the file gives no directions"));
    EXPECT_TRUE(HasWarning(Read(Header(grid, "") + "\n" + Voxels(grid)), "no spacing of axis 3; taken as 1 mm"));
}

TEST(ReadNrrd, ReadsTheFirstOfSeveralVolumesAndOfSeveralValues)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    std::string place = PlaceLines(grid, "LPS", {1, 1, 1});
    const std::string start = "NRRD0004\ntype: short\ndimension: 4\nendian: little\nencoding: raw\n";
    const size_t at = place.find("directions: ") + 12, end = place.find("\nspace origin");

    std::string last = place;
    last.insert(end, " none");
    const Volume series =
        Read(start + "sizes: " + SizesText(grid) + " 2\n" + last + "\n" + Voxels(grid) + Voxels(grid));
    ExpectValues(series, TestValue);
    ExpectSameGrid(series.grid, grid, 1e-9);
    EXPECT_TRUE(HasWarning(series, "2 values along axis 4; only the first is read"));

    std::string first = place, pairs;
    first.insert(at, "none ");
    const std::string voxels = Voxels(grid);
    for (size_t i = 0; i < voxels.size(); i += 2)
        pairs += voxels.substr(i, 2) + BytesOf(int16_t(7777));
    const Volume vectors = Read(start + "sizes: 2 " + SizesText(grid) + "\n" + first + "\n" + pairs);
    ExpectValues(vectors, TestValue);
    ExpectSameGrid(vectors.grid, grid, 1e-9);
    EXPECT_TRUE(HasWarning(vectors, "2 values along axis 1; only the first is read"));

    const std::string colour = start + "sizes: 3 " + SizesText(grid) + "\nkinds: RGB-color space space space\n" + first;
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(colour + "\n" + voxels + voxels + voxels); }), "colour voxels"));
}

TEST(ReadNrrd, RefusesAShearInThePlaneOfTheSlices)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string place = "space: LPS\nspace directions: (1,0,0) (0.5,1,0) (0,0,1)\nspace origin: (0,0,0)\n";
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, place) + "\n" + Voxels(grid)); }), "enclose 63.4349 degrees"));
}

TEST(ReadNrrd, RefusesMoreVoxelsThanTheFileHolds)
{
    Grid grid = ObliqueGrid(7, 5, 4, 0);
    const std::string place = PlaceLines(grid, "LPS", {1, 1, 1}), voxels = Voxels(grid);
    EXPECT_NE(ErrorOf([&] { Read(Header(grid, place) + "\n" + voxels.substr(0, 279)); }), "no error");
    const std::string whole = Header(grid, place, "gzip") + "\n" + Gzipped(voxels);
    EXPECT_NE(ErrorOf([&] { Read(whole.substr(0, whole.size() - 10)); }), "no error");
    grid.sizeX = grid.sizeY = 20000;
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, place) + "\n" + voxels); }),
                         "asks for 3200000000 bytes of voxels, but only"));
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, place, "gzip") + "\n" + voxels); }), "asks for 3200000000"));
    grid.sizeX = grid.sizeY = grid.sizeZ = 2000000000;
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, place) + "\n" + voxels); }), "too large"));
}

TEST(ReadNrrd, RefusesNumberedDataFiles)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, "") + "data file: s%03d.raw 1 4 1\n"); }), "numbered files"));
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, "") + "data file: %s%n%d.raw 1 4 1\n"); }), "numbered files"));
    for (const char* line :
         {"Data File: %d%s%s%n 1 4 1\n", "DATAFILE:%s%n%d 1 4 1\n", "# a note\rdata file: %s%d%s 1 4 1\n"})
        EXPECT_TRUE(Contains(ErrorOf([&] { Read(Header(grid, "") + line); }), "numbered files")) << line;
}

TEST(ReadNrrd, DoesNotWaitForAPipe)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* names : {"data file: pipe\n", "data file: /dev/zero\n", "Data File:  pipe\n",
                              "datafile: LIST\npipe\n", "datafile: LIST 2\n pipe\n", "data file: SKIPLIST\n0 pipe\n"})
    {
        WriteBytes(folder / "a.nhdr", Header(grid, "") + names);
        EXPECT_TRUE(
            Contains(ErrorOf([&] { ReadVolume(folder / "a.nhdr"); }), "cannot be read, it is a pipe or a device"))
            << names;
    }
}

// The library forgets the end of a long last line, or complains of it and reads beyond it.
TEST(ReadNrrd, RefusesAListOfDataFilesWhoseLastLineHasNoEnd)
{
    const ScratchFolder folder;
    WriteBytes(folder / "data", "0123456789abcdef");
    const auto longName = [](int length) { return std::string(size_t(length), '/').replace(0, 1, ".") + "/./data"; };
    for (const std::string& names : {longName(10), longName(40) + "\n" + longName(120)})
    {
        WriteBytes(folder / "a.nhdr", "NRRD0004\ntype: short\ndimension: 3\nsizes: 2 2 2\nencoding: raw\n"
                                      "endian: little\ndata file: LIST\n" +
                                          names);
        EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.nhdr"); }), "a.nhdr: ")) << names;
    }
}

TEST(ReadNrrd, RefusesWhatIsNoVolume)
{
    EXPECT_TRUE(Contains(
        ErrorOf(
            [] { Read("NRRD0004\ntype: short\ndimension: 2\nsizes: 2 2\nencoding: raw\nendian: little\n\n12345678"); }),
        "holds no volume"));
    EXPECT_TRUE(Contains(ErrorOf(
                             []
                             {
                                 Read("NRRD0004\ntype: block\nblock size: 100000000\ndimension: 3\nsizes: 4 3 2\n"
                                      "endian: little\nencoding: raw\n\n12345");
                             }),
                         "blocks of bytes are no voxels"));
    EXPECT_TRUE(Contains(ErrorOf([] { Read("NRRD0004\ntype: nonsense\n\n"); }), "cannot be read as NRRD"));
}
} // namespace
} // namespace corvane::host
