#include "film_files.h"

#include <algorithm>
#include <filesystem>

#include "host/error.h"
#include "host/write_png.h"

namespace corvane::app
{
namespace
{
namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;

constexpr char kField[] = "{index}";

// A picture's number with zeros in front, so that names sort.
std::string IndexText(int index, int count)
{
    const std::string text = std::to_string(index);
    return std::string(std::max<size_t>(3, std::to_string(count).size()) - text.size(), '0') + text;
}

void CheckName(const std::string& output, int count)
{
    const std::string ending = fs::path(output).extension().string();
    for (const char* other :
         {".jpg", ".jpeg", ".bmp", ".tif", ".tiff", ".gif", ".mp4", ".mkv", ".webm", ".nrrd", ".dcm"})
        if (ending == other)
            throw Error(ErrorKind::Usage, "--output ends in " + ending +
                                              " but pictures are PNG files; choose a name "
                                              "that ends in .png, or --video for films");
    if (output == "-" && count > 1)
        throw Error(ErrorKind::Usage, "standard output takes one picture, not " + std::to_string(count));
}

// A name for every picture, and the folder to be made for them; nothing when no picture is wanted.
OutputNames NamesOf(const std::string& output, const std::string& stem, int count)
{
    OutputNames names;
    if (output.empty())
        return names;
    std::error_code ignored;
    const bool isFolder = fs::is_directory(output, ignored) || output.back() == '/';
    if (!isFolder)
        CheckName(output, count);
    std::string pattern = output;
    if (output.find(kField) == std::string::npos && output != "-" && (isFolder || count > 1))
    {
        if (!isFolder && fs::path(output).extension() == ".png")
            throw Error(ErrorKind::Usage, std::to_string(count) +
                                              " pictures need more than one name; give a folder, or put {index} into "
                                              "--output");
        if (!fs::is_directory(output, ignored))
            names.newFolder = output;
        pattern = (fs::path(output) / (stem + (count > 1 ? "_{index}" : "") + ".png")).string();
    }
    for (int n = 1; n <= count; ++n)
    {
        names.files.push_back(pattern);
        for (size_t at = 0; (at = names.files.back().find(kField, at)) != std::string::npos;)
            names.files.back().replace(at, sizeof kField - 1, IndexText(n, count));
    }
    return names;
}
} // namespace

FilmFiles::FilmFiles(const RenderingOptions& options, const std::string& stem, int count)
    : pictures_(NamesOf(options.output, stem, count), options.force), count_(options.output.empty() ? 0 : count)
{
    if (!options.video.empty())
        video_ = std::make_unique<Video>(
            options.video, CountOf(options.framesPerSecond, "--fps takes a number of pictures", 1, 120), options.force);
}

std::string FilmFiles::Add(const host::Picture& picture)
{
    if (video_)
        video_->Add(picture);
    if (next_ == count_)
        return {};
    const size_t number = size_t(next_++);
    pictures_.Write(number, host::PngOf(picture));
    return pictures_.Name(number);
}

void FilmFiles::Finish()
{
    if (video_)
        video_->Finish();
}
} // namespace corvane::app
