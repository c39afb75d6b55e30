#include "verification_scene.h"

#include "phantom.h"
#include "phantom_anatomy.h"

namespace corvane::host
{
namespace
{
// Bone, vessels and liver, each over its own range of values.
struct LabelTable
{
    int label, start, size;
    uint8_t colour[3];
};

constexpr LabelTable kLabelTables[] = {
    {PhantomBone, 150, 1400, {240, 232, 208}},
    {PhantomVessel, 100, 500, {208, 32, 24}},
    {PhantomLiver, 20, 160, {150, 80, 50}},
};
constexpr int kSumStart = 20, kSumLength = 1530; // from the smallest to the largest value of all
} // namespace

VerificationScene::VerificationScene(const std::string& phantom) : volume_(MakePhantom(phantom))
{
    view_ = std::make_unique<VolumeView>(volume_, Padding{});
    const size_t sliceSize = volume_.grid.VoxelsPerSlice(), count = volume_.grid.VoxelCount();
    inverted_.resize(count);
    selected_.resize(count);
    for (size_t n = 0; n < count; ++n)
        inverted_[n] = int16_t(-volume_.voxels[n]);
    for (size_t n = 0; n < count; n += sliceSize)
    {
        invertedSlices_.push_back(inverted_.data() + n);
        selectedSlices_.push_back(selected_.data() + n);
    }
    selection_ = {selectedSlices_.data(), uint32_t(volume_.grid.sizeX), uint32_t(volume_.grid.sizeY),
                  uint32_t(volume_.grid.sizeZ)};
    FillTables();
}

KsVolumeData VerificationScene::Inverted() const
{
    KsVolumeData data = Data();
    data.slices = invertedSlices_.data();
    return data;
}

void VerificationScene::FillTables()
{
    size_t size = 0;
    for (const LabelTable& table : kLabelTables)
        size += size_t(table.size);
    colours_.resize(3 * size);
    opacities_.resize(size);
    sums_.resize(kSumLength);
    uint8_t* colours = colours_.data();
    float* opacities = opacities_.data();
    for (const LabelTable& table : kLabelTables)
    {
        entries_[size_t(table.label)] = {
            table.start, table.start + table.size - 1, table.size, colours, opacities, 1.0f, 1, {0.125f, 0.75f, 0.25f}};
        tables_.entries[table.label] = &entries_[size_t(table.label)];
        for (int n = 0; n < table.size; ++n)
        {
            opacities[n] = float(n) / 2048.0f;
            sums_[size_t(table.start + n - kSumStart)] += opacities[n];
            for (int channel = 0; channel < 3; ++channel)
                colours[3 * n + channel] = table.colour[channel];
        }
        colours += 3 * size_t(table.size);
        opacities += table.size;
    }
    tables_.sumStart = kSumStart;
    tables_.sumLength = kSumLength;
    tables_.opacitySums = sums_.data();
}
} // namespace corvane::host
