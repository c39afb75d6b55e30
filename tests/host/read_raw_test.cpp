#include "host/read_bytes.h"
#include "host/read_raw.h"
#include "read_testing.h"

#include <limits>

namespace corvane::host
{
namespace
{
template <typename T>
RawVolume Raw(SampleType type, const std::vector<T>& samples, std::vector<Rescale> rescale = {Rescale()})
{
    RawVolume raw;
    raw.grid = ObliqueGrid(int(samples.size()), 1, 1, 0);
    raw.type = type;
    raw.rescale = std::move(rescale);
    raw.Allocate("test");
    std::memcpy(raw.memory.data(), samples.data(), samples.size() * sizeof(T));
    return raw;
}

// A row of `count` voxels of one value, for tests about few voxels among many.
std::vector<int32_t> Row(size_t count, int32_t value) { return std::vector<int32_t>(count, value); }

TEST(StoredValues, TakesEverySampleTypeAsItIs)
{
    const auto expect = [](RawVolume raw, std::vector<int16_t> stored)
    {
        const Volume volume = StoredVolume(std::move(raw));
        EXPECT_EQ(volume.voxels, stored);
        EXPECT_EQ(volume.valueSlope, 1);
        EXPECT_EQ(volume.valueIntercept, 0);
        EXPECT_TRUE(volume.warnings.empty());
    };
    expect(Raw<uint8_t>(SampleType::UInt8, {0, 7, 255}), {0, 7, 255});
    expect(Raw<int8_t>(SampleType::Int8, {-128, 7, 127}), {-128, 7, 127});
    expect(Raw<uint16_t>(SampleType::UInt16, {0, 7, 32767}), {0, 7, 32767});
    expect(Raw<int16_t>(SampleType::Int16, {-32768, 7, 32767}), {-32768, 7, 32767});
    expect(Raw<uint32_t>(SampleType::UInt32, {0, 7, 32767}), {0, 7, 32767});
    expect(Raw<int32_t>(SampleType::Int32, {-32768, 7, 32767}), {-32768, 7, 32767});
    expect(Raw<uint64_t>(SampleType::UInt64, {0, 7, 32767}), {0, 7, 32767});
    expect(Raw<int64_t>(SampleType::Int64, {-32768, 7, 32767}), {-32768, 7, 32767});
    expect(Raw<float>(SampleType::Float32, {-32768, 7, 32767}), {-32768, 7, 32767});
    expect(Raw<double>(SampleType::Float64, {-32768, 7, 32767}), {-32768, 7, 32767});
}

TEST(StoredValues, AppliesSlopeAndIntercept)
{
    const Volume volume = StoredVolume(Raw<uint16_t>(SampleType::UInt16, {0, 24, 1024, 2000}, {{2, -1024}}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{-1024, -976, 1024, 2976}));
    EXPECT_EQ(volume.valueSlope, 1);
}

TEST(StoredValues, AppliesTheRescaleOfEachSlice)
{
    RawVolume raw = Raw<int16_t>(SampleType::Int16, {10, 10, 10}, {{1, 0}, {2, 5}, {3, -1}});
    raw.grid.sizeX = 1;
    raw.grid.sizeZ = 3;
    EXPECT_EQ(StoredVolume(std::move(raw)).voxels, (std::vector<int16_t>{10, 25, 29}));
}

TEST(StoredValues, KeepsWholeSamplesUnderAFractionalRescale)
{
    const Volume volume = StoredVolume(Raw<int16_t>(SampleType::Int16, {-5, 0, 32767}, {{0.25, 1.5}}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{-5, 0, 32767}));
    EXPECT_EQ(volume.valueSlope, 0.25);
    EXPECT_EQ(volume.valueIntercept, 1.5);
    EXPECT_TRUE(volume.warnings.empty());
}

TEST(StoredValues, ScalesFractionsWithZeroKept)
{
    const Volume volume = StoredVolume(Raw<float>(SampleType::Float32, {0, 0.25f, 0.5f, 1}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{0, 8192, 16384, 32767})); // 32767 * value, rounded
    EXPECT_NEAR(volume.valueSlope, 1.0 / 32767, 1e-15);
    EXPECT_EQ(volume.valueIntercept, 0);
    EXPECT_TRUE(HasWarning(volume, "values 0 to 1 scaled to 16 bits, in steps of 3.05185e-05"));
}

TEST(StoredValues, ScalesFromTheMinimumWhereTheValuesDoNotReachZero)
{
    const Volume volume = StoredVolume(Raw<double>(SampleType::Float64, {1000.25, 1000.5, 1001.25}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{0, 8192, 32767}));
    EXPECT_EQ(volume.valueIntercept, 1000.25);
    const Volume negative = StoredVolume(Raw<double>(SampleType::Float64, {-2.5, -1.5}));
    EXPECT_EQ(negative.voxels, (std::vector<int16_t>{0, 32767}));
    EXPECT_EQ(negative.valueIntercept, -2.5);
}

TEST(StoredValues, ScalesWholeNumbersBeyond16Bits)
{
    const Volume volume = StoredVolume(Raw<uint16_t>(SampleType::UInt16, {0, 65535}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{0, 32767}));
    EXPECT_NEAR(volume.valueSlope, 65535.0 / 32767, 1e-12);
    EXPECT_TRUE(HasWarning(volume, "values 0 to 65535 scaled to 16 bits, in steps of 2.00003"));
}

TEST(StoredValues, ClampsFewVoxelsOfCtLikeData)
{
    std::vector<int32_t> samples = Row(5000, -1000);
    samples[1] = 40000;
    samples[2] = 33000;
    samples[3] = 32767;
    const Volume volume = StoredVolume(Raw<int32_t>(SampleType::Int32, samples));
    EXPECT_EQ(volume.voxels[0], -1000);
    EXPECT_EQ(volume.voxels[1], 32767);
    EXPECT_EQ(volume.voxels[2], 32767);
    EXPECT_EQ(volume.valueSlope, 1);
    EXPECT_TRUE(HasWarning(volume, "values -1000 to 40000: 2 voxels outside -32768 to 32767 clamped"));
}

TEST(StoredValues, ScalesWhenManyVoxelsWouldBeClamped)
{
    std::vector<int32_t> samples = Row(5000, -1000);
    std::fill(samples.begin(), samples.begin() + 6, 40000); // more than one in a thousand
    const Volume volume = StoredVolume(Raw<int32_t>(SampleType::Int32, samples));
    EXPECT_NEAR(volume.valueSlope, 40000.0 / 32767, 1e-12);
    EXPECT_NEAR(volume.valueSlope * volume.voxels[4999], -1000, 0.7); // half a step
}

TEST(StoredValues, RoundsFractionsOfCtLikeData)
{
    const Volume volume = StoredVolume(Raw<float>(SampleType::Float32, {-1000.25f, -0.5f, 40.5f, 2000.75f}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{-1000, 0, 41, 2001}));
    EXPECT_EQ(volume.valueSlope, 1);
    EXPECT_TRUE(HasWarning(volume, "values -1000.25 to 2000.75 rounded to whole numbers"));
}

TEST(StoredValues, ReplacesWhatIsNotFiniteAndCountsIt)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const Volume volume = StoredVolume(Raw<float>(SampleType::Float32, {nan, 3, -2, inf, -inf}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{-2, 3, -2, -2, -2}));
    EXPECT_TRUE(HasWarning(volume, "3 voxels that are not finite numbers taken as -2"));
    const Volume nothing = StoredVolume(Raw<float>(SampleType::Float32, {nan, nan}));
    EXPECT_EQ(nothing.voxels, (std::vector<int16_t>{0, 0}));
}

TEST(StoredValues, SurvivesTheLargestNumbers)
{
    const Volume volume = StoredVolume(Raw<double>(SampleType::Float64, {-1e300, 0, 1e300}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{-32767, 0, 32767}));
}

TEST(StoredValues, TakesNumbersAtTheEndOfTheirRangeAsNotFinite)
{
    const Volume volume = StoredVolume(Raw<double>(SampleType::Float64, {-1.7e308, 0, 1, 1.7e308}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{0, 0, 1, 0}));
    EXPECT_TRUE(HasWarning(volume, "2 voxels that are not finite numbers taken as 0"));
}

TEST(StoredValues, SurvivesTheSmallestNumbers)
{
    const Volume volume = StoredVolume(Raw<double>(SampleType::Float64, {0, 5e-324, 1e-320}));
    EXPECT_EQ(volume.voxels, (std::vector<int16_t>{0, 0, 0}));
    EXPECT_GT(volume.valueSlope, 0);
}

TEST(Memory, IsRefusedToVoxelsThatNoMachineHolds)
{
    EXPECT_EQ(ErrorOf([] { CheckMemoryHolds("big.nii.gz", 1 << 20); }), "no error");
    EXPECT_TRUE(Contains(ErrorOf([] { CheckMemoryHolds("big.nii.gz", uint64_t(1) << 60); }),
                         "big.nii.gz: its voxels need 1152921504606846976 bytes, this machine has "));
}

TEST(Labels, AreWholeNumbersUpTo63)
{
    EXPECT_EQ(LabelsOf(Raw<float>(SampleType::Float32, {0, 63, 5}), "a"), (std::vector<uint8_t>{0, 63, 5}));
    RawVolume raw = Raw<int16_t>(SampleType::Int16, {0, 0, 0, 0, 0, 64});
    raw.grid = ObliqueGrid(2, 1, 3, 0);
    EXPECT_TRUE(
        Contains(ErrorOf([&] { LabelsOf(raw, "seg.nrrd"); }),
                 "seg.nrrd: the value 64 at voxel (1, 0, 2) is no label; labels are whole numbers from 0 to 63"));
    for (const float value : {-1.0f, 0.5f, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_TRUE(Contains(ErrorOf([&] { LabelsOf(Raw<float>(SampleType::Float32, {value}), "a"); }), "is no label"));
}
} // namespace
} // namespace corvane::host
