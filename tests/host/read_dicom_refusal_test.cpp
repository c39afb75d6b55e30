// DICOM stacks that no grid describes: each is refused, and the message names the numbers.

#include "dicom_writer.h"
#include "host/read_volume.h"
#include "read_testing.h"

namespace corvane::host
{
namespace
{
using gdcm::Tag;
using gdcm::VR;

const Tag kPosition(0x0020, 0x0032), kOrientation(0x0020, 0x0037), kPixelSpacing(0x0028, 0x0030);

// Axial slices 2.5 mm apart, the first at z = 0.
Grid AxialGrid(int sizeZ)
{
    Grid grid = ObliqueGrid(6, 5, sizeZ, 0);
    grid.origin = {};
    grid.rowDirection = {1, 0, 0};
    grid.columnDirection = {0, 1, 0};
    grid.sliceDirection = {0, 0, 1};
    return grid;
}

std::string Refusal(const Grid& grid, const DicomSeriesOptions& options)
{
    const ScratchFolder folder;
    WriteDicomSeries(folder.Path(), grid, TestValue, options);
    return ErrorOf([&] { ReadVolume(folder.Path()); });
}

// The message for a stack whose slice `slice` is changed.
std::string RefusalOfSlice(int slice, const std::function<void(gdcm::DataSet&)>& change)
{
    DicomSeriesOptions options;
    options.edit = [&](int k, gdcm::DataSet& data)
    {
        if (k == slice)
            change(data);
    };
    return Refusal(AxialGrid(8), options);
}

std::string RefusalOfText(int slice, Tag tag, VR::VRType type, const std::string& text)
{
    return RefusalOfSlice(slice, [&](gdcm::DataSet& data) { SetText(data, tag, type, text); });
}

TEST(RefuseDicom, MissingSlices)
{
    DicomSeriesOptions options;
    options.leftOut = {3, 4};
    const std::string message = Refusal(AxialGrid(8), options);
    EXPECT_TRUE(Contains(message, "missing slices"));
    EXPECT_TRUE(Contains(message, "(at 5 mm)"));
    EXPECT_TRUE(Contains(message, "(at 12.5 mm) are 7.5 mm apart where the others are 2.5 mm"));
    EXPECT_TRUE(Contains(message, "2 between them missing"));
}

TEST(RefuseDicom, OneMissingSliceAmongMany)
{
    DicomSeriesOptions options;
    options.leftOut = {70};
    EXPECT_TRUE(Contains(Refusal(AxialGrid(100), options), "are 5 mm apart where the others are 2.5 mm; 1 between"));
}

TEST(RefuseDicom, DoubledSlices)
{
    const std::string message = RefusalOfText(4, kPosition, VR::DS, "0\\0\\7.5");
    EXPECT_TRUE(Contains(message, "doubled slices"));
    EXPECT_TRUE(Contains(message, "at (0, 0, 7.5)"));
    EXPECT_TRUE(Contains(message, "lie in the same plane (8 images in 7 planes)"));
}

TEST(RefuseDicom, SeveralPhasesInOneSeries)
{
    const ScratchFolder folder;
    DicomSeriesOptions first, second;
    second.filePrefix = "second";
    WriteDicomSeries(folder.Path(), AxialGrid(8), TestValue, first);
    WriteDicomSeries(folder.Path(), AxialGrid(8), TestValue, second);
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder.Path()); }), "(16 images in 8 planes)"));
}

TEST(RefuseDicom, UnevenSteps)
{
    const std::string message = RefusalOfText(4, kPosition, VR::DS, "0\\0\\10.4");
    EXPECT_TRUE(Contains(message, "uneven slices"));
    EXPECT_TRUE(Contains(message, "(at 10.4 mm)"));
    EXPECT_TRUE(Contains(message, "are 2.9 mm apart where the others are 2.5 mm"));
}

