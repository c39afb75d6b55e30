#include "mark_dump.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace corvane::render3d
{
namespace
{
constexpr uint64_t kLabelsPerSlice = 4;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// On Windows D: is often a drive for discs, and opening a file on it would ask the user to put one in.
class NoQuestions
{
#if defined(_WIN32)
public:
    NoQuestions() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_); }
    ~NoQuestions() { SetThreadErrorMode(before_, nullptr); }
    NoQuestions(const NoQuestions&) = delete;
    NoQuestions& operator=(const NoQuestions&) = delete;

private:
    DWORD before_ = 0;
#endif
};
} // namespace

void DumpMark(const KsVolumeMark& mark) noexcept
{
    [[maybe_unused]] const NoQuestions quiet;
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen("D:\\mark.data", "wb"));
    if (!file)
        return;
    const uint64_t held = std::min(uint64_t(mark.sizeX) * mark.sizeY, kLabelsPerSlice);
    for (uint32_t slice = 0; mark.slices && slice < mark.sizeZ; ++slice)
    {
        uint8_t labels[kLabelsPerSlice] = {};
        if (mark.slices[slice])
            std::copy_n(mark.slices[slice], held, labels);
        if (std::fwrite(labels, 1, kLabelsPerSlice, file.get()) != kLabelsPerSlice)
            return;
    }
}
} // namespace corvane::render3d
