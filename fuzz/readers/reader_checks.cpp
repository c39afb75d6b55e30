#include "reader_checks.h"

#include "host/palette_presets.h"
#include "host/read_volume.h"
#include "host/window.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace corvane::fuzz
{
namespace
{
using host::Vec3;

constexpr size_t kLongestLine = 4096;

bool IsUnit(Vec3 v) { return std::abs(Length(v) - 1) < 1e-6; }

void RequireLines(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
        RequireLine(line);
}

void RequireWhole(const host::Volume& volume)
{
    const host::Grid& grid = volume.grid;
    Require(grid.sizeX > 0 && grid.sizeY > 0 && grid.sizeZ > 0, "a size below 1");
    Require(volume.voxels.size() == grid.VoxelCount(), "voxels that are not those of the grid");
    Require(grid.spacing.x > 0 && grid.spacing.y > 0 && grid.spacing.z > 0, "a spacing that is not above 0");
    Require(IsUnit(grid.rowDirection) && IsUnit(grid.columnDirection) && IsUnit(grid.sliceDirection),
            "a direction that is no unit vector");
    Require(std::isfinite(Length(grid.origin)), "an origin that is not finite");
    Require(std::isfinite(volume.valueSlope) && std::isfinite(volume.valueIntercept), "values that are not finite");
    Require(volume.valueSlope != 0, "stored values that mean nothing");
    RequireLine(volume.description);
    RequireLine(volume.modality);
    RequireLines(volume.warnings);
}
} // namespace

void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

void RequireLine(const std::string& text)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; };
    Require(std::none_of(text.begin(), text.end(), isControl), "a line with control characters");
    Require(text.size() <= kLongestLine, "a line longer than a page");
}

bool Succeeds(const std::function<void()>& read)
{
    try
    {
        read();
        return true;
    }
    catch (const host::Error& error)
    {
        Require(*error.what(), "an error without a message");
        RequireLine(error.what());
        return false;
    }
}

void PreparePalette(const host::TransferFunction& function, double valueSlope, double valueIntercept,
                    double smallestSpacing)
{
    host::Palette palette;
    if (!Succeeds([&] { palette = host::PaletteOf(function, valueSlope, valueIntercept, smallestSpacing); }))
        return;
    for (size_t n = 0; n < palette.points.size(); ++n)
    {
        Require(palette.points[n].opacity >= 0 && palette.points[n].opacity <= 1, "an opacity outside 0 to 1");
        Require(n == 0 || palette.points[n - 1].value < palette.points[n].value, "values that do not rise");
    }
    RequireLines(palette.warnings);
}

void ReadAndPrepare(const std::string& path)
{
    host::Volume volume;
    if (!Succeeds([&] { volume = host::ReadVolume(path); }))
        return;
    RequireWhole(volume);
    Succeeds([&] { host::ReadLabels(path, volume.grid); });
    if (volume.valueSlope == 1 && volume.valueIntercept == 0)
        return; // nothing that another volume does not have; and what follows takes time
    const host::Window window = host::ParseWindow("auto", volume);
    Require(window.width > 0 && std::isfinite(window.width) && std::isfinite(window.centre), "a window without width");
    const Vec3 spacing = volume.grid.spacing;
    PreparePalette(*host::PresetOf("default", volume), volume.valueSlope, volume.valueIntercept,
                   std::min({spacing.x, spacing.y, spacing.z}));
}

std::vector<std::string_view> FilesOfInput(const uint8_t* bytes, size_t count)
{
    constexpr std::string_view kSeparator = "\n---- next file\n";
    const std::string_view input(reinterpret_cast<const char*>(bytes), count);
    std::vector<std::string_view> files;
    for (size_t start = 0, end = 0; end != std::string_view::npos; start = end + kSeparator.size())
    {
        end = input.find(kSeparator, start);
        files.push_back(input.substr(start, end == std::string_view::npos ? end : end - start));
    }
    return files;
}
} // namespace corvane::fuzz
