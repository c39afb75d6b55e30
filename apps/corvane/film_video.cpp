#include "film_video.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/error.h"
#include "host/numbers.h"
#include "host/output_file.h"
#include "unnamed_file.h"

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

namespace corvane::app
{
namespace
{
namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;

constexpr int kFilmDescriptor = 9; // of the film in ffmpeg; given last, so nothing that is still needed is lost there

bool CanRun(const std::string& program)
{
    const char* const folders = std::getenv("PATH");
    for (const std::string& folder : host::Split(folders ? folders : "", ':'))
        if (access((fs::path(folder) / program).c_str(), X_OK) == 0)
            return true;
    return false;
}

std::vector<std::string> CodecOf(const std::string& ending)
{
    if (ending == ".webm")
        return {"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0"};
    if (ending == ".mp4" || ending == ".mkv")
        return {"-c:v", "libx264", "-crf", "16"};
    return {};
}

// The kind of film that an ending stands for, as ffmpeg calls it.
std::string FormatOf(const std::string& ending) { return ending == ".mkv" ? "matroska" : ending.substr(1); }
} // namespace

// ffmpeg at work: raw pictures go in through a pipe.
class Video::Encoder
{
public:
    Encoder(const std::string& ending, int framesPerSecond, const host::Picture& first)
        : rows_(first.rows), columns_(first.columns)
    {
        std::vector<std::string> words = {"ffmpeg",    "-nostdin",
                                          "-loglevel", "error",
                                          "-f",        "rawvideo",
                                          "-pix_fmt",  "rgb24",
                                          "-s",        std::to_string(columns_) + "x" + std::to_string(rows_),
                                          "-r",        std::to_string(framesPerSecond),
                                          "-i",        "pipe:0"};
        for (const std::string& word : CodecOf(ending))
            words.push_back(word);
        // Films halve the colours' resolution, which takes even sides.
        for (const char* word : {"-pix_fmt", "yuv420p", "-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2"})
            words.push_back(word);
        words.insert(words.end(), {"-f", FormatOf(ending), "-y", "/dev/fd/" + std::to_string(kFilmDescriptor)});
        Start(words);
    }
    ~Encoder()
    {
        Close();
        if (process_ > 0)
        {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    void Write(const host::Picture& picture)
    {
        if (picture.rows != rows_ || picture.columns != columns_)
            throw Error(ErrorKind::Output, "a film takes pictures of one size");
        for (size_t done = 0; done < picture.rgb.size();)
        {
            const ssize_t count = write(pipe_, picture.rgb.data() + done, picture.rgb.size() - done);
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                GiveUp();
            done += size_t(count);
        }
    }

    // The film's bytes.
    std::string Finished()
    {
        Close();
        int status = 0;
        const bool waited = waitpid(process_, &status, 0) == process_;
        process_ = -1;
        std::string film = film_.Bytes();
        if (!waited || !WIFEXITED(status) || WEXITSTATUS(status) != 0 || film.empty())
            GiveUp();
        return film;
    }

private:
    void Start(const std::vector<std::string>& words)
    {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);

        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw Error(ErrorKind::Output, "ffmpeg cannot be started: no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, messages_.Descriptor(), STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&actions, film_.Descriptor(), kFilmDescriptor);
        const int problem = posix_spawnp(&process_, "ffmpeg", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[0]);
        pipe_ = ends[1];
        if (problem != 0)
        {
            process_ = -1;
            throw Error(ErrorKind::Output, "ffmpeg cannot be started");
        }
    }

    void Close()
    {
        if (pipe_ >= 0)
            close(pipe_);
        pipe_ = -1;
    }

    [[noreturn]] void GiveUp()
    {
        Close();
        if (process_ > 0)
            waitpid(process_, nullptr, 0);
        process_ = -1;
        const std::string messages = messages_.Bytes();
        const std::string first = messages.substr(0, messages.find('\n'));
        throw Error(ErrorKind::Output, "ffmpeg has made no film" + (first.empty() ? "" : ": " + first));
    }

    UnnamedFile film_, messages_; // of ffmpeg, which may need to go back in the film
    int rows_, columns_;
    int pipe_ = -1;
    pid_t process_ = -1;
};

Video::Video(const std::string& path, int framesPerSecond, bool replace)
    : path_(path), framesPerSecond_(framesPerSecond), replace_(replace)
{
    if (CodecOf(fs::path(path).extension().string()).empty())
        throw Error(ErrorKind::Usage, "--video takes a name that ends in .mp4, .mkv or .webm, not '" + path + "'");
    if (!CanRun("ffmpeg"))
        throw Error(ErrorKind::Output,
                    "--video needs the program ffmpeg, which is not installed; install it (on Debian: "
                    "apt-get install ffmpeg), or write pictures with --output");
    host::CheckOutput(path, replace);
}

Video::~Video() = default;

void Video::Add(const host::Picture& picture)
{
    if (!encoder_)
        encoder_ = std::make_unique<Encoder>(fs::path(path_).extension().string(), framesPerSecond_, picture);
    encoder_->Write(picture);
}

void Video::Finish()
{
    if (encoder_)
        host::WriteOutput(path_, encoder_->Finished(), replace_);
    encoder_.reset();
}
} // namespace corvane::app
