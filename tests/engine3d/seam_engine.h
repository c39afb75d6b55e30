#ifndef CORVANE_TESTS_ENGINE3D_SEAM_ENGINE_H
#define CORVANE_TESTS_ENGINE3D_SEAM_ENGINE_H

#include "lifecycle_scene.h"
#include "recording_trevik.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

// An engine over the recording GPU library.
namespace corvane::tests
{
using Names = std::vector<std::string>;

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
    Pixels Endoscopy() { return EndoscopyPicture(engine); }

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
} // namespace corvane::tests

#endif
