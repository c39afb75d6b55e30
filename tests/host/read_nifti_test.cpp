#include "compressed.h"
#include "host/read_volume.h"
#include "nifti_writer.h"
#include "read_testing.h"

#include <limits>

namespace corvane::host
{
namespace
{
template <typename T>
std::string VoxelBytes(const Grid& grid, const std::function<double(int, int, int)>& value, bool turned = false)
{
    std::string bytes;
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                bytes += BytesOf(T(value(i, j, k)), turned);
    return bytes;
}

NiftiFile FileOf(const Grid& grid, int version = 1, bool bigEndian = false)
{
    NiftiFile file;
    file.version = version;
    file.bigEndian = bigEndian;
    file.SetSform(grid);
    file.voxels = VoxelBytes<int16_t>(grid, TestValue, bigEndian);
    return file;
}

Volume Read(const std::string& bytes, const std::string& name = "volume.nii")
{
    const ScratchFolder folder;
    WriteBytes(folder / name, bytes);
    return ReadVolume(folder / name);
}

TEST(ReadNifti, KeepsGeometryAndValuesInBothVersionsAndByteOrders)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 20);
    for (const int version : {1, 2})
        for (const bool bigEndian : {false, true})
        {
            const Volume volume = Read(FileOf(grid, version, bigEndian).Bytes());
            // Version 1 holds single precision: 2^-24 of 700 mm.
            ExpectSameGrid(volume.grid, grid, version == 1 ? 5e-5 : 1e-9);
            EXPECT_NEAR(TiltDegrees(volume.grid), 20, 1e-4);
            ExpectValues(volume, TestValue);
            EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
            EXPECT_EQ(volume.description, "volume.nii");
        }
}

TEST(ReadNifti, TellsTheKindByContentWhateverTheName)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    ExpectValues(Read(Gzipped(FileOf(grid).Bytes()), "volume.nii.gz"), TestValue);
    ExpectValues(Read(Gzipped(FileOf(grid).Bytes()), "download"), TestValue);
    ExpectValues(Read(FileOf(grid, 2).Bytes(), "volume.dcm"), TestValue);
}

TEST(ReadNifti, ReadsHeaderAndVoxelsFromTwoFiles)
{
    const Grid grid = ObliqueGrid(7, 5, 4, 0);
    for (const int version : {1, 2})
    {
        const ScratchFolder folder;
        NiftiFile file = FileOf(grid, version);
        file.twoFiles = true;
        WriteBytes(folder / "a.hdr", file.Header());
        WriteBytes(folder / "a.img", file.voxels);
        ExpectValues(ReadVolume(folder / "a.hdr"), TestValue);
        ExpectValues(ReadVolume(folder / "a.img"), TestValue);
        WriteBytes(folder / "b.hdr.gz", Gzipped(file.Header()));
        WriteBytes(folder / "b.img.gz", Gzipped(file.voxels));
        ExpectValues(ReadVolume(folder / "b.hdr.gz"), TestValue);
        ExpectValues(ReadVolume(folder / "b.img.gz"), TestValue);
        std::filesystem::remove(folder / "a.img");
        EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.hdr"); }), "a.hdr: its voxels should be in a.img"));
        WriteBytes(folder / "c.img", file.voxels);
        EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "c.img"); }), "c.img: its header should be in c.hdr"));
    }
}

TEST(ReadNifti, ReadsEveryNumberType)
{
    const Grid grid = ObliqueGrid(4, 3, 2, 0);
    const auto value = [](int i, int j, int k) { return i + 4 * j + 12 * k; };
    const auto expect = [&](int datatype, size_t bytes, const std::string& voxels)
    {
        NiftiFile file = FileOf(grid);
        file.datatype = int16_t(datatype);
        file.bitsPerVoxel = int16_t(8 * bytes);
        file.voxels = voxels;
        ExpectValues(Read(file.Bytes()), value);
    };
    expect(2, 1, VoxelBytes<uint8_t>(grid, value));
    expect(256, 1, VoxelBytes<int8_t>(grid, value));
    expect(4, 2, VoxelBytes<int16_t>(grid, value));
    expect(512, 2, VoxelBytes<uint16_t>(grid, value));
    expect(8, 4, VoxelBytes<int32_t>(grid, value));
    expect(768, 4, VoxelBytes<uint32_t>(grid, value));
    expect(1024, 8, VoxelBytes<int64_t>(grid, value));
    expect(1280, 8, VoxelBytes<uint64_t>(grid, value));
    expect(16, 4, VoxelBytes<float>(grid, value));
    expect(64, 8, VoxelBytes<double>(grid, value));
}

