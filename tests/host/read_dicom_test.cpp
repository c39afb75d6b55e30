// DICOM files in, volumes out: what must be kept.

#include "dicom_writer.h"
#include "host/read_volume.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
using gdcm::Tag;
using gdcm::TransferSyntax;
using gdcm::VR;

Volume RoundTrip(const Grid& grid, const DicomSeriesOptions& options = {})
{
    const ScratchFolder folder;
    WriteDicomSeries(folder.Path(), grid, TestValue, options);
    return ReadVolume(folder.Path());
}

TEST(ReadDicom, KeepsGeometryAndValuesOfAnObliqueStack)
{
    const Grid grid = ObliqueGrid(7, 5, 9, 0);
    const Volume volume = RoundTrip(grid);
    ExpectSameGrid(volume.grid, grid);
    ExpectValues(volume, TestValue);
    EXPECT_EQ(volume.modality, "CT");
    EXPECT_EQ(volume.description, "test series");
    EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
}

TEST(ReadDicom, KeepsTheLeanOfATiltedStack)
{
    for (const double tilt : {20.0, -30.0})
    {
        const Grid grid = ObliqueGrid(7, 5, 9, tilt);
        const Volume volume = RoundTrip(grid);
        ExpectSameGrid(volume.grid, grid);
        EXPECT_NEAR(TiltDegrees(volume.grid), std::abs(tilt), 1e-6);
        ExpectValues(volume, TestValue);
        EXPECT_TRUE(volume.warnings.empty()) << volume.warnings.front();
    }
}

TEST(ReadDicom, OrdersSlicesAlongTheNormalWhateverTheirNumbers)
{
    // Slices that were written against the normal come back along it, the last one first.
    Grid grid = ObliqueGrid(4, 4, 6, 10);
    grid.sliceDirection = -1 * grid.sliceDirection;
    const Volume volume = RoundTrip(grid);
    EXPECT_NEAR(Length(volume.grid.origin - IndexToPatient(grid, {0, 0, 5})), 0, 1e-6);
    EXPECT_NEAR(Length(volume.grid.sliceDirection + grid.sliceDirection), 0, 1e-6);
    ExpectValues(volume, [](int i, int j, int k) { return TestValue(i, j, 5 - k); });
}

TEST(ReadDicom, AppliesTheRescaleOfUnsignedPixels)
{
    DicomSeriesOptions options;
    options.isSigned = false;
    options.bitsStored = 12;
    options.highBit = 11;
    options.intercept = -1024;
    ExpectValues(RoundTrip(ObliqueGrid(6, 5, 4, 0), options), TestValue);
}

TEST(ReadDicom, TakesTheStoredBitsWhereverTheyLie)
{
    for (const bool isSigned : {true, false})
    {
        DicomSeriesOptions options;
        options.isSigned = isSigned;
        options.bitsStored = 12;
        options.highBit = 14;
        options.intercept = isSigned ? 0 : -500;
        // Something else stands in the bits above and below, as overlays did.
        options.edit = [](int, gdcm::DataSet& data)
        {
            gdcm::DataElement element = data.GetDataElement(Tag(0x7fe0, 0x0010));
            std::string bytes(element.GetByteValue()->GetPointer(), element.GetByteValue()->GetLength());
            for (size_t i = 0; i < bytes.size(); i += 2)
            {
                bytes[i] |= char(0x05);     // bits 0 and 2
                bytes[i + 1] |= char(0x80); // bit 15
            }
            element.SetByteValue(bytes.data(), uint32_t(bytes.size()));
            data.Replace(element);
        };
        ExpectValues(RoundTrip(ObliqueGrid(6, 5, 4, 0), options), TestValue);
    }
}

TEST(ReadDicom, ReadsPixelsOf8And32Bits)
{
    const Grid grid = ObliqueGrid(5, 3, 4, 0); // an odd count of bytes is padded
    const auto value = [](int i, int j, int k) { return 10 * i + 3 * j + 50 * k; };
    for (const int bits : {8, 32})
    {
        DicomSeriesOptions options;
        options.isSigned = false;
        options.bitsAllocated = options.bitsStored = bits;
        options.highBit = bits - 1;
        const ScratchFolder folder;
        WriteDicomSeries(folder.Path(), grid, value, options);
        ExpectValues(ReadVolume(folder.Path()), value);
    }
}

