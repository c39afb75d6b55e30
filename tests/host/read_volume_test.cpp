// The one entry for all kinds of input: kinds, labels, and files that are damaged.

#include "compressed.h"
#include "dicom_writer.h"
#include "host/read_volume.h"
#include "nifti_writer.h"
#include "read_testing.h"

#include <map>
#include <random>
#include <sys/stat.h>

namespace corvane::host
{
namespace
{
std::string NiftiBytes(const Grid& grid, const std::function<double(int, int, int)>& value)
{
    NiftiFile file;
    file.version = 2;
    file.SetSform(grid);
    for (int k = 0; k < grid.sizeZ; ++k)
        for (int j = 0; j < grid.sizeY; ++j)
            for (int i = 0; i < grid.sizeX; ++i)
                file.voxels += BytesOf(int16_t(value(i, j, k)));
    return file.Bytes();
}

std::string MetaBytes(const Grid& grid)
{
    std::string bytes = "ObjectType = Image\nNDims = 3\nDimSize = " + std::to_string(grid.sizeX) + " " +
                        std::to_string(grid.sizeY) + " " + std::to_string(grid.sizeZ) +
                        "\nElementSpacing = 1 1 2\nOffset = 0 0 0\nTransformMatrix = 1 0 0 0 1 0 0 0 1\n"
                        "ElementType = MET_UCHAR\nElementDataFile = LOCAL\n";
    return bytes + std::string(grid.VoxelCount(), 'v');
}

std::string NrrdBytes(const Grid& grid, const std::string& encoding)
{
    const std::string voxels(grid.VoxelCount(), 'v');
    return "NRRD0004\ntype: uchar\ndimension: 3\nsizes: " + std::to_string(grid.sizeX) + " " +
           std::to_string(grid.sizeY) + " " + std::to_string(grid.sizeZ) +
           "\nspace: LPS\nspace directions: (1,0,0) (0,1,0) (0,0,2)\nspace origin: (0,0,0)\nencoding: " + encoding +
           "\n\n" + (encoding == "gzip" ? Gzipped(voxels) : voxels);
}

TEST(ReadVolume, RefusesFilesOfNoKnownKind)
{
    const ScratchFolder folder;
    WriteBytes(folder / "a.txt", "some text\n");
    WriteBytes(folder / "empty.nii", "");
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.txt"); }), "a.txt: of no known kind; DICOM, NIfTI"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "empty.nii"); }), "of no known kind"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "missing.nii"); }), "no such file or folder"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "a.txt", {.series = "1"}); }, ErrorKind::Usage),
                         "a series can be chosen from a folder only"));
}

TEST(ReadVolume, MakesPhantoms) { EXPECT_EQ(ReadVolume("phantom:size=20x21x22").grid.sizeZ, 22); }

TEST(ReadLabels, TakesLabelsOfTheSameGrid)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(7, 5, 4, 15);
    WriteBytes(folder / "labels.nii", NiftiBytes(grid, [](int i, int j, int k) { return i + 7 * j + 3 * k; }));
    const std::vector<uint8_t> labels = ReadLabels(folder / "labels.nii", grid);
    ASSERT_EQ(labels.size(), grid.VoxelCount());
    EXPECT_EQ(labels[2 + 7 * 3 + 35 * 1], 2 + 7 * 3 + 3 * 1);
    WriteBytes(folder / "labels.nii", NiftiBytes(grid, [](int, int, int) { return 64; }));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadLabels(folder / "labels.nii", grid); }), "the value 64 at voxel (0, 0, 0)"));
}

TEST(ReadLabels, RefusesAnotherGridAndSaysWhatDiffers)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(7, 5, 4, 15);
    WriteBytes(folder / "labels.nii", NiftiBytes(grid, [](int, int, int) { return 1; }));
    const auto refusal = [&](const Grid& other) { return ErrorOf([&] { ReadLabels(folder / "labels.nii", other); }); };
    Grid other = grid;
    other.sizeZ = 6;
    EXPECT_TRUE(Contains(refusal(other), "7 x 5 x 4 voxels where the volume has 7 x 5 x 6 voxels"));
    other = grid;
    other.spacing.z = 2.6;
    EXPECT_TRUE(Contains(refusal(other), "spacing (0.75, 1.25, 2.5) where the volume has (0.75, 1.25, 2.6)"));
    other = grid;
    other.origin.x += 1;
    EXPECT_TRUE(
        Contains(refusal(other), "origin (-123.5, 45.25, 678.125) where the volume has (-122.5, 45.25, 678.12"));
    EXPECT_TRUE(Contains(refusal(ObliqueGrid(7, 5, 4, 14)), "slice direction ("));
    other = grid;
    other.rowDirection = -1 * grid.rowDirection;
    EXPECT_TRUE(Contains(refusal(other), "row direction ("));
    other = grid;
    other.columnDirection = -1 * grid.columnDirection;
    EXPECT_TRUE(Contains(refusal(other), "column direction ("));
    other = grid;
    other.spacing.x *= 1.0005; // within rounding
    other.origin.z += 0.001;
    EXPECT_EQ(refusal(other), "no error");
}

TEST(ReadVolume, NeverWaitsForAPipe)
{
    const ScratchFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder / "pipe", std::string("/dev/zero")})
        EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(path); }), path + ": cannot be read, it is a pipe or a device"));
}