TEST(RefuseDicom, ASliceBesideTheLine)
{
    const std::string message = RefusalOfText(4, kPosition, VR::DS, "0.5\\0\\10");
    EXPECT_TRUE(Contains(message, "slices off the line"));
    EXPECT_TRUE(Contains(message, "lies 0.5 mm from its place"));
    EXPECT_TRUE(Contains(message, "(allowed are 0.025 mm)"));
}

TEST(RefuseDicom, ButTinyDeviationsOnlyGetAWarning)
{
    const ScratchFolder folder;
    DicomSeriesOptions options;
    options.edit = [](int k, gdcm::DataSet& data)
    {
        if (k == 4)
            SetText(data, kPosition, VR::DS, "0.02\\0\\10");
    };
    WriteDicomSeries(folder.Path(), AxialGrid(8), TestValue, options);
    const Volume volume = ReadVolume(folder.Path());
    ExpectSameGrid(volume.grid, AxialGrid(8));
    EXPECT_TRUE(HasWarning(volume, "slice positions stray by up to 0.02 mm from even steps of 2.5 mm"));
}

TEST(RefuseDicom, MixedOrientations)
{
    const std::string message = RefusalOfText(4, kOrientation, VR::DS, "1\\0\\0\\0\\0\\-1");
    EXPECT_TRUE(Contains(message, "images of different orientation in one series"));
    EXPECT_TRUE(Contains(message, "row (1, 0, 0) column (0, 0, -1)"));
    EXPECT_TRUE(Contains(message, "row (1, 0, 0) column (0, 1, 0)"));
}

TEST(RefuseDicom, MixedSizes)
{
    const ScratchFolder folder;
    DicomSeriesOptions options;
    options.leftOut = {7};
    WriteDicomSeries(folder.Path(), AxialGrid(8), TestValue, options);
    Grid wide = AxialGrid(8);
    wide.sizeX = 12;
    options.leftOut = {0, 1, 2, 3, 4, 5, 6};
    WriteDicomSeries(folder.Path(), wide, TestValue, options);
    const std::string message = ErrorOf([&] { ReadVolume(folder.Path()); });
    EXPECT_TRUE(Contains(message, "images of different size in one series"));
    EXPECT_TRUE(Contains(message, "has 12 x 5 pixels where"));
    EXPECT_TRUE(Contains(message, "has 6 x 5 pixels"));
}

TEST(RefuseDicom, MixedPixelSpacings)
{
    const std::string message = RefusalOfText(4, kPixelSpacing, VR::DS, "1.25\\0.8");
    EXPECT_TRUE(Contains(message, "images of different pixel spacing in one series"));
    EXPECT_TRUE(Contains(message, "has 0.8 x 1.25 mm where"));
    EXPECT_TRUE(Contains(message, "has 0.75 x 1.25 mm"));
}

TEST(RefuseDicom, DirectionsThatAreNoUnitVectors)
{
    const std::string message = RefusalOfText(4, kOrientation, VR::DS, "1\\0.5\\0\\0\\1\\0");
    EXPECT_TRUE(Contains(message, "directions of length 1.11803 and 1, not 1"));
}

TEST(RefuseDicom, DirectionsThatAreNotPerpendicular)
{
    DicomSeriesOptions options;
    options.edit = [](int, gdcm::DataSet& data) { SetText(data, kOrientation, VR::DS, "1\\0\\0\\0.6\\0.8\\0"); };
    EXPECT_TRUE(Contains(Refusal(AxialGrid(8), options), "enclose 53.1301 degrees, not 90"));
}

TEST(RefuseDicom, ImagesWithoutTheirPlace)
{
    const auto removed = [](Tag tag) { return RefusalOfSlice(4, [&](gdcm::DataSet& data) { data.Remove(tag); }); };
    EXPECT_TRUE(Contains(removed(kPosition), "the header gives no image position (patient)"));
    EXPECT_TRUE(Contains(removed(kOrientation), "the header gives no image orientation (patient)"));
    EXPECT_TRUE(Contains(removed(kPixelSpacing), "the header gives no pixel spacing"));
    EXPECT_TRUE(Contains(RefusalOfText(4, kPosition, VR::DS, "0\\0"), "the header gives no image position"));
    EXPECT_TRUE(Contains(RefusalOfText(4, kPixelSpacing, VR::DS, "0\\0"), "the header gives no pixel spacing"));
}

