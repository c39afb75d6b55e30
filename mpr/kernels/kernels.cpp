#include "kernels.h"

#include "core/simd/sampling.h"

#define TEXT_OF(name) #name
#define NAME_OF(macro) TEXT_OF(macro)

namespace corvane::KERNEL_ISA
{
namespace
{
constexpr int kRunLength = 64; // pixels whose places are kept at a time
constexpr int64_t kExactInFloat = 1 << 24;

struct Place
{
    float x, y, z;
};

// Whether the voxels at the place, and the next ones along each axis, lie inside. False for what is not a number.
bool IsSurrounded(const core::VolumeView& volume, Place p)
{
    return p.x >= 0.0f && p.x < float(volume.nx - 1) && p.y >= 0.0f && p.y < float(volume.ny - 1) && p.z >= 0.0f &&
           p.z < float(volume.nz - 1);
}

float Mix(float a, float b, float t) { return a + t * (b - a); }

// One pixel with every bound tested, for rows that leave the volume and for volumes too large for packs.
void ResamplePixel(const core::VolumeView& volume, Place p, int16_t& value)
{
    const bool inRange = p.x >= 0.0f && p.x < float(volume.nx) && p.y >= 0.0f && p.y < float(volume.ny) &&
                         p.z >= 0.0f && p.z < float(volume.nz);
    if (!inRange)
        return;
    const int64_t i = int64_t(p.x), j = int64_t(p.y), k = int64_t(p.z);
    if (i + 1 >= volume.nx || j + 1 >= volume.ny || k >= volume.nz)
        return;
    const float u = p.x - float(i), v = p.y - float(j), w = p.z - float(k);
    const int64_t offset = j * volume.nx + i;
    const int16_t* nearRow = volume.slices[k] + offset;
    const int16_t* farRow = volume.slices[k + 1 < volume.nz ? k + 1 : k] + offset;
    const int16_t* nearNext = nearRow + volume.nx;
    const int16_t* farNext = farRow + volume.nx;
    const float row0 = Mix(Mix(nearRow[0], farRow[0], w), Mix(nearRow[1], farRow[1], w), u);
    const float row1 = Mix(Mix(nearNext[0], farNext[0], w), Mix(nearNext[1], farNext[1], w), u);
    value = int16_t(int32_t(Mix(row0, row1, v) + 0.5f));
}

// Neighbouring pixels of one row, the last `kLanes` places after them to be overwritten.
void ResampleRun(const core::VolumeView& volume, bool fitsPacks, Quad* places, int count, int16_t* values)
{
    const auto placeOf = [&](int pixel) { return Place{places[pixel][0], places[pixel][1], places[pixel][2]}; };
    // Adding one number again and again never turns back, not even rounded: with both ends inside all are.
    if (fitsPacks && IsSurrounded(volume, placeOf(0)) && IsSurrounded(volume, placeOf(count - 1)))
    {
        for (int lane = 0; lane < kLanes; ++lane)
            places[count + lane] = places[count - 1];
        int16_t samples[kRunLength + kLanes];
        for (int pixel = 0; pixel < count; pixel += kLanes)
        {
            const QuadPack at = LoadQuads(places + pixel);
            StoreShorts(ToShort(ToInt(SampleTrilinear(volume, at.x, at.y, at.z) + 0.5f)), samples + pixel);
        }
        memcpy(values, samples, sizeof samples[0] * size_t(count));
        return;
    }
    for (int pixel = 0; pixel < count; ++pixel)
        ResamplePixel(volume, placeOf(pixel), values[pixel]);
}

Quad QuadOf(core::Vec3f v) { return Quad{v.x, v.y, v.z, 0.0f}; }

void ResampleRows(const core::VolumeView& volume, const mpr::RowToFill* rows, int rowCount)
{
    const bool fitsPacks = int64_t(volume.nx) * volume.ny < (int64_t(1) << 31) && volume.nx < kExactInFloat &&
                           volume.ny < kExactInFloat && volume.nz < kExactInFloat;
    Quad next[mpr::kRowsAtOnce] = {}, steps[mpr::kRowsAtOnce] = {};
    int64_t longest = 0;
    for (int row = 0; row < rowCount; ++row)
    {
        next[row] = QuadOf(rows[row].pixels.first);
        steps[row] = QuadOf(rows[row].pixels.step);
        longest = rows[row].pixels.count > longest ? rows[row].pixels.count : longest;
    }
    for (int64_t done = 0; done < longest; done += kRunLength)
    {
        Quad places[mpr::kRowsAtOnce][kRunLength + kLanes];
        for (int pixel = 0; pixel < kRunLength; ++pixel)
        {
            for (int row = 0; row < mpr::kRowsAtOnce; ++row)
            {
                places[row][pixel] = next[row];
                next[row] += steps[row];
            }
        }
        for (int row = 0; row < rowCount; ++row)
        {
            const int64_t left = rows[row].pixels.count - done;
            if (left > 0)
                ResampleRun(volume, fitsPacks, places[row], left < kRunLength ? int(left) : kRunLength,
                            rows[row].values + done);
        }
    }
}
} // namespace

extern const mpr::KernelTable kMprKernels;
const mpr::KernelTable kMprKernels = {NAME_OF(KERNEL_ISA), ResampleRows};
} // namespace corvane::KERNEL_ISA
