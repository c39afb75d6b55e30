#include "read_nrrd.h"

#include "error.h"
#include "read_bytes.h"
#include "read_nrrd_library.h"
#include "read_text.h"
#include "run_apart.h"
#include "text_file.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <sstream>
#include <type_traits>

namespace corvane::host
{
namespace
{
constexpr size_t kMaxHeaderLine = 1 << 16;
constexpr int kMaxHeaderLines = 10000;

[[noreturn]] void Fail(const std::string& path, const std::string& what)
{
    throw Error(ErrorKind::Input, FileNameOf(path) + ": " + what);
}

// A line of a header; it ends as those of Unix, Windows or old Macs do. Nothing at the end of the file.
std::optional<std::string> ReadLine(std::ifstream& file)
{
    std::string line;
    int character = file.get();
    if (character == EOF)
        return std::nullopt;
    for (; character != EOF && character != '\n' && character != '\r' && line.size() < kMaxHeaderLine;
         character = file.get())
        line += char(character);
    if (character == '\r' && file.peek() == '\n')
        file.get();
    return line;
}

// The name of a header's field as it is compared: in small letters, whatever the file uses.
std::string FieldOf(const std::string& line)
{
    std::string field = Trimmed(line.substr(0, line.find(':')));
    for (char& c : field)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return field;
}

// What a header says about files of voxels is looked at before the library sees it: it builds numbered names with the
// header's own format text, and opens whatever is named.
void CheckDataFiles(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    bool inList = false; // of names, one on each line
    for (int lineCount = 0; lineCount < kMaxHeaderLines; ++lineCount)
    {
        const std::optional<std::string> line = ReadLine(file);
        if (!line || line->empty())
            return; // an empty line ends the header
        if (line->size() >= kMaxHeaderLine)
            Fail(path, "its header has a line that is too long");
        std::string name;
        if (inList)
            name = Trimmed(*line);
        else if (const std::string field = FieldOf(*line); field == "data file" || field == "datafile")
            name = Trimmed(line->substr(line->find(':') + 1));
        if (!inList && name.find('%') != std::string::npos)
            Fail(path, "its voxels are spread over numbered files; join them into one file first");
        if (!inList && (name.starts_with("LIST") || name.starts_with("SKIPLIST")))
        {
            inList = true;
            continue;
        }
        if (!name.empty())
            RefuseUnlessFile((folder / name).string());
        if (inList && name.find(' ') != std::string::npos) // a count of bytes may stand before the name
            RefuseUnlessFile((folder / Trimmed(name.substr(name.find(' ')))).string());
    }
    Fail(path, "its header has no end");
}

// What a header says, as it comes from another process.
struct PlainHeader
{
    Grid grid;
    SampleType type;
    bool marksCuts;
    char warnings[1 << 16]; // one on a line
};
static_assert(std::is_trivially_copyable_v<PlainHeader>);

PlainHeader PlainHeaderOf(const RawVolume& raw)
{
    PlainHeader header = {};
    header.grid = raw.grid;
    header.type = raw.type;
    header.marksCuts = raw.marksCuts;
    std::string lines;
    for (const std::string& warning : raw.warnings)
        lines += OneLine(warning) + '\n';
    lines.copy(header.warnings, sizeof(header.warnings) - 1);
    return header;
}

RawVolume VolumeOf(const std::string& path, const PlainHeader& header)
{
    RawVolume raw;
    raw.description = FileNameOf(path);
    raw.grid = header.grid;
    raw.type = header.type;
    raw.marksCuts = header.marksCuts;
    std::istringstream lines(header.warnings);
    for (std::string line; std::getline(lines, line);)
        raw.warnings.push_back(line);
    return raw;
}
} // namespace

// The library works in another process: damaged files make it read and write outside its memory.
RawVolume ReadNrrd(const std::string& path)
{
    CheckDataFiles(path);
    const auto readHeader = [&](char* bytes)
    {
        const PlainHeader header = PlainHeaderOf(ReadNrrdHeader(path));
        std::memcpy(bytes, &header, sizeof(header));
        return true;
    };
    const std::optional<FilledBytes> header = RunApart(sizeof(PlainHeader), readHeader);
    if (!header)
        Fail(path, "cannot be read as NRRD: the header is damaged");

    RawVolume raw = VolumeOf(path, *reinterpret_cast<const PlainHeader*>(header->Bytes().data()));
    const size_t byteCount = raw.ByteCount();
    CheckMemoryHolds(FileNameOf(path), byteCount);
    const auto readVoxels = [&](char* bytes)
    {
        ReadNrrdVoxels(path, {bytes, byteCount});
        return true;
    };
    const std::optional<FilledBytes> voxels = RunApart(byteCount, readVoxels);
    if (!voxels)
        Fail(path, "cannot be read as NRRD: the voxels are damaged");
    raw.Allocate(FileNameOf(path));
    std::memcpy(raw.memory.data(), voxels->Bytes().data(), byteCount);
    return raw;
}
} // namespace corvane::host
