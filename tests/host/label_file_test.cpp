#include "host/label_file.h"
#include "host/read_volume.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
const char* const kEndings[] = {".nrrd", ".nii", ".nii.gz"};

// Every label byte that there is, cut away and not, and no two neighbours alike.
std::vector<uint8_t> EveryByte(const Grid& grid)
{
    std::vector<uint8_t> labels(grid.VoxelCount());
    for (size_t n = 0; n < labels.size(); ++n)
        labels[n] = uint8_t(n * 37 % 128);
    return labels;
}

std::string Written(const ScratchFolder& folder, const std::string& ending, const std::vector<uint8_t>& labels,
                    const Grid& grid)
{
    const std::string path = folder / ("labels" + ending);
    WriteBytes(path, LabelFileOf(labels, grid, LabelFormatOf(path)));
    return path;
}

TEST(LabelFile, IsReadBackWithEveryLabelAndEveryCut)
{
    const ScratchFolder folder;
    for (const double tilt : {0.0, 18.0})
    {
        const Grid grid = ObliqueGrid(11, 7, 5, tilt);
        const std::vector<uint8_t> labels = EveryByte(grid);
        for (const char* ending : kEndings)
            EXPECT_EQ(ReadLabels(Written(folder, ending, labels, grid), grid), labels) << ending << tilt;
    }
}

TEST(LabelFile, LiesWhereTheVolumeLiesAlsoWhenItIsTilted)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(6, 5, 4, 18);
    const std::vector<uint8_t> labels = EveryByte(grid);
    ExpectSameGrid(ReadVolume(Written(folder, ".nrrd", labels, grid)).grid, grid, 1e-12);
    // Single precision of 678 mm is 6e-5 mm.
    ExpectSameGrid(ReadVolume(Written(folder, ".nii", labels, grid)).grid, grid, 7e-5);
    ExpectSameGrid(ReadVolume(Written(folder, ".nii.gz", labels, grid)).grid, grid, 7e-5);
}

TEST(LabelFile, IsAVolumeOfItsLabelBytesForEverybodyElse)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(6, 5, 4, 0);
    const std::vector<uint8_t> labels = EveryByte(grid);
    for (const char* ending : kEndings)
    {
        const Volume volume = ReadVolume(Written(folder, ending, labels, grid));
        EXPECT_EQ(volume.warnings, std::vector<std::string>()) << ending;
        EXPECT_EQ(std::vector<uint8_t>(volume.voxels.begin(), volume.voxels.end()), labels) << ending;
    }
}

TEST(LabelFile, TakesUpLittleRoomWhereLabelsAreTheSame)
{
    const Grid grid = ObliqueGrid(100, 100, 100, 0);
    const std::vector<uint8_t> labels(grid.VoxelCount(), 64);
    EXPECT_LT(LabelFileOf(labels, grid, LabelFormat::Nrrd).size(), 5000u);
    EXPECT_LT(LabelFileOf(labels, grid, LabelFormat::NiftiGzip).size(), 5000u);
}

TEST(LabelFile, WithoutItsMarkHoldsNoLabelsAbove63)
{
    // A file of somebody else's with more than 64 labels must not look as if half of them were cut away.
    const ScratchFolder folder;
    Grid grid = ObliqueGrid(2, 2, 2, 0);
    const std::vector<uint8_t> labels = {0, 1, 2, 63, 64, 0, 0, 0};
    for (const char* ending : {".nrrd", ".nii"})
    {
        const std::string path = Written(folder, ending, labels, grid);
        std::string bytes = ReadBytes(path);
        const size_t mark = bytes.find(kCutMark);
        ASSERT_NE(mark, std::string::npos);
        bytes[mark] = '?';
        WriteBytes(path, bytes);
        const std::string message = ErrorOf([&] { ReadLabels(path, grid); });
        EXPECT_TRUE(Contains(message, "the value 64 at voxel (0, 0, 1) is no label")) << ending;
        EXPECT_TRUE(Contains(message, "from 0 to 63")) << ending;
    }
}

TEST(LabelFile, RefusesWhatIsNoLabelEvenWithItsMark)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(2, 2, 2, 0);
    const std::string path = Written(folder, ".nrrd", {0, 0, 128, 0, 0, 0, 0, 0}, grid);
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadLabels(path, grid); }), "the value 128 at voxel (0, 1, 0) is no label"));
}

TEST(LabelFile, IsOfTheKindThatItsNameSays)
{
    EXPECT_EQ(LabelFormatOf("a.nrrd"), LabelFormat::Nrrd);
    EXPECT_EQ(LabelFormatOf("a.b.nii"), LabelFormat::Nifti);
    EXPECT_EQ(LabelFormatOf("a.nii.gz"), LabelFormat::NiftiGzip);
    EXPECT_EQ(LabelFormatOf("-"), LabelFormat::Nrrd);
    for (const char* name : {"a.png", "nrrd", ".nrrd", "a.gz", ""})
        EXPECT_TRUE(Contains(ErrorOf([&] { LabelFormatOf(name); }, ErrorKind::Usage), ".nrrd, .nii or .nii.gz"))
            << name;
}

TEST(LabelFile, RefusesSizesThatNiftiCannotHold)
{
    Grid grid = ObliqueGrid(32768, 1, 1, 0);
    const std::vector<uint8_t> labels(grid.VoxelCount());
    EXPECT_TRUE(Contains(ErrorOf([&] { LabelFileOf(labels, grid, LabelFormat::Nifti); }, ErrorKind::Output), ".nrrd"));
    EXPECT_FALSE(LabelFileOf(labels, grid, LabelFormat::Nrrd).empty());
}
} // namespace
} // namespace corvane::host