TEST(RefuseDicom, FramesWithoutTheirPlace)
{
    const ScratchFolder folder;
    DicomSeriesOptions options;
    options.edit = [](int, gdcm::DataSet& data)
    {
        data.Remove(Tag(0x5200, 0x9230));
        SetText(data, kPosition, VR::DS, "0\\0\\0"); // one place for all says nothing
    };
    WriteDicomFrames(folder / "frames.dcm", AxialGrid(8), TestValue, options);
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "frames.dcm"); }),
                         "frames.dcm frame 1: the header gives no image position (patient)"));
}

TEST(RefuseDicom, ColourImages)
{
    EXPECT_TRUE(Contains(RefusalOfSlice(4,
                                        [](gdcm::DataSet& data)
                                        {
                                            SetNumber(data, Tag(0x0028, 0x0002), 3);
                                            SetText(data, Tag(0x0028, 0x0004), VR::CS, "RGB");
                                        }),
                         "colour images (RGB, 3 samples per pixel)"));
    EXPECT_TRUE(Contains(RefusalOfText(4, Tag(0x0028, 0x0004), VR::CS, "PALETTE COLOR"), "colour images (PALETTE"));
}

TEST(RefuseDicom, BitsThatCannotBe)
{
    EXPECT_TRUE(Contains(RefusalOfSlice(4, [](gdcm::DataSet& data) { SetNumber(data, Tag(0x0028, 0x0101), 17); }),
                         "17 bits stored up to bit 15 of 16, which cannot be"));
    EXPECT_TRUE(Contains(RefusalOfSlice(4, [](gdcm::DataSet& data) { SetNumber(data, Tag(0x0028, 0x0100), 12); }),
                         "pixels of 12 bits cannot be shown"));
}

TEST(RefuseDicom, TooFewPixels)
{
    EXPECT_TRUE(Contains(RefusalOfSlice(4,
                                        [](gdcm::DataSet& data)
                                        {
                                            gdcm::DataElement element = data.GetDataElement(Tag(0x7fe0, 0x0010));
                                            element.SetByteValue("1234", 4);
                                            data.Replace(element);
                                        }),
                         "the pixels end too early: 4 of 60 bytes"));
    EXPECT_TRUE(Contains(RefusalOfSlice(4, [](gdcm::DataSet& data) { data.Remove(Tag(0x7fe0, 0x0010)); }),
                         "the pixels end too early: 0 of 60 bytes"));
}

TEST(RefuseDicom, AFolderWithADamagedSliceRatherThanLeaveItOut)
{
    const ScratchFolder folder;
    WriteDicomSeries(folder.Path(), AxialGrid(8), TestValue);
    const std::string path = std::filesystem::directory_iterator(folder.Path())->path().string();
    WriteBytes(path, ReadBytes(path).substr(0, 400));
    const std::string message = ErrorOf([&] { ReadVolume(folder.Path()); });
    EXPECT_TRUE(Contains(message, std::filesystem::path(path).filename().string() + ": damaged or cut off at byte"));
}

TEST(RefuseDicom, CompressedPicturesOfAnotherSize)
{
    for (const auto syntax : {gdcm::TransferSyntax::JPEGLSLossless, gdcm::TransferSyntax::JPEG2000Lossless,
                              gdcm::TransferSyntax::JPEGLosslessProcess14_1})
    {
        const ScratchFolder folder;
        DicomSeriesOptions options;
        options.transferSyntax = syntax;
        Grid grid = AxialGrid(1);
        grid.sizeX = 33; // the encoders need room
        grid.sizeY = 20;
        WriteDicomSeries(folder.Path(), grid, TestValue, options);
        const std::string path = std::filesystem::directory_iterator(folder.Path())->path().string();
        std::string bytes = ReadBytes(path);
        const size_t rows = bytes.find(std::string("\x28\0\x10\0US\2\0", 8)); // the element in explicit form
        ASSERT_NE(rows, std::string::npos);
        bytes[rows + 8] = 22;
        WriteBytes(path, bytes);
        EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder.Path()); }),
                             "a compressed picture has 33 x 20 pixels of 1 x 16 bits, the header says 33 x 22 of 16"));
    }
}

