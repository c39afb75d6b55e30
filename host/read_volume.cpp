#include "read_volume.h"

#include "error.h"
#include "phantom.h"
#include "read_bytes.h"
#include "read_dicom.h"
#include "read_dicom_header.h"
#include "read_meta_image.h"
#include "read_nifti.h"
#include "read_nrrd.h"
#include "read_text.h"
#include "text_file.h"

#include <algorithm>
#include <filesystem>
#include <new>

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

constexpr size_t kSniffedBytes = 540; // the longest header that is looked at whole
constexpr double kGridTolerance = 1e-3;

bool StartsWith(const std::vector<char>& bytes, const std::string& text)
{
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

std::vector<char> FirstBytes(const std::string& path)
{
    std::vector<char> bytes(kSniffedBytes);
    ByteStream stream(path, 0, IsGzip(path) ? Compression::Deflate : Compression::None);
    bytes.resize(stream.ReadSome(bytes.data(), bytes.size()));
    return bytes;
}

// The header of a pair whose other file was named.
std::string HeaderOfPair(const std::string& path)
{
    fs::path header(path);
    if (header.extension() == ".gz")
        header.replace_extension();
    if (header.extension() != ".img")
        return path;
    header.replace_extension(".hdr");
    for (const std::string& candidate : {header.string(), header.string() + ".gz"})
        if (fs::exists(candidate))
            return candidate;
    throw Error(ErrorKind::Input,
                FileNameOf(path) + ": its header should be in " + header.filename().string() + ", which is not there");
}

RawVolume ReadFile(const std::string& input)
{
    const std::string path = HeaderOfPair(input);
    const std::vector<char> firstBytes = FirstBytes(path);
    if (StartsWith(firstBytes, "NRRD000"))
        return ReadNrrd(path);
    if (IsNifti(firstBytes))
        return ReadNifti(path);
    const std::string extension = fs::path(path).extension().string();
    if (IsMetaImage(firstBytes) || extension == ".mha" || extension == ".mhd")
        return ReadMetaImage(path);
    if (MayBeDicom(firstBytes))
        return ReadDicomFile(path);
    throw Error(ErrorKind::Input, FileNameOf(input) + ": of no known kind; DICOM, NIfTI (.nii, .nii.gz, .hdr/.img), "
                                                      "NRRD (.nrrd, .nhdr) and MetaImage (.mha, .mhd) are read");
}

RawVolume ReadFileOrFolder(const std::string& input, const std::string& series)
{
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    if (error == std::errc::permission_denied)
        throw Error(ErrorKind::Input, input + ": cannot be read (" + error.message() + ")");
    if (!fs::exists(status))
        throw Error(ErrorKind::Input, input + ": no such file or folder");
    try
    {
        if (fs::is_directory(status))
            return ReadDicomFolder(input, series);
        if (!series.empty())
            throw Error(ErrorKind::Usage, input + ": a series can be chosen from a folder only");
        RefuseUnlessFile(input);
        return ReadFile(input);
    }
    catch (const std::bad_alloc&)
    {
        throw Error(ErrorKind::Input, input + ": not enough memory for its voxels");
    }
    catch (const fs::filesystem_error& failure)
    {
        throw Error(ErrorKind::Input, input + ": " + failure.code().message());
    }
}

// What a file says of itself is shown in lines.
RawVolume ReadRaw(const std::string& input, const std::string& series)
{
    RawVolume raw = ReadFileOrFolder(input, series);
    raw.modality = OneLine(raw.modality);
    raw.description = OneLine(raw.description);
    for (std::string& warning : raw.warnings)
        warning = OneLine(warning);
    return raw;
}

// What differs between two grids, with the numbers; empty when nothing does.
std::string Difference(const Grid& a, const Grid& b)
{
    const auto sizes = [](const Grid& g)
    { return std::to_string(g.sizeX) + " x " + std::to_string(g.sizeY) + " x " + std::to_string(g.sizeZ) + " voxels"; };
    const auto text = [](const std::string& what, Vec3 ofA, Vec3 ofB)
    { return what + " " + PointText(ofA) + " where the volume has " + PointText(ofB); };
    const auto near = [](double x, double y) { return std::abs(x - y) <= kGridTolerance * std::abs(y); };
    if (a.sizeX != b.sizeX || a.sizeY != b.sizeY || a.sizeZ != b.sizeZ)
        return sizes(a) + " where the volume has " + sizes(b);
    if (!near(a.spacing.x, b.spacing.x) || !near(a.spacing.y, b.spacing.y) || !near(a.spacing.z, b.spacing.z))
        return text("spacing", a.spacing, b.spacing);
    if (Length(a.rowDirection - b.rowDirection) > kGridTolerance)
        return text("row direction", a.rowDirection, b.rowDirection);
    if (Length(a.columnDirection - b.columnDirection) > kGridTolerance)
        return text("column direction", a.columnDirection, b.columnDirection);
    if (Length(a.sliceDirection - b.sliceDirection) > kGridTolerance)
        return text("slice direction", a.sliceDirection, b.sliceDirection);
    // Relative to a voxel, not to the distance from the patient's zero.
    if (Length(a.origin - b.origin) > kGridTolerance * std::max({b.spacing.x, b.spacing.y, b.spacing.z}))
        return text("origin", a.origin, b.origin);
    return {};
}
} // namespace

Volume ReadVolume(const std::string& input, const ReadOptions& options)
{
    if (input.starts_with("phantom:"))
        return MakePhantom(input);
    return StoredVolume(ReadRaw(input, options.series));
}

std::vector<uint8_t> ReadLabels(const std::string& input, const Grid& grid)
{
    const RawVolume raw = ReadRaw(input, "");
    const std::string difference = Difference(raw.grid, grid);
    if (!difference.empty())
        throw Error(ErrorKind::Input, FileNameOf(input) + ": the labels lie on another grid: " + difference +
                                          "; resample them onto the volume's grid first");
    return LabelsOf(raw, FileNameOf(input));
}
} // namespace corvane::host
