#include "picture_files.h"

#include <filesystem>

#include "host/error.h"
#include "host/output_file.h"

namespace corvane::app
{
PictureFiles::PictureFiles(OutputNames names, bool replace) : names_(std::move(names)), replace_(replace)
{
    if (names_.newFolder.empty())
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
