#ifndef CORVANE_TESTS_ENGINE3D_SEAM_ENGINE_H
#define CORVANE_TESTS_ENGINE3D_SEAM_ENGINE_H

#include "corvane/Engine3D.h"
#include "recording_trevik.h"
#include "tests/render3d/scratch_folder.h"
#include "tests/test_volume.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

// An engine over the recording GPU library.
namespace corvane::tests
{
using Names = std::vector<std::string>;
using Pixels = std::vector<uint32_t>;

constexpr int kWidth = 12, kHeight = 20;
constexpr uint32_t kGarbage = 0x5A5A5A5A;

// A block of bone off the middle, in air. Anything that moves or hides it changes the picture.
inline TestVolume BoneVolume(int from = 6, int to = 13)
{
    TestVolume volume =
        MakeVolume(20, 18, 16,
                   [=](int i, int j, int k)
                   { return i >= from && i <= to && j >= 5 && j <= 11 && k >= 3 && k <= 9 ? 900 + 10 * i : -1000; });
    volume.data.spacing[2] = 1.5f;
    volume.data.origin[0] = -30.0f;
    return volume;
}

class Seam : public testing::Test
{
protected:
    Seam() { Load(); }
    ~Seam() override { gpu.during = nullptr; }

    // What the GPU was asked since the last time, in order.
    Names Asked()
    {
        Names names;
        for (const gpu::Call& call : gpu.calls)
            names.push_back(call.operation);
        last = std::move(gpu.calls);
        gpu.calls.clear();
        return names;
    }

    // The call of a name among those that Asked told last.
    const gpu::Call& Last(const std::string& operation) const
    {
        static const gpu::Call none;
        const auto found = std::find_if(last.rbegin(), last.rend(),
                                        [&](const gpu::Call& call) { return call.operation == operation; });
        EXPECT_NE(found, last.rend()) << "the GPU was not asked for " << operation;
        return found == last.rend() ? none : *found;
    }

    void Load()
    {
        EXPECT_TRUE(engine.InitData(bone.data));
        gpu.calls.clear();
    }

    // The GPU takes the volume before anything else happens.
    void LoadOnGpu()
    {
        EXPECT_TRUE(engine.SetGPUEnabled(true));
        Load();
    }

    Pixels VolumeRendering(int volumeIndex = 0, bool expected = true) { return Picture(engine, volumeIndex, expected); }

    static Pixels Picture(Engine3D& engine, int volumeIndex = 0, bool expected = true)
    {
        Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
        EXPECT_EQ(engine.ImagingVR(kWidth, kHeight, pixels.data(), false, nullptr, volumeIndex), expected);
        return pixels;
    }

    Pixels Endoscopy()
    {
        Pixels pixels(size_t(kWidth) * kHeight, kGarbage);
        EXPECT_TRUE(engine.ImagingVE(kWidth, kHeight, pixels.data(), 90.0f, false, nullptr));
        return pixels;
    }

    static Pixels Painted(uint32_t paint)
    {
        Pixels pixels(size_t(kWidth) * kHeight);
        for (size_t n = 0; n < pixels.size(); ++n)
            pixels[n] = paint + uint32_t(n);
        return pixels;
    }

    // A picture by the CPU in the middle of a GPU call, when the engine asks the GPU nothing.
    Pixels PictureWithoutGpu(int volumeIndex = 0)
    {
        EXPECT_TRUE(engine.SetGPUEnabled(false));
        const Pixels pixels = VolumeRendering(volumeIndex);
        EXPECT_TRUE(engine.SetGPUEnabled(true));
        return pixels;
    }

    const ScratchFolder folder;
    gpu::Recording& gpu = Fresh();
    const TestVolume bone = BoneVolume();
    Engine3D engine;
    std::vector<gpu::Call> last;

private:
    static gpu::Recording& Fresh() { return gpu::TheRecording() = {}; }
};

// Four images before the volume, red, and behind it.
inline KsBlendImage BlendImageOf(Pixels& pixels, double y)
{
    KsBlendImage image = {};
    const int32_t corners[4][2] = {{0, 0}, {kHeight - 1, 0}, {kHeight - 1, kWidth - 1}, {0, kWidth - 1}};
    std::memcpy(image.corners, corners, sizeof corners);
    image.pixels = pixels.data();
    std::fill(std::begin(image.reserved), std::end(image.reserved), uint8_t(y));
    image.rowDirection[0] = 1;
    image.columnDirection[2] = -1;
    image.position[1] = y;
    return image;
}

template <class RecordType>
bool SameBytes(const RecordType& a, const RecordType& b)
{
    return std::memcmp(static_cast<const void*>(&a), static_cast<const void*>(&b), sizeof a) == 0;
}
} // namespace corvane::tests

#endif
