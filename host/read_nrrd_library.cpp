#include "read_nrrd_library.h"

#include "error.h"
#include "label_file.h"
#include "read_grid.h"
#include "read_text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <numeric>
#include <teem/nrrd.h>

namespace corvane::host
{
namespace
{
struct FreeNrrd
{
    void operator()(Nrrd* nrrd) const { nrrdNuke(nrrd); }
    void operator()(NrrdIoState* state) const { nrrdIoStateNix(state); }
};
using NrrdPointer = std::unique_ptr<Nrrd, FreeNrrd>;
using StatePointer = std::unique_ptr<NrrdIoState, FreeNrrd>;

[[noreturn]] void Fail(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(path) + ": " + what);
}

// The library's own explanation: its innermost line, which names the cause.
[[noreturn]] void FailWithLibraryMessage(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> text(biffGetDone(NRRD), &std::free);
    std::string lines = Trimmed(text ? text.get() : "");
    const size_t lastLine = lines.rfind('\n');
    if (lastLine != std::string::npos)
        lines = lines.substr(lastLine + 1);
    Fail(path, "cannot be read as NRRD: " + lines);
}

NrrdPointer Load(const std::string& path, bool headerOnly, NrrdIoState* state)
{
    NrrdPointer nrrd(nrrdNew());
    state->skipData = headerOnly;
    if (nrrdLoad(nrrd.get(), path.c_str(), state))
        FailWithLibraryMessage(path);
    return nrrd;
}

// Bytes of all files that hold voxels.
uint64_t DataFileBytes(const std::string& path, const NrrdIoState& state)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (!state.dataFNArr || state.dataFNArr->len == 0)
        return fs::file_size(path, error);
    uint64_t bytes = 0;
    for (unsigned int i = 0; i < state.dataFNArr->len; ++i)
    {
        const uint64_t size = fs::file_size(fs::path(path).parent_path() / state.dataFN[i], error);
        if (error)
            Fail(path, std::string("its voxels should be in ") + state.dataFN[i] + ", which cannot be read");
        bytes += size;
    }
    return bytes;
}

// A header that promises more than its files hold is found before memory is taken.
void CheckDataFits(const std::string& path, const Nrrd& header, const NrrdIoState& state)
{
    constexpr uint64_t kMaxSamples = uint64_t(1) << 36;
    constexpr uint64_t kMaxDeflateRatio = 1032; // zlib's documented bound
    uint64_t samples = 1;
    for (unsigned int axis = 0; axis < header.dim; ++axis)
    {
        if (header.axis[axis].size == 0 || header.axis[axis].size > kMaxSamples / samples)
            Fail(path, "the sizes in the header are 0 or too large");
        samples *= header.axis[axis].size;
    }
    const uint64_t bytes = samples * nrrdTypeSize[header.type];
    uint64_t needed = bytes;
    if (state.encoding == nrrdEncodingHex)
        needed = 2 * bytes;
    else if (state.encoding == nrrdEncodingAscii)
        needed = 2 * samples - 1;
    else if (state.encoding == nrrdEncodingGzip)
        needed = bytes / kMaxDeflateRatio;
    else if (state.encoding != nrrdEncodingRaw)
        Fail(path, std::string("the encoding ") + state.encoding->name + " is not read; save it as raw or gzip");
    const uint64_t available = DataFileBytes(path, state);
    if (available < needed)
        Fail(path, "the header asks for " + std::to_string(bytes) + " bytes of voxels, but only " +
                       std::to_string(available) + " bytes are there; the file is cut off or its header is wrong");
}

bool IsColour(int kind)
{
    return kind == nrrdKindRGBColor || kind == nrrdKindHSVColor || kind == nrrdKindXYZColor ||
           kind == nrrdKindRGBAColor || kind == nrrdKind3Color || kind == nrrdKind4Color;
}

bool HasDirection(const Nrrd& nrrd, unsigned int axis)
{
    return nrrdSpaceVecExists(nrrd.spaceDim, nrrd.axis[axis].spaceDirection);
}