TEST(ReadNifti, RefusesColourAndComplexVoxels)
{
    for (const auto& [datatype, bits] : {std::pair{128, 24}, std::pair{2304, 32}, std::pair{32, 64}})
    {
        NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
        file.datatype = int16_t(datatype);
        file.bitsPerVoxel = int16_t(bits);
        file.voxels.resize(8 * 24);
        EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "cannot be shown; convert them"));
    }
}

TEST(ReadNifti, AppliesSlopeAndIntercept)
{
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
    file.slope = 2;
    file.intercept = -5;
    ExpectValues(Read(file.Bytes()), [](int i, int j, int k) { return 2 * TestValue(i, j, k) - 5; });
    file.slope = 0.125;
    ExpectValues(Read(file.Bytes()), [](int i, int j, int k) { return 0.125 * TestValue(i, j, k) - 5; });
}

TEST(ReadNifti, TakesTheQuaternionWhenThereIsNoMatrix)
{
    // A turn by 90 degrees about the superior axis: i grows to anterior, j to the left, k to superior.
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
    file.sform.reset();
    file.spacing = {2, 3, 4};
    file.qform = {0, 0, std::sqrt(0.5), 10, 20, 30, 1};
    const Volume volume = Read(file.Bytes());
    ExpectNear(volume.grid.origin, {-10, -20, 30}, 1e-6, "origin");
    ExpectNear(volume.grid.spacing, {2, 3, 4}, 1e-6, "spacing");
    ExpectNear(volume.grid.rowDirection, {0, -1, 0}, 1e-6, "row direction");
    ExpectNear(volume.grid.columnDirection, {1, 0, 0}, 1e-6, "column direction");
    ExpectNear(volume.grid.sliceDirection, {0, 0, 1}, 1e-6, "slice direction");
    file.qform = {0, 0, std::sqrt(0.5), 10, 20, 30, -1}; // the third axis mirrored
    ExpectNear(Read(file.Bytes()).grid.sliceDirection, {0, 0, -1}, 1e-6, "slice direction");
}

TEST(ReadNifti, PrefersTheMatrixToTheQuaternion)
{
    const Grid grid = ObliqueGrid(4, 3, 2, 12);
    NiftiFile file = FileOf(grid);
    file.qform = {0, 0, std::sqrt(0.5), 10, 20, 30, 1};
    ExpectSameGrid(Read(file.Bytes()).grid, grid, 5e-5);
}

TEST(ReadNifti, WarnsWhenTheFileDoesNotSayWhereItLies)
{
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
    file.sform.reset();
    file.spacing = {2, 3, 4};
    const Volume volume = Read(file.Bytes());
    EXPECT_TRUE(HasWarning(volume, "does not say where the volume lies"));
    EXPECT_EQ(OrientationLetters(volume.grid), "RAS");
    ExpectNear(volume.grid.spacing, {2, 3, 4}, 1e-6, "spacing");
}

TEST(ReadNifti, HonoursTheUnitOfLength)
{
    const Grid grid = ObliqueGrid(4, 3, 2, 12);
    NiftiFile file = FileOf(grid, 2);
    const auto scaled = [&](double factor)
    {
        Grid result = grid;
        result.spacing = factor * grid.spacing;
        result.origin = factor * grid.origin;
        return result;
    };
    file.units = 1; // metres
    ExpectSameGrid(Read(file.Bytes()).grid, scaled(1000));
    file.units = 3; // micrometres
    ExpectSameGrid(Read(file.Bytes()).grid, scaled(0.001));
    file.units = 2 + 8; // mm, and seconds for time
    ExpectSameGrid(Read(file.Bytes()).grid, grid);
}

