#include "mark_dump.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace corvane::render3d
{
namespace
{
constexpr uint64_t kLabelsPerSlice = 4;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
} // namespace

void DumpMark(const KsVolumeMark& mark) noexcept
{
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
