#include "read_meta_image.h"

#include "error.h"
#include "read_bytes.h"
#include "read_grid.h"
#include "read_text.h"

#include <bit>
#include <filesystem>
#include <fstream>
#include <map>

namespace corvane::host
{
namespace
{
constexpr int kMaxHeaderLines = 1000;
constexpr size_t kMaxLineLength = 1 << 16;
constexpr double kMaxAxisLengthError = 1e-3; // directions are unit vectors, rounded

[[noreturn]] void Fail(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(path) + ": " + what);
}

struct Header
{
    std::string path;
    std::map<std::string, std::string> values;
    uint64_t endOfHeader = 0; // where voxels in the same file begin

    bool Has(const std::string& key) const { return values.count(key) > 0; }
    std::string Text(const std::string& key) const { return Has(key) ? values.at(key) : ""; }
    bool IsTrue(const std::string& key) const
    {
        const std::string text = Text(key);
        return !text.empty() && (text[0] == 'T' || text[0] == 't' || text[0] == '1');
    }

    // Exactly `count` numbers.
    std::vector<double> Numbers(const std::string& key, size_t count) const
    {
        const auto numbers = ParseNumbers(Text(key), ' ');
        if (!numbers || numbers->size() != count)
            Fail(path, "the header says " + key + " = " + Text(key) + ", which should be " + std::to_string(count) +
                           " numbers");
        return *numbers;
    }

    std::string FirstOf(std::initializer_list<const char*> keys) const
    {
        for (const char* key : keys)
            if (Has(key))
                return key;
        return "";
    }
};

// A line without its end; nothing at the end of the file or for a line that is no text.
std::optional<std::string> ReadLine(std::ifstream& file)
{
    std::string line;
    for (int character = file.get(); character != '\n'; character = file.get())
    {
        if (character == EOF || character == 0 || line.size() >= kMaxLineLength)
            return std::nullopt;
        line += char(character);
    }
    return line;
}

// Key and value of a header line; an empty key when it is none.
std::pair<std::string, std::string> SplitLine(const std::string& line)
{
    const size_t separator = line.find_first_of("=:");
    if (separator == std::string::npos)
        return {};
    return {Trimmed(line.substr(0, separator)), Trimmed(line.substr(separator + 1))};
}

Header ReadHeader(const std::string& path)
{
    Header header;
    header.path = path;
    std::ifstream file(path, std::ios::binary);
    for (int lineCount = 0; lineCount < kMaxHeaderLines; ++lineCount)
    {
        const std::optional<std::string> line = ReadLine(file);
        if (!line)
            break;
        const auto [key, value] = SplitLine(*line);
        if (key.empty() && Trimmed(*line).empty())
            continue;
        if (key.empty())
            break;
        header.values[key] = value;
        if (key == "ElementDataFile") // the last line by definition
        {
            header.endOfHeader = uint64_t(file.tellg());
            return header;
        }
    }
    Fail(path, "the header ends before it names its voxels (ElementDataFile)");
}

SampleType TypeOf(const Header& header)
{
    static const std::map<std::string, SampleType> kTypes = {
        {"MET_CHAR", SampleType::Int8},       {"MET_UCHAR", SampleType::UInt8},
        {"MET_SHORT", SampleType::Int16},     {"MET_USHORT", SampleType::UInt16},
        {"MET_INT", SampleType::Int32},       {"MET_UINT", SampleType::UInt32},
        {"MET_LONG", SampleType::Int32},      {"MET_ULONG", SampleType::UInt32},
        {"MET_LONG_LONG", SampleType::Int64}, {"MET_ULONG_LONG", SampleType::UInt64},
        {"MET_FLOAT", SampleType::Float32},   {"MET_DOUBLE", SampleType::Float64},
    };
    const auto type = kTypes.find(header.Text("ElementType"));
    if (type == kTypes.end())
        Fail(header.path, "voxels of type '" + header.Text("ElementType") + "' cannot be shown");
    if (header.Has("ElementNumberOfChannels") && header.Numbers("ElementNumberOfChannels", 1)[0] != 1)
        Fail(header.path, "voxels of " + header.Text("ElementNumberOfChannels") +
                              " values each cannot be shown; convert them to one number per voxel");
    return type->second;
}

// Sizes along all axes of the file, three or more.
std::vector<int64_t> SizesOf(const Header& header)
{
    constexpr double kMaxSize = 1e15; // exact as a double
    const double dimensions = header.Numbers("NDims", 1)[0];
    if (dimensions != 3 && dimensions != 4)
        Fail(header.path, "the header says NDims = " + header.Text("NDims") + "; a volume has 3, or 4 with time");
    std::vector<int64_t> sizes;
    for (const double size : header.Numbers("DimSize", size_t(dimensions)))
    {
        if (!(size >= 1 && size <= kMaxSize) || size != std::floor(size))
            Fail(header.path, "the header says DimSize = " + header.Text("DimSize") + "; sizes are whole and above 0");
        sizes.push_back(int64_t(size));
    }
    return sizes;
}

// Each direction is one axis of the volume: the matrix is written axis by axis.
std::array<Vec3, 3> DirectionsOf(const Header& header, size_t dimensions, std::vector<std::string>& warnings)
{
    const std::string key = header.FirstOf({"TransformMatrix", "Rotation", "Orientation"});
    if (key.empty())
    {
        warnings.push_back("the file gives no directions; the axes are taken along patient x, y and z");
        return {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}};
    }
    const std::vector<double> matrix = header.Numbers(key, dimensions * dimensions);
    std::array<Vec3, 3> directions;
    for (size_t axis = 0; axis < 3; ++axis)
    {
        const double* row = &matrix[axis * dimensions];
        directions[axis] = {row[0], row[1], row[2]};
        const double length = Length(directions[axis]);
        if (std::abs(length - 1) > kMaxAxisLengthError)
            Fail(header.path, "the direction of axis " + std::to_string(axis + 1) + " in " + key + " has length " +
                                  Number(length) + ", not 1");
        directions[axis] = Unit(directions[axis]);
    }
    return directions;
}