TEST(ReadDicom, AppliesARescaleThatChangesFromSliceToSlice)
{
    DicomSeriesOptions options;
    options.edit = [](int slice, gdcm::DataSet& data)
    {
        SetText(data, Tag(0x0028, 0x1053), VR::DS, std::to_string(slice + 1));
        SetText(data, Tag(0x0028, 0x1052), VR::DS, std::to_string(-10 * slice));
    };
    ExpectValues(RoundTrip(ObliqueGrid(6, 5, 4, 0), options),
                 [](int i, int j, int k) { return (k + 1) * TestValue(i, j, k) - 10 * k; });
}

class ReadDicomSyntax : public testing::TestWithParam<TransferSyntax::TSType>
{
};

TEST_P(ReadDicomSyntax, DecodesEveryVoxelExactly)
{
    for (const bool isSigned : {true, false})
    {
        DicomSeriesOptions options;
        options.transferSyntax = GetParam();
        options.isSigned = isSigned;
        options.intercept = isSigned ? 0 : -1024;
        const Grid grid = ObliqueGrid(33, 20, 4, 20);
        const Volume volume = RoundTrip(grid, options);
        ExpectSameGrid(volume.grid, grid);
        ExpectValues(volume, TestValue);
    }
}

INSTANTIATE_TEST_SUITE_P(Syntaxes, ReadDicomSyntax,
                         testing::Values(TransferSyntax::ImplicitVRLittleEndian, TransferSyntax::ExplicitVRBigEndian,
                                         TransferSyntax::JPEGLosslessProcess14_1, TransferSyntax::JPEGLSLossless,
                                         TransferSyntax::JPEG2000Lossless, TransferSyntax::RLELossless),
                         [](const auto& info)
                         {
                             std::string name = TransferSyntax::GetTSString(info.param);
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST(ReadDicom, DecodesBaselineJpegCloseToItsValues)
{
    DicomSeriesOptions options;
    options.transferSyntax = TransferSyntax::JPEGBaselineProcess1;
    options.isSigned = false;
    options.bitsAllocated = options.bitsStored = 8;
    options.highBit = 7;
    const auto ramp = [](int i, int j, int k) { return 20 + 3 * i + 4 * j + 10 * k; };
    const ScratchFolder folder;
    WriteDicomSeries(folder.Path(), ObliqueGrid(24, 16, 3, 0), ramp, options);
    ExpectValues(ReadVolume(folder.Path()), ramp, 4); // the encoder's loss on a smooth ramp
}

TEST(ReadDicom, ReadsCompressedFramesOfOneFile)
{
    for (const auto syntax : {TransferSyntax::JPEGLSLossless, TransferSyntax::JPEG2000Lossless,
                              TransferSyntax::JPEGLosslessProcess14_1, TransferSyntax::RLELossless})
    {
        const ScratchFolder folder;
        const Grid grid = ObliqueGrid(33, 20, 4, 20);
        DicomSeriesOptions options;
        options.transferSyntax = syntax;
        WriteDicomFrames(folder / "enhanced.dcm", grid, TestValue, options);
        const Volume volume = ReadVolume(folder / "enhanced.dcm");
        ExpectSameGrid(volume.grid, grid);
        ExpectValues(volume, TestValue);
    }
}

TEST(ReadDicom, ReadsTheFramesOfOneFile)
{
    const ScratchFolder folder;
    const Grid grid = ObliqueGrid(6, 5, 7, 15);
    DicomSeriesOptions options;
    options.intercept = -200;
    WriteDicomFrames(folder / "enhanced.dcm", grid, TestValue, options);
    const Volume volume = ReadVolume(folder / "enhanced.dcm");
    ExpectSameGrid(volume.grid, grid);
    ExpectValues(volume, TestValue);
    ExpectValues(ReadVolume(folder.Path()), TestValue); // the folder with that file alone is the same
}

TEST(ReadDicom, ReadsFilesWithoutPreamble)
{
    const ScratchFolder with, without;
    const Grid grid = ObliqueGrid(6, 5, 4, 15);
    WriteDicomSeries(with.Path(), grid, TestValue);
    for (const auto& entry : std::filesystem::directory_iterator(with.Path()))
        WriteBytes(without / entry.path().filename().string(), ReadBytes(entry.path().string()).substr(132));
    ExpectValues(ReadVolume(without.Path()), TestValue);
}

TEST(ReadDicom, ReadsOneSliceWithTheSpacingThatItsHeaderGives)
{
    const auto edited = [](const std::string& between, const std::string& thickness)
    {
        const ScratchFolder folder;
        DicomSeriesOptions options;
        options.edit = [&](int, gdcm::DataSet& data)
        {
            SetText(data, Tag(0x0018, 0x0088), VR::DS, between);
            SetText(data, Tag(0x0018, 0x0050), VR::DS, thickness);
        };
        WriteDicomSeries(folder.Path(), ObliqueGrid(6, 5, 1, 0), TestValue, options);
        return ReadVolume(folder.Path());
    };
    const Volume between = edited("3.25", "4");
    EXPECT_DOUBLE_EQ(between.grid.spacing.z, 3.25);
    EXPECT_TRUE(HasWarning(between, "a single slice; its spacing is taken as 3.25 mm, the spacing between slices"));
    ExpectSameGrid(edited("2.5", "4").grid, ObliqueGrid(6, 5, 1, 0));
    EXPECT_DOUBLE_EQ(edited("", "4").grid.spacing.z, 4);
    EXPECT_DOUBLE_EQ(edited("", "").grid.spacing.z, 0.75); // the smaller pixel spacing
}

TEST(ReadDicom, ListsTheSeriesOfAFolderAndReadsTheOneChosen)
{
    const ScratchFolder folder;
    DicomSeriesOptions first, second;
    first.filePrefix = "A";
    second.filePrefix = "B";
    second.uid = "1.2.3.4.2";
    second.modality = "MR";
    second.description = "other series";
    WriteDicomSeries(folder.Path(), ObliqueGrid(6, 5, 4, 0), TestValue, first);
    WriteDicomSeries(folder.Path(), ObliqueGrid(3, 3, 3, 0), TestValue, second);
    WriteBytes(folder / "notes.txt", "not DICOM");

    const std::vector<Series> list = ListSeries(folder.Path());
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].uid, "1.2.3.4.1");
    EXPECT_EQ(list[0].files.size(), 4u);
    EXPECT_EQ(list[1].modality, "MR");
    EXPECT_EQ(list[1].description, "other series");

    EXPECT_EQ(ReadVolume(folder.Path(), {.series = "1"}).grid.sizeX, 6);
    EXPECT_EQ(ReadVolume(folder.Path(), {.series = "2"}).grid.sizeX, 3);
    EXPECT_EQ(ReadVolume(folder.Path(), {.series = "1.2.3.4.2"}).grid.sizeX, 3);
    const std::string unchosen = ErrorOf([&] { ReadVolume(folder.Path()); });
    EXPECT_TRUE(Contains(unchosen,
                         "holds 2 series, choose one by number or UID: 1: CT test series (4 files, 1.2.3.4.1), "
                         "2: MR other series (3 files, 1.2.3.4.2)"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder.Path(), {.series = "3"}); }), "holds no series '3'"));
}

