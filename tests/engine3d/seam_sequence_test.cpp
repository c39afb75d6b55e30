#include "recording_trevik.h"
#include "sequence_steps.h"
#include "tests/render3d/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

// Any calls in any order on two engines with a GPU that comes, goes and refuses. It keeps the records that it is given,
// as a GPU renderer may, and reads them again whenever it draws.
namespace corvane::tests
{
namespace
{
constexpr int kSteps = 800, kBetweenComparisons = 100;

bool LabelsHoldStill(const gpu::Call& given)
{
    std::vector<uint8_t> labels;
    const size_t sliceSize = size_t(given.mark.sizeX) * given.mark.sizeY;
    for (uint32_t k = 0; given.mark.slices && k < given.mark.sizeZ; ++k)
        labels.insert(labels.end(), given.mark.slices[k], given.mark.slices[k] + sliceSize);
    return labels == given.labels;
}

bool TablesHoldStill(const gpu::Call& given)
{
    const auto same = [&](const gpu::TableCopy& table)
    {
        const VolumePaletteEntry* const entry = given.palette.entries[table.label];
        return entry && entry->rangeStart == table.entry.rangeStart && entry->size == table.entry.size &&
               entry->visible == table.entry.visible &&
               std::equal(table.colours.begin(), table.colours.end(), entry->colours) &&
               std::memcmp(table.opacities.data(), entry->opacities, table.opacities.size() * sizeof(float)) == 0;
    };
    return std::all_of(given.tables.begin(), given.tables.end(), same) &&
           (given.sums.empty() ||
            std::memcmp(given.sums.data(), given.palette.opacitySums, given.sums.size() * sizeof(float)) == 0);
}

// What one GPU renderer has been told.
struct Held
{
    bool volume = false;
    gpu::Call labels, tables; // the calls that brought the newest
};

class WatchedGpu
{
public:
    explicit WatchedGpu(gpu::Recording& recording) : recording_(recording)
    {
        recording_.during = [this](const gpu::Call& call) { Watch(call); };
    }
    ~WatchedGpu() { recording_ = {}; }

    int volumes = 0, pictures = 0, changes = 0;

private:
    void Watch(const gpu::Call& call)
    {
        recording_.calls.clear();
        Held& held = held_[call.renderer];
        if (call.operation == "create" || call.operation == "Clear")
            held = {};
        else if (call.operation == "InitData")
        {
            EXPECT_FALSE(held.volume) << "it had a volume, and was not cleared";
            held = {recording_.takesVolumes, call, call};
            ++volumes;
        }
        else if (call.operation == "destroy")
            held_.erase(call.renderer);
        else if (call.operation != "SupportGPU")
        {
            EXPECT_TRUE(held.volume) << call.operation;
            if (call.operation == "SetPalette")
                held.tables = call;
            else if (call.operation == "SetVolumeMark")
                held.labels = call;
            else if (call.operation == "ImagingVR" || call.operation == "ImagingVE")
            {
                EXPECT_TRUE(LabelsHoldStill(held.labels));
                EXPECT_TRUE(TablesHoldStill(held.tables));
                ++pictures;
                return;
            }
            ++changes;
        }
    }

    gpu::Recording& recording_;
    std::map<const void*, Held> held_;
};

std::vector<double> EverythingByCpu(Engine3D& engine)
{
    const bool enabled = engine.IsGPUEnabled();
    engine.SetGPUEnabled(false);
    const std::vector<double> all = Everything(engine);
    engine.SetGPUEnabled(enabled);
    return all;
}

void PlaySequence(uint32_t seed)
{
    const ScratchFolder folder;
    const SequenceWorld world;
    gpu::Recording& recording = gpu::TheRecording() = {};
    WatchedGpu gpu(recording);
    Random random(seed);
    Engine3D engines[2];
    std::vector<Step> told[2];
    for (int step = 1; step <= kSteps; ++step)
    {
        recording.supportsGpu = random.Below(5) != 0;
        recording.takesVolumes = random.Below(3) != 0;
        recording.drawsVolumes = random.Below(4) != 0;
        const int which = random.Below(2);
        const Step next = SequenceWorld::Draw(random);
        world.Play(engines[which], next);
        if (!SequenceWorld::OnlyLooks(next) && !SequenceWorld::SwitchesGpu(next))
            told[which].push_back(next);
        if (step % kBetweenComparisons != 0)
            continue;
        recording.supportsGpu = true;
        for (int engine = 0; engine < 2; ++engine)
        {
            Engine3D fresh; // never had a GPU
            for (const Step& each : told[engine])
                world.Play(fresh, each);
            ASSERT_EQ(EverythingByCpu(engines[engine]), Everything(fresh)) << "engine " << engine << ", step " << step;
        }
    }
    EXPECT_GT(gpu.volumes, 10);
    EXPECT_GT(gpu.pictures, 20);
    EXPECT_GT(gpu.changes, 50);
}
} // namespace

TEST(SeamSequence, TwoEnginesAndAFickleGpuPlayTheFirstSequence) { PlaySequence(4); }
TEST(SeamSequence, TwoEnginesAndAFickleGpuPlayTheSecondSequence) { PlaySequence(55); }
} // namespace corvane::tests
