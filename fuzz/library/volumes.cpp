#include "volumes.h"

#include "planes.h"

#include <sys/mman.h>

namespace corvane::fuzz
{
namespace
{
constexpr int kSizes[] = {20, 24, 16, 17, 33, 8, 7, 5, 4, 3, 2, 1, 40, 90, 700, 5000};
constexpr int kRefusedSizes[] = {0, -1, INT32_MIN, (1 << 24) + 1, INT32_MAX};

// Values along a slice; the kinds differ in how much their blocks can skip.
void FillSlice(int16_t* values, size_t count, int kind, int sizeX, int slice)
{
    for (size_t n = 0; n < count; ++n)
    {
        const int x = int(n) % sizeX, y = int(n) / sizeX;
        const uint32_t noise = (uint32_t(n) * 2654435761u + uint32_t(slice) * 40503u) >> 16;
        switch (kind)
        {
        case 0:
            values[n] = int16_t(100 * x + 20 * y - 30 * slice);
            break;
        case 1:
            values[n] = x > sizeX / 2 ? 900 : -1000;
            break;
        case 2:
            values[n] = int16_t(noise);
            break;
        case 3:
            values[n] = (x + y + slice) % 2 ? INT16_MAX : INT16_MIN;
            break;
        default:
            values[n] = noise % 64 ? -1024 : 1200;
        }
    }
}

// Zeros for slices of up to 2^32 bytes; pages that are not read take nothing.
const uint8_t* VastZeros()
{
    static void* const zeros =
        mmap(nullptr, size_t(1) << 33, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    Require(zeros != MAP_FAILED, "8 GiB of addresses can be had");
    return static_cast<const uint8_t*>(zeros);
}

void FillSlices(Session& session, KsVolumeData& volume)
{
    const int layout = session.input.Below(8), kind = session.input.Below(5);
    const size_t count = size_t(volume.sizeZ), sliceSize = size_t(volume.sizeX) * size_t(volume.sizeY);
    const int16_t** const table = session.memory.Of<const int16_t*>(count);
    volume.slices = table;
    if (sliceSize > kMostVoxels)
    {
        std::fill_n(table, count, reinterpret_cast<const int16_t*>(VastZeros()));
        session.mostPixels = std::min(session.mostPixels, 256); // each reads another page
        return;
    }
    session.workLeft -= int(count * sliceSize);
    const bool apart = layout == 1, shared = layout == 2, backwards = layout == 3;
    int16_t* const whole = session.memory.Of<int16_t>(apart ? 0 : shared ? sliceSize : count * sliceSize);
    for (size_t k = 0; k < count; ++k)
    {
        const size_t place = shared ? 0 : (backwards ? count - 1 - k : k) * sliceSize;
        int16_t* const slice = apart ? session.memory.Of<int16_t>(sliceSize) : whole + place;
        if (k == 0 || !shared)
            FillSlice(slice, sliceSize, kind, volume.sizeX, int(k));
        table[k] = slice;
    }
    if (layout == 4)
        table[session.input.Byte() % count] = nullptr;
    if (layout == 5)
        volume.slices = nullptr;
}

void FillGeometry(Session& session, KsVolumeData& volume)
{
    for (float& spacing : volume.spacing)
        spacing = session.input.Number(0.3f, 3.0f);
    for (float& place : volume.origin)
        place = session.input.Number(-60.0f, 60.0f);
    double row[3], column[3];
    FillDirections(session, row, column);
    std::copy_n(row, 3, volume.rowDirection);
    std::copy_n(column, 3, volume.columnDirection);
    for (int axis = 0; axis < 3; ++axis)
    {
        const int next = (axis + 1) % 3, last = (axis + 2) % 3;
        volume.sliceDirection[axis] = float(row[next] * column[last] - row[last] * column[next]);
    }
    if (session.input.OneIn(4))
        for (float& part : volume.sliceDirection)
            part = session.input.Number(-1.0f, 1.0f);
}

// Steps are as long as the smallest spacing, so that they are many where another one is much larger.
bool HasLongRays(const KsVolumeData& volume)
{
    const auto [least, most] = std::minmax_element(volume.spacing, volume.spacing + 3);
    return !(*most <= 50 * *least);
}

void FillVolume(Session& session, KsVolumeData& volume)
{
    FillSlices(session, volume);
    const float axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    std::copy_n(axes[0], 3, volume.rowDirection);
    std::copy_n(axes[1], 3, volume.columnDirection);
    std::copy_n(axes[2], 3, volume.sliceDirection);
    std::fill_n(volume.spacing, 3, 1.0f);
    if (session.input.OneIn(2))
        FillGeometry(session, volume);
    if (HasLongRays(volume))
        session.mostPixels = 16;
}
} // namespace

KsVolumeData MakeVolume(Session& session, Slices slices)
{
    KsVolumeData volume = {};
    Input& input = session.input;
    volume.sizeX = kSizes[input.Below(16)];
    volume.sizeY = std::min(kSizes[input.Below(16)], std::max(1, kMostVoxels / volume.sizeX));
    volume.sizeZ = std::min(kSizes[input.Below(16)], std::max(1, kMostVoxels / (volume.sizeX * volume.sizeY)));
    const int special = input.Below(16);
    if (special == 15 && slices == Slices::Vast)
        volume.sizeX = 50000, volume.sizeY = 46000;
    FillVolume(session, volume);
    if (special == 14) // false before anybody reads
    {
        int32_t* const sizes[3] = {&volume.sizeX, &volume.sizeY, &volume.sizeZ};
        *sizes[input.Below(3)] = kRefusedSizes[input.Below(slices == Slices::Scanned ? 5 : 3)];
    }
    session.volume = volume;
    return volume;
}

KsVolumeData MakeVolumeLike(Session& session)
{
    KsVolumeData volume = session.volume;
    const bool canBeFilled = volume.sizeX >= 1 && volume.sizeY >= 1 && volume.sizeZ >= 1 &&
                             int64_t(volume.sizeX) * volume.sizeY * volume.sizeZ <= kMostVoxels;
    if (canBeFilled)
        FillVolume(session, volume);
    if (session.input.OneIn(16) && volume.sizeZ > 1)
        --volume.sizeZ;
    return volume;
}

KsVolumeMark MakeLabels(Session& session)
{
    constexpr uint8_t kBytes[] = {0, 1, 17, 63, 64, 65, 128, 255};
    Input& input = session.input;
    int sizes[3] = {session.volume.sizeX, session.volume.sizeY, session.volume.sizeZ};
    for (int& size : sizes)
        size = std::clamp(size, 0, 50000);
    if (input.OneIn(8))
        sizes[input.Below(3)] += input.Below(2) ? 3 : -3;
    for (int& size : sizes)
        size = std::max(size, 0);
    KsVolumeMark mark = {nullptr, uint32_t(sizes[0]), uint32_t(sizes[1]), uint32_t(sizes[2])};
    const size_t sliceSize = size_t(mark.sizeX) * mark.sizeY;
    const bool isVast = sliceSize > 2 * kMostVoxels;
    const int layout = input.Below(8), byte = kBytes[input.Below(8)], every = 1 + input.Below(16);
    if (layout == 7 || mark.sizeZ > 2 * kMostVoxels || (!isVast && sliceSize * mark.sizeZ > 2 * kMostVoxels))
        return mark;
    mark.slices = session.memory.Of<uint8_t*>(mark.sizeZ);
    session.workLeft -= isVast ? 0 : int(sliceSize * mark.sizeZ);
    for (uint32_t k = 0; k < mark.sizeZ; ++k)
    {
        mark.slices[k] = isVast ? const_cast<uint8_t*>(VastZeros()) : session.memory.Of<uint8_t>(sliceSize);
        for (size_t n = 0; !isVast && n < sliceSize; ++n)
            mark.slices[k][n] = (n + k) % size_t(every) == 0 ? uint8_t(byte) : uint8_t(0);
        if (layout == 6 && k % 3 == 1)
            mark.slices[k] = nullptr;
    }
    return mark;
}
} // namespace corvane::fuzz