TEST(ReadDicom, WarnsOfInvertedAndOfLossyImages)
{
    DicomSeriesOptions options;
    options.photometric = "MONOCHROME1";
    options.edit = [](int, gdcm::DataSet& data) { SetText(data, Tag(0x0028, 0x2110), VR::CS, "01"); };
    const Volume volume = RoundTrip(ObliqueGrid(6, 5, 4, 0), options);
    ExpectValues(volume, TestValue);
    EXPECT_TRUE(HasWarning(volume, "MONOCHROME1"));
    EXPECT_TRUE(HasWarning(volume, "compressed with loss"));
}

TEST(ReadDicom, ShowsTextsInOneLine)
{
    DicomSeriesOptions options;
    options.description = "a stack\nof\x1b[2J slices";
    EXPECT_EQ(RoundTrip(ObliqueGrid(6, 5, 4, 0), options).description, "a stack of [2J slices");
}

TEST(ReadDicom, TakesDirectionsRoundedToThreeDecimalsAsUnitVectors)
{
    DicomSeriesOptions options;
    options.edit = [](int slice, gdcm::DataSet& data)
    {
        SetText(data, Tag(0x0020, 0x0037), VR::DS, "0.707\\0.707\\0\\-0.707\\0.707\\0");
        SetText(data, Tag(0x0020, 0x0032), VR::DS, "0\\0\\" + std::to_string(2 * slice));
    };
    const Volume volume = RoundTrip(ObliqueGrid(6, 5, 4, 0), options);
    EXPECT_NEAR(volume.grid.rowDirection.x, std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(Length(volume.grid.columnDirection), 1, 1e-12);
    EXPECT_EQ(volume.grid.spacing.z, 2);
}
} // namespace
} // namespace corvane::host
