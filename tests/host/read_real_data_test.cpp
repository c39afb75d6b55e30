// Volumes of real scanners, where they are at hand. Expected numbers come from the notes beside the data and, for
// positions, from the files' own elements.

#include "host/read_volume.h"
#include "read_testing.h"

#include <algorithm>
#include <gdcmReader.h>

namespace corvane::host
{
namespace
{
class ReadRealData : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(CORVANE_TEST_DATA))
            GTEST_SKIP() << "no test volumes at " << CORVANE_TEST_DATA;
    }
    static std::string Path(const std::string& name) { return std::string(CORVANE_TEST_DATA) + "/" + name; }
};

void Expect(const Volume& volume, std::vector<int> sizes, Vec3 spacing, const std::string& letters, int minimum,
            int maximum)
{
    EXPECT_EQ(volume.grid.sizeX, sizes[0]);
    EXPECT_EQ(volume.grid.sizeY, sizes[1]);
    EXPECT_EQ(volume.grid.sizeZ, sizes[2]);
    ExpectNear(volume.grid.spacing, spacing, 1e-4, "spacing");
    EXPECT_EQ(OrientationLetters(volume.grid), letters);
    const auto [low, high] = std::minmax_element(volume.voxels.begin(), volume.voxels.end());
    EXPECT_EQ(*low, minimum);
    EXPECT_EQ(*high, maximum);
    EXPECT_EQ(volume.valueSlope, 1);
    EXPECT_EQ(volume.valueIntercept, 0);
    EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
}

TEST_F(ReadRealData, TheAbdomen)
{
    const Volume volume = ReadVolume(Path("ct_pancreas_cb001.nii.gz"));
    Expect(volume, {512, 512, 134}, {1.07421875, 1.07421875, 3}, "LPS", -1000, 1988);
    EXPECT_NEAR(TiltDegrees(volume.grid), 0, 1e-6);
}

TEST_F(ReadRealData, TheHead)
{
    Expect(ReadVolume(Path("head_ct_64.nii.gz")), {64, 64, 93}, {3.2, 3.2, 1.5}, "LAI", -1024, 2902);
}

TEST_F(ReadRealData, TheChestWhoseFileOrderIsNotItsSliceOrder)
{
    const Volume volume = ReadVolume(Path("lidc_0001_dicom"));
    Expect(volume, {512, 512, 16}, {0.703125, 0.703125, 2.5}, "LPS", -2048, 3071);
    EXPECT_EQ(volume.modality, "CT");
    const std::vector<Series> series = ListSeries(Path("lidc_0001_dicom"));
    ASSERT_EQ(series.size(), 1u);
    EXPECT_EQ(series[0].files.size(), 16u);
}

TEST_F(ReadRealData, TheTiltedStack)
{
    const Volume volume = ReadVolume(Path("ct_tilted_synth_dicom"));
    EXPECT_NEAR(TiltDegrees(volume.grid), 18, 1e-5);
    ExpectNear(volume.grid.spacing, {3.6, 3.6, 5}, 1e-6, "spacing");
    ExpectNear(volume.grid.sliceDirection, {0, 0, 1}, 1e-6, "slice direction");
    // The planes lie 4.755 mm apart along their normal: 5 mm * cos 18 degrees.
    const Vec3 normal = Cross(volume.grid.rowDirection, volume.grid.columnDirection);
    EXPECT_NEAR(5 * Dot(normal, volume.grid.sliceDirection), 4.755283, 1e-5);
}

TEST_F(ReadRealData, TheDoubleObliqueStackWithEverySliceAtItsPosition)
{
    const Volume volume = ReadVolume(Path("mr_oblique_dicom"));
    EXPECT_EQ(volume.grid.sizeX, 64);
    EXPECT_EQ(volume.grid.sizeZ, 40);
    ExpectNear(volume.grid.spacing, {3, 3, 3}, 1e-5, "spacing");
    EXPECT_EQ(volume.modality, "MR");
    int fileCount = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Path("mr_oblique_dicom")))
    {
        gdcm::Reader reader;
        reader.SetFileName(entry.path().c_str());
        ASSERT_TRUE(reader.Read());
        const gdcm::DataSet& data = reader.GetFile().GetDataSet();
        const gdcm::ByteValue* text = data.GetDataElement(gdcm::Tag(0x0020, 0x0032)).GetByteValue();
        const gdcm::ByteValue* pixels = data.GetDataElement(gdcm::Tag(0x7fe0, 0x0010)).GetByteValue();
        Vec3 position;
        ASSERT_EQ(std::sscanf(std::string(text->GetPointer(), text->GetLength()).c_str(), "%lf\\%lf\\%lf", &position.x,
                              &position.y, &position.z),
                  3);
        // The file's position is voxel (0, 0, k) of some slice k, and that slice holds the file's pixels.
        const Vec3 index = PatientToIndex(volume.grid, position);
        EXPECT_NEAR(index.x, 0, 1e-4);
        EXPECT_NEAR(index.y, 0, 1e-4);
        EXPECT_NEAR(index.z, std::round(index.z), 1e-4);
        const size_t k = size_t(std::lround(index.z));
        ASSERT_LT(k, 40u);
        EXPECT_EQ(std::memcmp(volume.voxels.data() + k * 64 * 64, pixels->GetPointer(), 64 * 64 * 2), 0);
        ++fileCount;
    }
    EXPECT_EQ(fileCount, 40);
}
} // namespace
} // namespace corvane::host
