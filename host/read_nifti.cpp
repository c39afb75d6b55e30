#include "read_nifti.h"

#include "error.h"
#include "label_file.h"
#include "read_bytes.h"
#include "read_grid.h"
#include "read_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <nifti2_io.h>

namespace corvane::host
{
namespace
{
static_assert(sizeof(nifti_1_header) == 348 && sizeof(nifti_2_header) == 540);

// What both versions of the header say, in this machine's byte order. Read here rather than by the reference library,
// which ends the program on some damaged headers.
struct Header
{
    bool turned = false;  // the file's byte order is the other one
    bool onePart = false; // the voxels are in the same file
    uint64_t headerBytes = 0;
    int64_t sizes[7] = {};
    int datatype = 0, units = 0;
    double pixdim[8] = {};
    double slope = 0, intercept = 0, voxelOffset = 0;
    int qformCode = 0, sformCode = 0;
    double quaternion[3] = {}, quaternionOffset[3] = {};
    double sform[3][4] = {};
    bool marksCuts = false;
};

[[noreturn]] void Fail(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(path) + ": " + what);
}

// The header's size field in this machine's byte order, or the other.
bool HasHeaderSize(const std::vector<char>& bytes, int32_t size)
{
    if (bytes.size() < size_t(size))
        return false;
    int32_t field;
    std::memcpy(&field, bytes.data(), sizeof field);
    return field == size || int32_t(__builtin_bswap32(uint32_t(field))) == size;
}

bool HasMagic(const std::vector<char>& bytes, size_t offset, char version)
{
    const char* magic = bytes.data() + offset;
    return magic[0] == 'n' && (magic[1] == '+' || magic[1] == 'i') && magic[2] == version;
}

bool IsNifti1(const std::vector<char>& bytes) { return HasHeaderSize(bytes, 348) && HasMagic(bytes, 344, '1'); }
bool IsNifti2(const std::vector<char>& bytes) { return HasHeaderSize(bytes, 540) && HasMagic(bytes, 4, '2'); }

template <typename T>
T Turned(T value)
{
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    std::reverse(bytes, bytes + sizeof value);
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// The fields have the same names in both versions, in other places and types.
template <typename FileHeader>
Header TakeFields(const std::vector<char>& bytes, const std::string& path)
{
    FileHeader file;
    std::memcpy(&file, bytes.data(), sizeof file);
    Header header;
    header.turned = file.sizeof_hdr != int32_t(sizeof file);
    const auto value = [&](auto field) { return header.turned ? Turned(field) : field; };

    const int64_t dimensions = value(file.dim[0]);
    if (dimensions < 1 || dimensions > 7)
        Fail(path, "the NIfTI header is damaged; it says " + std::to_string(dimensions) + " dimensions");
    for (int64_t i = 0; i < 7; ++i)
        header.sizes[i] = i < dimensions ? value(file.dim[i + 1]) : 1;
    for (int i = 0; i < 8; ++i)
        header.pixdim[i] = value(file.pixdim[i]);
    header.headerBytes = sizeof file;
    header.onePart = file.magic[1] == '+';
    header.datatype = value(file.datatype);
    header.units = value(file.xyzt_units) & 7; // of length; the other bits are about time
    header.slope = value(file.scl_slope);
    header.intercept = value(file.scl_inter);
    header.voxelOffset = double(value(file.vox_offset));
    header.qformCode = value(file.qform_code);
    header.sformCode = value(file.sform_code);
    header.quaternion[0] = value(file.quatern_b);
    header.quaternion[1] = value(file.quatern_c);
    header.quaternion[2] = value(file.quatern_d);
    header.quaternionOffset[0] = value(file.qoffset_x);
    header.quaternionOffset[1] = value(file.qoffset_y);
    header.quaternionOffset[2] = value(file.qoffset_z);
    for (int i = 0; i < 4; ++i)
    {
        header.sform[0][i] = value(file.srow_x[i]);
        header.sform[1][i] = value(file.srow_y[i]);
        header.sform[2][i] = value(file.srow_z[i]);
    }
    header.marksCuts = Trimmed({file.descrip, sizeof file.descrip}) == kCutMark;
    return header;
}

Header ReadHeader(const std::string& path, Compression compression)
{
    std::vector<char> bytes(sizeof(nifti_2_header));
    bytes.resize(ByteStream(path, 0, compression).ReadSome(bytes.data(), bytes.size()));
    return IsNifti1(bytes) ? TakeFields<nifti_1_header>(bytes, path) : TakeFields<nifti_2_header>(bytes, path);
}

// The first byte of the voxels.
uint64_t VoxelOffset(const std::string& path, const Header& header)
{
    constexpr double kMaxOffset = 1e15;
    if (!(header.voxelOffset >= 0 && header.voxelOffset <= kMaxOffset))
        Fail(path, "the header says that the voxels begin at byte " + Number(header.voxelOffset));
    // Some writers leave the offset 0 and mean right behind the header and its four bytes about extensions.
    return header.onePart ? std::max(uint64_t(header.voxelOffset), header.headerBytes + 4)
                          : uint64_t(header.voxelOffset);
}

SampleType TypeOf(const std::string& path, int datatype)
{
    switch (datatype)
    {
    case NIFTI_TYPE_UINT8:
        return SampleType::UInt8;
    case NIFTI_TYPE_INT8:
        return SampleType::Int8;
    case NIFTI_TYPE_UINT16:
        return SampleType::UInt16;
    case NIFTI_TYPE_INT16:
        return SampleType::Int16;
    case NIFTI_TYPE_UINT32:
        return SampleType::UInt32;
    case NIFTI_TYPE_INT32:
        return SampleType::Int32;
    case NIFTI_TYPE_UINT64:
        return SampleType::UInt64;
    case NIFTI_TYPE_INT64:
        return SampleType::Int64;
    case NIFTI_TYPE_FLOAT32:
        return SampleType::Float32;
    case NIFTI_TYPE_FLOAT64:
        return SampleType::Float64;
    default:
        Fail(path, std::string("voxels of type ") + nifti_datatype_to_string(datatype) +
                       " cannot be shown; convert them to one number per voxel");
    }
}

double MillimetresPerUnit(int units, std::vector<std::string>& warnings)
{
    switch (units)
    {
    case NIFTI_UNITS_METER:
        return 1000;
    case NIFTI_UNITS_MM:
        return 1;
    case NIFTI_UNITS_MICRON:
        return 0.001;
    case NIFTI_UNITS_UNKNOWN:
        return 1; // left out by many writers that mean mm
    default:
        warnings.push_back("unknown unit of length " + std::to_string(units) + "; taken as mm");
        return 1;
    }
}

Grid GridOf(const std::string& path, const Header& header, std::vector<std::string>& warnings)
{
    const double unit = MillimetresPerUnit(header.units, warnings);
    const std::array<int64_t, 3> sizes = {header.sizes[0], header.sizes[1], header.sizes[2]};
    const Vec3 spacing = {std::abs(header.pixdim[1]), std::abs(header.pixdim[2]), std::abs(header.pixdim[3])};
    // The file's x grows to the right and its y to anterior; ours to the left and to posterior.
    if (header.sformCode <= 0 && header.qformCode <= 0)
    {
        warnings.push_back("the file does not say where the volume lies in the patient (no sform or qform); taken as x "
                           "growing to the right, y to anterior, z to superior");
        return GridFromSteps(
            FileNameOf(path), sizes, {},
            {Vec3{-unit * spacing.x, 0, 0}, Vec3{0, -unit * spacing.y, 0}, Vec3{0, 0, unit * spacing.z}}, warnings);
    }
    nifti_dmat44 matrix;
    if (header.sformCode > 0)
        std::memcpy(matrix.m, header.sform, sizeof header.sform);
    else
        matrix =
            nifti_quatern_to_dmat44(header.quaternion[0], header.quaternion[1], header.quaternion[2],
                                    header.quaternionOffset[0], header.quaternionOffset[1], header.quaternionOffset[2],
                                    spacing.x, spacing.y, spacing.z, header.pixdim[0] < 0 ? -1 : 1);
    const auto column = [&](int c) {
        return Vec3{-unit * matrix.m[0][c], -unit * matrix.m[1][c], unit * matrix.m[2][c]};
    };
    return GridFromSteps(FileNameOf(path), sizes, column(3), {column(0), column(1), column(2)}, warnings);
}

// The file beside a header of a pair.
std::string ImageOfPair(const std::string& path)
{
    std::filesystem::path image(path);
    if (image.extension() == ".gz")
        image.replace_extension();
    image.replace_extension(".img");
    if (std::filesystem::exists(image))
        return image.string();
    if (std::filesystem::exists(image.string() + ".gz"))
        return image.string() + ".gz";
    Fail(path, "its voxels should be in " + image.filename().string() + ", which is not there");
}
} // namespace

bool IsNifti(const std::vector<char>& firstBytes) { return IsNifti1(firstBytes) || IsNifti2(firstBytes); }

RawVolume ReadNifti(const std::string& path)
{
    const Compression compression = IsGzip(path) ? Compression::Deflate : Compression::None;
    const Header header = ReadHeader(path, compression);

    RawVolume raw;
    raw.description = FileNameOf(path);
    raw.marksCuts = header.marksCuts;
    raw.type = TypeOf(path, header.datatype);
    raw.grid = GridOf(path, header, raw.warnings);
    if (header.slope != 0 && std::isfinite(header.slope) && std::isfinite(header.intercept))
        raw.rescale = {{header.slope, header.intercept}};
    const bool several = std::any_of(header.sizes + 3, header.sizes + 7, [](int64_t size) { return size > 1; });
    if (several)
        raw.warnings.push_back("the file holds several volumes (" + std::to_string(header.sizes[3]) + " x " +
                               std::to_string(header.sizes[4]) + "); only the first is read");

    const std::string dataPath = header.onePart ? path : ImageOfPair(path);
    const Compression dataCompression = IsGzip(dataPath) ? Compression::Deflate : Compression::None;
    const uint64_t offset = VoxelOffset(path, header);
    CheckFileHolds(dataPath, 0, offset + raw.ByteCount(), dataCompression);
    raw.Allocate(FileNameOf(path));
    ByteStream stream(dataPath, 0, dataCompression);
    stream.Skip(offset);
    stream.Read(raw.memory.data(), raw.ByteCount());
    if (!several)
        stream.CheckEnd();
    if (header.turned)
        SwapBytes(raw.memory.data(), raw.grid.VoxelCount(), BytesPerSample(raw.type));
    return raw;
}
} // namespace corvane::host