// True for an axis along which the volume extends in space.
bool IsSpatial(const Nrrd& nrrd, unsigned int axis)
{
    if (nrrd.spaceDim > 0)
        return HasDirection(nrrd, axis);
    const int kind = nrrd.axis[axis].kind;
    return kind == nrrdKindUnknown || kind == nrrdKindDomain || kind == nrrdKindSpace;
}

// The three axes of the volume. Of data with more, those are dropped that are not spatial, then the last.
//   warnings  for axes along which something is left out
std::array<unsigned int, 3> AxesOf(const std::string& path, const Nrrd& nrrd, std::vector<std::string>& warnings)
{
    std::vector<unsigned int> axes(nrrd.dim);
    std::iota(axes.begin(), axes.end(), 0u);
    const auto isSpatial = [&](unsigned int axis) { return IsSpatial(nrrd, axis); };
    while (axes.size() > 3)
    {
        auto dropped = std::find_if_not(axes.begin(), axes.end(), isSpatial);
        if (dropped == axes.end())
            --dropped;
        if (IsColour(nrrd.axis[*dropped].kind))
            Fail(path, "colour voxels cannot be shown; convert them to one number per voxel");
        if (nrrd.axis[*dropped].size > 1)
            warnings.push_back("the file holds " + std::to_string(nrrd.axis[*dropped].size) + " values along axis " +
                               std::to_string(*dropped + 1) + "; only the first is read");
        axes.erase(dropped);
    }
    if (axes.size() < 3 || !std::all_of(axes.begin(), axes.end(), isSpatial))
        Fail(path, "holds no volume: three axes in space are needed");
    return {axes[0], axes[1], axes[2]};
}

SampleType TypeOf(const std::string& path, int type)
{
    switch (type)
    {
    case nrrdTypeChar:
        return SampleType::Int8;
    case nrrdTypeUChar:
        return SampleType::UInt8;
    case nrrdTypeShort:
        return SampleType::Int16;
    case nrrdTypeUShort:
        return SampleType::UInt16;
    case nrrdTypeInt:
        return SampleType::Int32;
    case nrrdTypeUInt:
        return SampleType::UInt32;
    case nrrdTypeLLong:
        return SampleType::Int64;
    case nrrdTypeULLong:
        return SampleType::UInt64;
    case nrrdTypeFloat:
        return SampleType::Float32;
    case nrrdTypeDouble:
        return SampleType::Float64;
    default:
        Fail(path, "blocks of bytes are no voxels that can be shown");
    }
}

// What turns the file's space into ours: LPS.
Vec3 SignsOf(int space, std::vector<std::string>& warnings)
{
    switch (space)
    {
    case nrrdSpaceLeftPosteriorSuperior:
        return {1, 1, 1};
    case nrrdSpaceRightAnteriorSuperior:
        return {-1, -1, 1};
    case nrrdSpaceLeftAnteriorSuperior:
        return {1, -1, 1};
    default:
        warnings.push_back(std::string("the file does not say how its space lies in the patient") +
                           (space == nrrdSpaceUnknown ? "" : std::string(" (") + airEnumStr(nrrdSpace, space) + ")") +
                           "; taken as left, posterior, superior");
        return {1, 1, 1};
    }
}

double MillimetresPerUnit(const char* unit, std::vector<std::string>& warnings)
{
    const std::string name = unit ? Trimmed(unit) : "";
    if (name.empty() || name == "mm" || name == "millimeter" || name == "millimeters")
        return 1;
    if (name == "m")
        return 1000;
    if (name == "cm")
        return 10;
    if (name == "um" || name == "\xc2\xb5m" || name == "micron" || name == "microns")
        return 0.001;
    warnings.push_back("unknown unit of length '" + name + "'; taken as mm");
    return 1;
}

