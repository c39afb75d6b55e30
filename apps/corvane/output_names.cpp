#include "output_names.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "host/error.h"

namespace corvane::app
{
namespace
{
namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;

std::string EndingOf(const std::string& format) { return format == "nrrd" ? ".nrrd" : ".png"; }

// The number of a picture in its stack, with zeros in front so that names sort.
std::string IndexText(const PlannedPicture& picture)
{
    const std::string index = std::to_string(picture.index);
    const size_t width = std::max<size_t>(3, std::to_string(picture.count).size());
    return std::string(width - index.size(), '0') + index;
}

// Puts the picture's plane and number into a pattern.
std::string Filled(const std::string& pattern, const PlannedPicture& picture)
{
    std::string name;
    for (size_t at = 0; at < pattern.size(); ++at)
    {
        const size_t end = pattern[at] == '{' ? pattern.find('}', at) : std::string::npos;
        if (end == std::string::npos)
        {
            name += pattern[at];
            continue;
        }
        const std::string field = pattern.substr(at, end - at + 1);
        if (field != "{plane}" && field != "{index}")
            throw Error(ErrorKind::Usage, "--output knows {plane} and {index}, not " + field);
        name += field == "{plane}" ? picture.plane : IndexText(picture);
        at = end;
    }
    return name;
}
// A folder that can be made: its parent stands, and nothing else is called so.
std::string NewFolderOf(const std::string& output)
{
    std::string folder = output.back() == '/' ? output.substr(0, output.size() - 1) : output;
    const fs::path parent = fs::path(folder).parent_path();
    std::error_code ignored;
    if (fs::exists(folder, ignored))
        throw Error(ErrorKind::Output, folder + ": is a file; give a folder, or choose one plane with --plane");
    if (!parent.empty() && !fs::is_directory(parent, ignored))
        throw Error(ErrorKind::Output, folder + ": cannot be made because " + parent.string() + " does not exist");
    return folder;
}
} // namespace

std::string FormatOf(const std::string& format, const std::string& output)
{
    if (!format.empty() && format != "png" && format != "png16" && format != "nrrd")
        throw Error(ErrorKind::Usage, "--format is png, png16 or nrrd, not '" + format + "'");
    const std::string ending = fs::path(output).extension().string();
    std::string wanted = !format.empty() ? format : ending == ".nrrd" ? "nrrd" : "png";
    // A folder may be called anything; a file's ending must not lie.
    const bool isFile = (ending == ".png" || ending == ".nrrd" || ending == ".jpg" || ending == ".jpeg" ||
                         ending == ".nhdr" || ending == ".nii" || ending == ".dcm" || ending == ".tif");
    std::error_code ignored;
    if (isFile && ending != EndingOf(wanted) && !fs::is_directory(output, ignored))
        throw Error(ErrorKind::Usage, "--output ends in " + ending + " but the format is " + wanted +
                                          "; choose a name that ends in " + EndingOf(wanted) + ", or another --format");
    return wanted;
}

OutputNames NameOutputs(const std::string& output, const std::string& format,
                        const std::vector<PlannedPicture>& pictures)
{
    if (output.empty())
        throw Error(ErrorKind::Usage, "--output is empty; give a file, a folder or - for standard output");
    if (output == "-")
    {
        if (pictures.size() > 1)
            throw Error(ErrorKind::Usage, "standard output takes one picture, not " + std::to_string(pictures.size()) +
                                              "; choose one plane with --plane");
        return {{"-"}, ""};
    }

    OutputNames names;
    std::string pattern = output;
    std::error_code ignored;
    const bool hasField = output.find('{') != std::string::npos;
    const bool isFolder = fs::is_directory(output, ignored) || output.back() == '/';
    if (!hasField && (isFolder || pictures.size() > 1))
    {
        if (!isFolder && fs::path(output).extension() == EndingOf(format))
            throw Error(ErrorKind::Usage, std::to_string(pictures.size()) +
                                              " pictures need more than one name; give a folder, or put {plane} or "
                                              "{index} into --output, or choose one plane with --plane");
        if (!fs::is_directory(output, ignored))
            names.newFolder = NewFolderOf(output);
        const bool stack = pictures.front().count > 1;
        pattern = (fs::path(output) / ((stack ? "{plane}_{index}" : "{plane}") + EndingOf(format))).string();
    }
    std::set<std::string> taken;
    for (const PlannedPicture& picture : pictures)
    {
        names.files.push_back(Filled(pattern, picture));
        if (!taken.insert(names.files.back()).second)
            throw Error(ErrorKind::Usage, "two pictures would be called " + names.files.back() +
                                              "; put {plane} or {index} into --output");
    }
    return names;
}
} // namespace corvane::app