Grid GridOf(const Header& header, const std::vector<int64_t>& sizes, std::vector<std::string>& warnings)
{
    const std::array<Vec3, 3> directions = DirectionsOf(header, sizes.size(), warnings);

    std::vector<double> spacing(sizes.size(), 1.0);
    const std::string spacingKey = header.FirstOf({"ElementSpacing", "ElementSize"});
    if (spacingKey.empty())
        warnings.push_back("the file gives no spacing; taken as 1 mm");
    else
        spacing = header.Numbers(spacingKey, sizes.size());
    for (size_t axis = 0; axis < 3; ++axis)
        if (!(spacing[axis] > 0))
            Fail(header.path,
                 "the header says " + spacingKey + " = " + header.Text(spacingKey) + "; each spacing must be above 0");

    Vec3 origin;
    const std::string originKey = header.FirstOf({"Offset", "Position", "Origin"});
    if (originKey.empty())
        warnings.push_back("the file gives no origin; the first voxel is put at (0, 0, 0)");
    else
    {
        const std::vector<double> numbers = header.Numbers(originKey, sizes.size());
        origin = {numbers[0], numbers[1], numbers[2]};
    }
    return GridFromSteps(FileNameOf(header.path), {sizes[0], sizes[1], sizes[2]}, origin,
                         {spacing[0] * directions[0], spacing[1] * directions[1], spacing[2] * directions[2]},
                         warnings);
}

// Where the voxels are.
struct DataPlace
{
    std::string path;
    uint64_t offset = 0;
};

// byteCount: of all volumes of the file.
DataPlace PlaceOf(const Header& header, double byteCount, Compression compression)
{
    namespace fs = std::filesystem;
    const std::string file = header.Text("ElementDataFile");
    DataPlace place = {header.path, header.endOfHeader};
    if (file != "LOCAL" && file != "Local" && file != "local")
    {
        if (file.empty() || file.starts_with("LIST") || file.find('%') != std::string::npos)
            Fail(header.path, "its voxels are spread over several files; join them into one file first");
        place = {(fs::path(header.path).parent_path() / file).string(), 0};
        if (!fs::is_regular_file(place.path))
            Fail(header.path, "its voxels should be in " + file + ", which is not there");
    }
    if (header.Has("HeaderSize"))
    {
        const double skip = header.Numbers("HeaderSize", 1)[0];
        const uint64_t fileSize = fs::file_size(place.path);
        if (skip == -1 && compression == Compression::None && double(fileSize) >= byteCount)
            place.offset = fileSize - uint64_t(byteCount); // the voxels are the end of the file
        else if (skip > 0 && skip <= double(fileSize))
            place.offset = uint64_t(skip);
        else if (skip != 0)
            Fail(header.path, "the header says HeaderSize = " + header.Text("HeaderSize") +
                                  ", which does not fit the file of " + std::to_string(fileSize) + " bytes");
    }
    return place;
}
} // namespace

bool IsMetaImage(const std::vector<char>& firstBytes)
{
    const std::string text(firstBytes.begin(), firstBytes.end());
    const std::string key = SplitLine(text.substr(0, text.find('\n'))).first;
    return key == "ObjectType" || key == "NDims" || key == "Comment" || key == "ObjectSubType";
}

RawVolume ReadMetaImage(const std::string& path)
{
    const Header header = ReadHeader(path);
    if (header.Has("ObjectType") && header.Text("ObjectType") != "Image")
        Fail(path, "holds '" + header.Text("ObjectType") + "', not an image");
    if (header.Has("BinaryData") && !header.IsTrue("BinaryData"))
        Fail(path, "holds its voxels as text; save them as binary");

    RawVolume raw;
    raw.description = FileNameOf(path);
    raw.type = TypeOf(header);
    const std::vector<int64_t> sizes = SizesOf(header);
    raw.grid = GridOf(header, sizes, raw.warnings);
    const double volumeCount = sizes.size() > 3 ? double(sizes[3]) : 1;
    const bool several = volumeCount > 1;
    if (several)
        raw.warnings.push_back("the file holds " + std::to_string(sizes[3]) + " volumes; only the first is read");

    const Compression compression = header.IsTrue("CompressedData") ? Compression::Deflate : Compression::None;
    const DataPlace place = PlaceOf(header, double(raw.ByteCount()) * volumeCount, compression);
    CheckFileHolds(place.path, place.offset, raw.ByteCount(), compression);
    raw.Allocate(FileNameOf(path));
    ByteStream stream(place.path, place.offset, compression);
    stream.Read(raw.memory.data(), raw.ByteCount());
    if (!several)
        stream.CheckEnd();
    const bool fileIsBig = header.IsTrue(header.FirstOf({"BinaryDataByteOrderMSB", "ElementByteOrderMSB"}));
    if (fileIsBig != (std::endian::native == std::endian::big))
        SwapBytes(raw.memory.data(), raw.grid.VoxelCount(), BytesPerSample(raw.type));
    return raw;
}
} // namespace corvane::host