Grid GridOf(const std::string& path, const Nrrd& nrrd, const std::array<unsigned int, 3>& axes,
            std::vector<std::string>& warnings)
{
    std::array<int64_t, 3> sizes;
    for (unsigned int n = 0; n < 3; ++n)
        sizes[n] = int64_t(nrrd.axis[axes[n]].size);
    const Vec3 signs = SignsOf(nrrd.space, warnings);

    std::array<Vec3, 3> steps;
    Vec3 origin;
    if (nrrd.spaceDim == 3 &&
        std::all_of(axes.begin(), axes.end(), [&](auto axis) { return HasDirection(nrrd, axis); }))
    {
        const Vec3 units = {MillimetresPerUnit(nrrd.spaceUnits[0], warnings),
                            MillimetresPerUnit(nrrd.spaceUnits[1], warnings),
                            MillimetresPerUnit(nrrd.spaceUnits[2], warnings)};
        const auto inSpace = [&](const double* v) {
            return Vec3{signs.x * units.x * v[0], signs.y * units.y * v[1], signs.z * units.z * v[2]};
        };
        for (unsigned int n = 0; n < 3; ++n)
            steps[n] = inSpace(nrrd.axis[axes[n]].spaceDirection);
        if (nrrdSpaceVecExists(3, nrrd.spaceOrigin))
            origin = inSpace(nrrd.spaceOrigin);
        else
            warnings.push_back("the file gives no origin; the first voxel is put at (0, 0, 0)");
        return GridFromSteps(FileNameOf(path), sizes, origin, steps, warnings);
    }
    if (nrrd.spaceDim != 0)
        Fail(path, "space directions are missing for one of the first three axes, or their space is not 3-dimensional");

    warnings.push_back("the file gives no directions; the axes are taken along patient x, y and z from (0, 0, 0)");
    double spacing[3];
    for (unsigned int n = 0; n < 3; ++n)
    {
        const NrrdAxisInfo& axis = nrrd.axis[axes[n]];
        spacing[n] = axis.spacing * MillimetresPerUnit(axis.units, warnings);
        if (!std::isfinite(spacing[n]))
        {
            warnings.push_back("the file gives no spacing of axis " + std::to_string(axes[n] + 1) + "; taken as 1 mm");
            spacing[n] = 1;
        }
    }
    steps = {Vec3{signs.x * spacing[0], 0, 0}, Vec3{0, signs.y * spacing[1], 0}, Vec3{0, 0, signs.z * spacing[2]}};
    return GridFromSteps(FileNameOf(path), sizes, origin, steps, warnings);
}
} // namespace

RawVolume ReadNrrdHeader(const std::string& path)
{
    const StatePointer state(nrrdIoStateNew());
    const NrrdPointer nrrd = Load(path, true, state.get());
    RawVolume raw;
    raw.type = TypeOf(path, nrrd->type);
    CheckDataFits(path, *nrrd, *state);
    const std::unique_ptr<char, decltype(&std::free)> mark(nrrdKeyValueGet(nrrd.get(), kCutMarkName), &std::free);
    raw.marksCuts = mark && Trimmed(mark.get()) == kCutMark;
    raw.grid = GridOf(path, *nrrd, AxesOf(path, *nrrd, raw.warnings), raw.warnings);
    return raw;
}

void ReadNrrdVoxels(const std::string& path, std::span<char> voxels)
{
    const StatePointer state(nrrdIoStateNew());
    NrrdPointer nrrd = Load(path, false, state.get());
    std::vector<std::string> warnings; // known from the header
    const std::array<unsigned int, 3> axes = AxesOf(path, *nrrd, warnings);
    for (unsigned int axis = nrrd->dim; axis-- > 0;)
    {
        if (std::find(axes.begin(), axes.end(), axis) != axes.end())
            continue;
        NrrdPointer slice(nrrdNew());
        if (nrrdSlice(slice.get(), nrrd.get(), axis, 0))
            FailWithLibraryMessage(path);
        nrrd = std::move(slice);
    }
    if (nrrdElementNumber(nrrd.get()) * nrrdElementSize(nrrd.get()) != voxels.size())
        Fail(path, "has changed while it was read");
    std::memcpy(voxels.data(), nrrd->data, voxels.size());
}
} // namespace corvane::host