TEST(ReadVolume, LeavesOutWhatIsNoFileInAFolder)
{
    const ScratchFolder folder;
    WriteDicomSeries(folder.Path(), ObliqueGrid(8, 6, 5, 10), TestValue);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("loop", folder / "loop");
    std::filesystem::create_symlink("absent", folder / "dangling");
    EXPECT_EQ(ReadVolume(folder.Path()).grid.sizeZ, 5);
    EXPECT_EQ(ListSeries(folder.Path()).size(), 1u);
}

// Reads a file that may be damaged: a volume whose memory fits its grid, or an Error; anything else fails the test.
void ReadDamaged(const std::string& path)
{
    try
    {
        const Volume volume = ReadVolume(path);
        EXPECT_EQ(volume.voxels.size(), volume.grid.VoxelCount());
        EXPECT_GT(volume.grid.spacing.x, 0);
        EXPECT_TRUE(std::isfinite(Dot(volume.grid.origin, volume.grid.sliceDirection)));
    }
    catch (const Error& error)
    {
        EXPECT_EQ(error.Kind(), ErrorKind::Input);
        EXPECT_FALSE(std::string(error.what()).empty());
    }
}

class ReadDamagedFiles : public testing::TestWithParam<std::string>
{
protected:
    // A whole file of the kind that the parameter names.
    std::string WholeFile(const ScratchFolder& folder) const
    {
        const Grid grid = ObliqueGrid(8, 6, 5, 10);
        const auto dicom = [&](gdcm::TransferSyntax::TSType syntax)
        {
            DicomSeriesOptions options;
            options.transferSyntax = syntax;
            Grid slice = grid;
            slice.sizeZ = 1;
            WriteDicomSeries(folder / "series", slice, TestValue, options);
            return ReadBytes(std::filesystem::directory_iterator(folder / "series")->path().string());
        };
        const std::map<std::string, std::function<std::string()>> kinds = {
            {"dicom", [&] { return dicom(gdcm::TransferSyntax::ExplicitVRLittleEndian); }},
            {"dicom_implicit", [&] { return dicom(gdcm::TransferSyntax::ImplicitVRLittleEndian); }},
            {"dicom_jpeg_ls", [&] { return dicom(gdcm::TransferSyntax::JPEGLSLossless); }},
            {"dicom_jpeg_2000", [&] { return dicom(gdcm::TransferSyntax::JPEG2000Lossless); }},
            {"dicom_jpeg", [&] { return dicom(gdcm::TransferSyntax::JPEGLosslessProcess14_1); }},
            {"dicom_rle", [&] { return dicom(gdcm::TransferSyntax::RLELossless); }},
            {"dicom_frames",
             [&]
             {
                 WriteDicomFrames(folder / "frames.dcm", grid, TestValue);
                 return ReadBytes(folder / "frames.dcm");
             }},
            {"nifti", [&] { return NiftiBytes(grid, TestValue); }},
            {"nifti_gz", [&] { return Gzipped(NiftiBytes(grid, TestValue)); }},
            {"nrrd", [&] { return NrrdBytes(grid, "raw"); }},
            {"nrrd_gz", [&] { return NrrdBytes(grid, "gzip"); }},
            {"meta", [&] { return MetaBytes(grid); }},
        };
        return kinds.at(GetParam())();
    }
};

TEST_P(ReadDamagedFiles, CutAnywhereGiveAnErrorOrAVolume)
{
    const ScratchFolder folder;
    const std::string whole = WholeFile(folder), path = folder / "damaged";
    WriteBytes(path, whole);
    ASSERT_NO_THROW(ReadVolume(path));
    testing::internal::CaptureStderr();
    for (size_t length = 0; length < whole.size(); length += 1 + whole.size() / 400)
    {
        WriteBytes(path, whole.substr(0, length));
        ReadDamaged(path);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); // decoders keep what they have to say to themselves
}

TEST_P(ReadDamagedFiles, WithChangedBytesGiveAnErrorOrAVolume)
{
    const ScratchFolder folder;
    const std::string whole = WholeFile(folder), path = folder / "damaged";
    std::mt19937 random(7);
    testing::internal::CaptureStderr();
    for (int round = 0; round < 300; ++round)
    {
        std::string bytes = whole;
        for (uint32_t change = 0; change <= random() % 4; ++change)
        {
            // Half of the changes fall into the header, where they matter most.
            const size_t range = random() % 2 ? std::min<size_t>(bytes.size(), 700) : bytes.size();
            const size_t place = random() % range;
            constexpr unsigned char kNasty[] = {0, 1, 0x7f, 0x80, 0xff, '-', '9', '%'};
            bytes[place] = char(random() % 2 ? kNasty[random() % sizeof kNasty] : random());
        }
        WriteBytes(path, bytes);
        ReadDamaged(path);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, ReadDamagedFiles,
                         testing::Values("dicom", "dicom_implicit", "dicom_jpeg_ls", "dicom_jpeg_2000", "dicom_jpeg",
                                         "dicom_rle", "dicom_frames", "nifti", "nifti_gz", "nrrd", "nrrd_gz", "meta"),
                         [](const auto& info) { return info.param; });
} // namespace
} // namespace corvane::host