TEST(ReadNifti, KeepsAMirroredGridAsItIs)
{
    Grid grid = ObliqueGrid(4, 3, 2, 12);
    grid.rowDirection = -1 * grid.rowDirection;
    const Volume volume = Read(FileOf(grid).Bytes());
    ExpectSameGrid(volume.grid, grid, 5e-5);
    ExpectValues(volume, TestValue);
}

TEST(ReadNifti, RefusesAShearInThePlaneOfTheSlices)
{
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
    file.sform = {{{1, 0.5, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "enclose 63.4349 degrees, not 90")); // atan(1 / 0.5)
    file.sform = {{{1, 0, 1, 0}, {0, 1, 1, 0}, {0, 0, 0.01, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "slice direction lies in the plane of the slices"));
}

TEST(ReadNifti, RefusesGeometryThatIsNoGeometry)
{
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 2, 0));
    file.sform = {{{0, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "voxel spacings 0 x 1 x 1 mm; each must be above 0"));
    file.version = 2;
    file.sform = {{{1e300, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "which is no patient"));
    file.sform = {{{0.0001, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1.001, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "from 0.0001 to 1.001 mm"));
    file.sform = {{{1, 0, 0, 1e12}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "first voxel at (-1e+12, 0, 0), which is no patient"));
    (*file.sform)[0][0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "not finite"));
}

TEST(ReadNifti, ReadsTheFirstOfSeveralVolumes)
{
    const Grid grid = ObliqueGrid(4, 3, 2, 0);
    NiftiFile file = FileOf(grid);
    file.sizes.push_back(3);
    file.voxels += VoxelBytes<int16_t>(grid, [](int, int, int) { return 9999; });
    file.voxels += file.voxels;
    for (const std::string& bytes : {file.Bytes(), Gzipped(file.Bytes())})
    {
        const Volume volume = Read(bytes);
        ExpectValues(volume, TestValue);
        EXPECT_TRUE(HasWarning(volume, "several volumes (3 x 1); only the first is read"));
    }
}

TEST(ReadNifti, ReadsASingleSlice)
{
    NiftiFile file = FileOf(ObliqueGrid(4, 3, 1, 0));
    file.sizes = {4, 3};
    const Volume volume = Read(file.Bytes());
    EXPECT_EQ(volume.grid.sizeZ, 1);
    ExpectValues(volume, TestValue);
}

TEST(ReadNifti, RefusesMoreVoxelsThanTheFileHolds)
{
    NiftiFile file = FileOf(ObliqueGrid(7, 5, 4, 0));
    file.voxels.resize(279);
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }),
                         "asks for 632 bytes of voxels, but only 631 bytes are there")); // 352 of header, 7 * 5 * 4 * 2
    file.sizes = {30000, 30000, 4};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(Gzipped(file.Bytes())); }), "compressed bytes are there"));
    file.sizes = {32767, 32767, 32767};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "32767 x 32767 x 32767 voxels, more than the limits"));
    file.version = 2;
    file.sizes = {int64_t(1) << 40, int64_t(1) << 40, int64_t(1) << 40};
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(file.Bytes()); }), "more than the limits"));
}

TEST(ReadNifti, RefusesDamagedCompression)
{
    const std::string whole = Gzipped(FileOf(ObliqueGrid(20, 20, 20, 0)).Bytes());
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(whole.substr(0, whole.size() - 20)); }), "the file is cut off"));
    std::string wrong = whole;
    wrong[wrong.size() - 6] = char(wrong[wrong.size() - 6] + 1); // in the checksum
    EXPECT_TRUE(Contains(ErrorOf([&] { Read(wrong); }), "the compressed data are damaged"));
}
} // namespace
} // namespace corvane::host