// Of a series that is decoded together, the message names the one file that is damaged.
TEST(RefuseDicom, DamagedCompressedPicturesByName)
{
    const ScratchFolder folder;
    DicomSeriesOptions options;
    options.transferSyntax = gdcm::TransferSyntax::JPEGLSLossless;
    Grid grid = AxialGrid(5);
    grid.sizeX = 33;
    grid.sizeY = 20;
    WriteDicomSeries(folder.Path(), grid, TestValue, options);
    const std::string path = std::filesystem::directory_iterator(folder.Path())->path().string();
    std::string bytes = ReadBytes(path);
    const size_t scan = bytes.find("\xff\xda");
    ASSERT_NE(scan, std::string::npos);
    std::fill(bytes.begin() + long(scan) + 10, bytes.end() - 12, '\x7f'); // behind the head of the scan
    WriteBytes(path, bytes);
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder.Path()); }),
                         std::filesystem::path(path).filename().string() + ": the compressed pixels are damaged"));
}

TEST(RefuseDicom, FoldersWithoutImages)
{
    const ScratchFolder folder;
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder.Path()); }), "holds no DICOM images"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "none"); }), "no such file or folder"));
    EXPECT_TRUE(Contains(ErrorOf([&] { ListSeries(folder / "none"); }), "cannot be read"));
}

TEST(RefuseDicom, PlacesFarFromEveryPatient)
{
    EXPECT_TRUE(Contains(RefusalOfText(4, kPosition, VR::DS, "1e300\\0\\0"), "(1e+300, 0, 0), which is no patient"));
    EXPECT_TRUE(Contains(RefusalOfText(4, kPosition, VR::DS, "0\\0\\-2e9"), "which is no patient"));
    EXPECT_TRUE(Contains(RefusalOfText(0, kOrientation, VR::DS, "1\\0\\0\\1\\0\\0"), "the same direction for rows"));
}

// A file of a few hundred bytes must not take memory for what it only promises.
TEST(RefuseDicom, MorePixelsThanTheFileHolds)
{
    const ScratchFolder folder;
    DicomSeriesOptions options;
    options.edit = [](int, gdcm::DataSet& data) { SetText(data, Tag(0x0028, 0x0008), VR::IS, "1000000"); };
    WriteDicomFrames(folder / "frames.dcm", AxialGrid(2), TestValue, options);
    EXPECT_TRUE(Contains(ErrorOf([&] { ReadVolume(folder / "frames.dcm"); }),
                         "frames.dcm: the header says 1e+06 frames, but only 120 bytes of pixels are there"));

    options = {};
    options.transferSyntax = gdcm::TransferSyntax::RLELossless;
    WriteDicomSeries(folder / "runs", AxialGrid(1), TestValue, options);
    const std::string path = std::filesystem::directory_iterator(folder / "runs")->path().string();
    std::string bytes = ReadBytes(path);
    for (const char* head : {"\x28\0\x10\0US\2\0", "\x28\0\x11\0US\2\0"}) // rows and columns
    {
        const size_t element = bytes.find(std::string(head, 8));
        ASSERT_NE(element, std::string::npos);
        bytes.replace(element + 8, 2, BytesOf(uint16_t(40000)));
    }
    WriteBytes(path, bytes);
    EXPECT_TRUE(
        Contains(ErrorOf([&] { ReadVolume(path); }), "the header asks for 3200000000 bytes of pixels, but only"));
}
} // namespace
} // namespace corvane::host
