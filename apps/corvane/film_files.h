#ifndef CORVANE_APPS_FILM_FILES_H
#define CORVANE_APPS_FILM_FILES_H

#include <memory>
#include <string>
#include <vector>

#include "film_options.h"
#include "film_video.h"
#include "host/picture.h"
#include "picture_files.h"

namespace corvane::app
{
// The files of one or more pictures of the same size, and of the film that they make.
class FilmFiles
{
public:
    // Checks that everything can be written before anything is rendered.
    //   stem   what pictures are called in a folder: vr.png, or vr_001.png
    //   count  of pictures
    // Throws Error (Usage, Output).
    FilmFiles(const RenderingOptions& options, const std::string& stem, int count);

    // Takes the next picture. Returns its file; an empty text when there is only a film.
    std::string Add(const host::Picture& picture);

    // Completes the film, if there is one. Call it after the last picture.
    void Finish();

private:
    PictureFiles pictures_;
    int count_, next_ = 0; // of files; none when there is only a film
    std::unique_ptr<Video> video_;
};
} // namespace corvane::app

#endif
