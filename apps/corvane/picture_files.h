#ifndef CORVANE_APPS_PICTURE_FILES_H
#define CORVANE_APPS_PICTURE_FILES_H

#include <string>

#include "output_names.h"

namespace corvane::app
{
// Writes pictures under their names. Makes their folder when the first one comes, and takes it away again unless a
// picture came to stand in it.
class PictureFiles
{
public:
    // Throws Error (Output) when a file cannot be written, before anything is computed.
    PictureFiles(OutputNames names, bool replace);
    ~PictureFiles();
    PictureFiles(const PictureFiles&) = delete;
    PictureFiles& operator=(const PictureFiles&) = delete;

    const std::string& Name(size_t picture) const { return names_.files[picture]; }

    // Throws Error (Output).
    void Write(size_t picture, const std::string& bytes);

private:
    OutputNames names_;
    bool replace_;
    bool madeFolder_ = false;
};
} // namespace corvane::app

#endif
