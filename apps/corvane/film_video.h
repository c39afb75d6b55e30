#ifndef CORVANE_APPS_FILM_VIDEO_H
#define CORVANE_APPS_FILM_VIDEO_H

#include <memory>
#include <string>

#include "host/picture.h"

namespace corvane::app
{
// A film in a file, made by the program ffmpeg. The file appears when it is complete.
class Video
{
public:
    // Throws Error (Usage, Output) when ffmpeg is missing, the name ends in no kind of film, or a file stands there
    // already and `replace` is false.
    Video(const std::string& path, int framesPerSecond, bool replace);
    ~Video();
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;

    // Throw Error (Output), with what ffmpeg says, when it gives up. All pictures have the first one's size.
    void Add(const host::Picture& picture);
    void Finish();

private:
    class Encoder;

    std::string path_;
    int framesPerSecond_;
    bool replace_;
    std::unique_ptr<Encoder> encoder_; // from the first picture on
};
} // namespace corvane::app

#endif
