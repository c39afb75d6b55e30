#include "read_dicom.h"

#include "error.h"
#include "read_dicom_header.h"
#include "read_dicom_pixels.h"
#include "read_dicom_stack.h"
#include "read_grid.h"
#include "read_text.h"
#include "read_volume.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace corvane::host
{
namespace
{
namespace fs = std::filesystem;

constexpr size_t kSniffedBytes = 132; // preamble and mark
constexpr size_t kMaxListedSeries = 10;

std::vector<char> FirstBytes(const fs::path& path)
{
    std::vector<char> bytes(kSniffedBytes);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Error(ErrorKind::Input, path.string() + ": cannot be read (" + std::strerror(errno) +
                                          ") and may be a slice; make it readable or move it out of the folder");
    file.read(bytes.data(), std::streamsize(bytes.size()));
    bytes.resize(size_t(file.gcount()));
    return bytes;
}

// A damaged file that says it is DICOM is an error, so that no slice is lost silently; what only resembles DICOM is
// not.
std::optional<DicomHeader> HeaderIfImage(const fs::path& path)
{
    const std::vector<char> firstBytes = FirstBytes(path);
    if (!MayBeDicom(firstBytes))
        return std::nullopt;
    try
    {
        return ReadDicomHeader(path.string());
    }
    catch (const Error&)
    {
        if (HasDicomMark(firstBytes))
            throw;
        return std::nullopt;
    }
}

// The headers of all DICOM images of a folder, by file name.
std::vector<DicomHeader> HeadersOf(const std::string& folder)
{
    std::error_code error;
    std::vector<fs::path> paths;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (std::error_code ignored; entry->is_regular_file(ignored)) // a link to nowhere is none
            paths.push_back(entry->path());
    if (error)
        throw Error(ErrorKind::Input, folder + ": the folder cannot be read (" + error.message() + ")");
    std::sort(paths.begin(), paths.end());
    std::vector<DicomHeader> headers;
    for (const fs::path& path : paths)
        if (auto header = HeaderIfImage(path))
            headers.push_back(std::move(*header));
    return headers;
}

struct DicomSeries
{
    Series summary;
    std::vector<DicomHeader> files;
};

std::vector<DicomSeries> SeriesOf(std::vector<DicomHeader> headers)
{
    std::vector<DicomSeries> all;
    for (DicomHeader& header : headers)
    {
        auto series = std::find_if(all.begin(), all.end(),
                                   [&](const DicomSeries& s) { return s.summary.uid == header.seriesUid; });
        if (series == all.end())
        {
            const Series summary = {header.seriesUid, header.modality, header.description, {}};
            series = all.insert(all.end(), {.summary = summary, .files = {}});
        }
        series->summary.files.push_back(header.path);
        series->files.push_back(std::move(header));
    }
    return all;
}

std::string ListOf(const std::vector<DicomSeries>& all)
{
    std::string list;
    for (size_t i = 0; i < std::min(all.size(), kMaxListedSeries); ++i)
    {
        const Series& series = all[i].summary;
        list += (i ? ", " : "") + std::to_string(i + 1) + ": " + series.modality + " " + series.description + " (" +
                std::to_string(series.files.size()) + " files, " + series.uid + ")";
    }
    return all.size() > kMaxListedSeries ? list + ", ..." : list;
}

const DicomSeries& Choose(const std::string& folder, const std::vector<DicomSeries>& all, const std::string& wanted)
{
    if (all.empty())
        throw Error(ErrorKind::Input, folder + ": holds no DICOM images (subfolders are not searched)");
    if (wanted.empty() && all.size() == 1)
        return all.front();
    if (wanted.empty())
        throw Error(ErrorKind::Input, folder + ": holds " + std::to_string(all.size()) +
                                          " series, choose one by number or UID: " + ListOf(all));
    for (size_t i = 0; i < all.size(); ++i)
        if (wanted == all[i].summary.uid || wanted == std::to_string(i + 1))
            return all[i];
    throw Error(ErrorKind::Input, folder + ": holds no series '" + wanted + "'; there are " + ListOf(all));
}

std::string FrameName(const DicomHeader& file, size_t frame)
{
    return FileNameOf(file.path) + (file.frames.size() > 1 ? " frame " + std::to_string(frame + 1) : "");
}

SlicePlace PlaceOf(const DicomHeader& file, size_t frameIndex)
{
    const DicomFrame& frame = file.frames[frameIndex];
    const std::string name = FrameName(file, frameIndex);
    const auto require = [&](bool said, const std::string& what)
    {
        if (!said)
            throw Error(ErrorKind::Input,
                        name + ": the header gives no " + what + ", so its place in the patient is not known");
    };
    require(frame.position.has_value(), "image position (patient)");
    require(frame.rowDirection && frame.columnDirection, "image orientation (patient)");
    require(frame.rowSpacing > 0 && frame.columnSpacing > 0, "pixel spacing");

    SlicePlace place;
    place.name = name;
    place.rows = file.rows;
    place.columns = file.columns;
    place.rowSpacing = frame.rowSpacing;
    place.columnSpacing = frame.columnSpacing;
    place.position = *frame.position;
    place.rowDirection = *frame.rowDirection;
    place.columnDirection = *frame.columnDirection;
    place.spacingBetweenSlices = frame.spacingBetweenSlices;
    place.thickness = frame.thickness;
    return place;
}

void WarnAboutPixels(const std::vector<DicomHeader>& files, std::vector<std::string>& warnings)
{
    const auto any = [&](auto test) { return std::any_of(files.begin(), files.end(), test); };
    if (any([](const DicomHeader& file) { return file.photometric == "MONOCHROME1"; }))
        warnings.push_back("the images are meant to be shown inverted (MONOCHROME1); the values are kept as they are");
    if (any([](const DicomHeader& file) { return file.wasLossy; }))
        warnings.push_back("the images were compressed with loss at some time; small values may not be true");
}

// Reads files into the slices that the order of the stack gives to their frames.
void ReadSlices(const std::vector<DicomHeader>& files, const std::vector<size_t>& order, RawVolume& raw)
{
    std::vector<size_t> sliceOf(order.size());
    for (size_t slice = 0; slice < order.size(); ++slice)
        sliceOf[order[slice]] = slice;

    const size_t sliceBytes = raw.grid.VoxelsPerSlice() * BytesPerSample(raw.type);
    char* const memory = reinterpret_cast<char*>(raw.memory.data());
    size_t image = 0;
    auto file = files.begin();
    ReadPixels(files, raw.type,
               [&](const std::vector<char>& samples)
               {
                   for (size_t frame = 0; frame < file->frames.size(); ++frame, ++image)
                   {
                       std::memcpy(memory + sliceOf[image] * sliceBytes, samples.data() + frame * sliceBytes,
                                   sliceBytes);
                       raw.rescale[sliceOf[image]] = file->frames[frame].rescale;
                   }
                   ++file;
               });
}

RawVolume ReadFiles(const std::vector<DicomHeader>& files)
{
    const DicomHeader& first = files.front();
    std::vector<SlicePlace> places;
    for (const DicomHeader& file : files)
    {
        CheckPixelsAreGrey(file);
        CheckPixelsFit(file);
        for (size_t frame = 0; frame < file.frames.size(); ++frame)
            places.push_back(PlaceOf(file, frame));
    }
    Stack stack = StackOf(FileNameOf(first.path), places);

    RawVolume raw;
    raw.grid = stack.grid;
    raw.modality = first.modality;
    raw.description = first.description;
    raw.warnings = std::move(stack.warnings);
    WarnAboutPixels(files, raw.warnings);
    raw.type = CommonSampleType(files);
    raw.rescale.resize(places.size());
    raw.Allocate(FileNameOf(first.path));
    ReadSlices(files, stack.order, raw);
    const bool oneRescale =
        std::all_of(raw.rescale.begin(), raw.rescale.end(),
                    [&](const Rescale& rescale)
                    { return rescale.slope == raw.rescale[0].slope && rescale.intercept == raw.rescale[0].intercept; });
    if (oneRescale)
        raw.rescale.resize(1);
    return raw;
}
} // namespace

RawVolume ReadDicomFolder(const std::string& folder, const std::string& wanted)
{
    const std::vector<DicomSeries> all = SeriesOf(HeadersOf(folder));
    return ReadFiles(Choose(folder, all, wanted).files);
}

RawVolume ReadDicomFile(const std::string& path)
{
    std::optional<DicomHeader> header = ReadDicomHeader(path);
    if (!header)
        throw Error(ErrorKind::Input, FileNameOf(path) + ": holds no DICOM image");
    return ReadFiles({std::move(*header)});
}

std::vector<Series> ListSeries(const std::string& folder)
{
    std::vector<Series> list;
    for (const DicomSeries& series : SeriesOf(HeadersOf(folder)))
        list.push_back(series.summary);
    return list;
}
} // namespace corvane::host
