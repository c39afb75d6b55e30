#include "picture_files.h"

#include <filesystem>

#include "host/error.h"
#include "host/output_file.h"
#include "host/signals_held.h"

namespace corvane::app
{
namespace
{
void CheckNewFolder(std::string folder)
{
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(folder, ignored)))
        throw host::Error(host::ErrorKind::Output, folder + ": is no folder; give another name");
    host::CheckOutput(folder, false);
}
} // namespace

PictureFiles::PictureFiles(OutputNames names, bool replace) : names_(std::move(names)), replace_(replace)
{
    if (!names_.newFolder.empty())
    {
        CheckNewFolder(names_.newFolder);
        return;
    }
    for (const std::string& file : names_.files)
        host::CheckOutput(file, replace_);
}

PictureFiles::~PictureFiles()
{
    std::error_code ignored;
    if (madeFolder_)
        std::filesystem::remove(names_.newFolder, ignored); // only while it is empty
}

void PictureFiles::Write(size_t picture, const std::string& bytes)
{
    const host::SignalsHeld held; // no folder is left without a picture
    std::error_code problem;
    if (!names_.newFolder.empty() && !madeFolder_)
    {
        madeFolder_ = std::filesystem::create_directory(names_.newFolder, problem);
        if (problem)
            throw host::Error(host::ErrorKind::Output,
                              names_.newFolder + ": the folder cannot be made: " + problem.message());
    }
    host::WriteOutput(names_.files[picture], bytes, replace_);
}
} // namespace corvane::app
