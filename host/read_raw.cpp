#include "read_raw.h"

#include "error.h"
#include "label_byte.h"
#include "read_bytes.h"
#include "read_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace corvane::host
{
namespace
{
constexpr double kLargestReal = 1e300; // sums and differences of two stay finite
constexpr double kSmallestStep = 1e-300;
constexpr double kMinStored = INT16_MIN, kMaxStored = INT16_MAX;
constexpr double kMaxClampedShare = 0.001; // of the voxels: metal, markers
constexpr double kCtLikeMinimum = -500;    // values below mean air in HU
constexpr double kCtLikeRange = 1000;      // rounding to whole numbers is finer than a thousandth of it

// Calls action(sample type's zero) with the C++ type of the samples.
template <typename Action>
void WithType(SampleType type, Action action)
{
    switch (type)
    {
    case SampleType::UInt8: // NOLINT(bugprone-branch-clone): the branches differ in their types
        return action(uint8_t());
    case SampleType::Int8:
        return action(int8_t());
    case SampleType::UInt16:
        return action(uint16_t());
    case SampleType::Int16:
        return action(int16_t());
    case SampleType::UInt32:
        return action(uint32_t());
    case SampleType::Int32:
        return action(int32_t());
    case SampleType::UInt64:
        return action(uint64_t());
    case SampleType::Int64:
        return action(int64_t());
    case SampleType::Float32:
        return action(float());
    case SampleType::Float64:
        return action(double());
    }
}

// Calls visit(voxel index, sample, real value) for every voxel.
template <typename Visit>
void ForEachSample(const RawVolume& raw, Visit visit)
{
    WithType(raw.type,
             [&](auto zero)
             {
                 using Sample = decltype(zero);
                 const char* bytes = reinterpret_cast<const char*>(raw.memory.data());
                 const size_t perSlice = raw.grid.VoxelsPerSlice();
                 for (size_t k = 0; k < size_t(raw.grid.sizeZ); ++k)
                 {
                     const Rescale rescale = raw.RescaleOf(k);
                     for (size_t index = k * perSlice; index < (k + 1) * perSlice; ++index)
                     {
                         Sample sample;
                         std::memcpy(&sample, bytes + index * sizeof sample, sizeof sample);
                         visit(index, sample, rescale.slope * double(sample) + rescale.intercept);
                     }
                 }
             });
}

bool IsReal(double value) { return std::abs(value) <= kLargestReal; } // not for NaN either

bool IsWhole(double value)
{
    return std::abs(value) < 1e9 ? double(int32_t(value)) == value : value == std::floor(value);
}
bool FitsStored(double value) { return value >= kMinStored && value <= kMaxStored; }
int16_t RoundToStored(double value) { return int16_t(std::clamp(std::floor(value + 0.5), kMinStored, kMaxStored)); }

struct Survey
{
    double minimum = std::numeric_limits<double>::infinity(), maximum = -minimum; // of the finite real values
    bool wholeValues = true;   // every finite real value is a whole number
    bool storedSamples = true; // every sample is a whole number of 16 bits
    size_t outside = 0;        // real values outside 16 bits
    size_t notFinite = 0;
};

Survey SurveyOf(const RawVolume& raw)
{
    Survey survey;
    ForEachSample(raw,
                  [&](size_t, auto sample, double real)
                  {
                      if (!IsReal(real))
                      {
                          ++survey.notFinite;
                          return;
                      }
                      survey.minimum = std::min(survey.minimum, real);
                      survey.maximum = std::max(survey.maximum, real);
                      survey.wholeValues &= IsWhole(real);
                      survey.storedSamples &= FitsStored(double(sample)) && IsWhole(double(sample));
                      survey.outside += !FitsStored(real);
                  });
    return survey;
}

// Stored value = (value - offset) / step, rounded. Where samples are kept, value is the sample, else the real value.
struct Mapping
{
    bool keepsSamples = false;
    double step = 1, offset = 0;
};

Mapping ScaleToStored(const Survey& survey)
{
    const bool reachesZero = survey.minimum <= 0 && survey.maximum >= 0;
    Mapping mapping;
    mapping.offset = reachesZero ? 0 : survey.minimum;
    const double largest = std::max(survey.maximum - mapping.offset, mapping.offset - survey.minimum);
    mapping.step = largest > 0 ? std::max(largest / kMaxStored, kSmallestStep) : 1;
    return mapping;
}

Mapping ChooseMapping(const RawVolume& raw, const Survey& survey, std::vector<std::string>& warnings)
{
    if (survey.wholeValues && survey.outside == 0)
        return {};
    if (survey.storedSamples && survey.notFinite == 0 && raw.rescale.size() == 1 && raw.rescale[0].slope > 0)
        return {.keepsSamples = true, .step = 1, .offset = 0};

    const std::string range = "values " + Number(survey.minimum) + " to " + Number(survey.maximum);
    const bool ctLike = (raw.modality == "CT" || survey.minimum <= kCtLikeMinimum) &&
                        survey.maximum - survey.minimum >= kCtLikeRange &&
                        double(survey.outside) <= kMaxClampedShare * double(raw.grid.VoxelCount());
    if (ctLike)
    {
        if (!survey.wholeValues)
            warnings.push_back(range + " rounded to whole numbers");
        if (survey.outside > 0)
            warnings.push_back(range + ": " + std::to_string(survey.outside) + " voxels outside " + Number(kMinStored) +
                               " to " + Number(kMaxStored) + " clamped");
        return {};
    }
    const Mapping mapping = ScaleToStored(survey);
    warnings.push_back(range + " scaled to 16 bits, in steps of " + Number(mapping.step));
    return mapping;
}
} // namespace

size_t BytesPerSample(SampleType type)
{
    size_t size = 0;
    WithType(type, [&](auto zero) { size = sizeof zero; });
    return size;
}

void RawVolume::Allocate(const std::string& name)
{
    CheckMemoryHolds(name, ByteCount());
    memory.assign((ByteCount() + sizeof(int16_t) - 1) / sizeof(int16_t), 0);
}

Volume StoredVolume(RawVolume&& raw)
{
    Volume volume;
    volume.grid = raw.grid;
    volume.modality = raw.modality;
    volume.description = raw.description;
    volume.warnings = std::move(raw.warnings);

    if (raw.type == SampleType::Int16 && raw.rescale.size() == 1 && raw.rescale[0].slope == 1 &&
        raw.rescale[0].intercept == 0)
    {
        volume.voxels = std::move(raw.memory);
        return volume;
    }

    Survey survey = SurveyOf(raw);
    if (survey.minimum > survey.maximum)
        survey.minimum = survey.maximum = 0;
    if (survey.notFinite > 0)
        volume.warnings.push_back(std::to_string(survey.notFinite) + " voxels that are not finite numbers taken as " +
                                  Number(survey.minimum));
    const Mapping mapping = ChooseMapping(raw, survey, volume.warnings);

    if (mapping.keepsSamples)
    {
        volume.valueSlope = raw.rescale[0].slope;
        volume.valueIntercept = raw.rescale[0].intercept;
    }
    else
    {
        volume.valueSlope = mapping.step;
        volume.valueIntercept = mapping.offset;
    }
    // 16-bit samples become stored values where they lie: each is read before its place is written.
    if (BytesPerSample(raw.type) != sizeof(int16_t))
        volume.voxels.resize(raw.grid.VoxelCount());
    int16_t* stored = volume.voxels.empty() ? raw.memory.data() : volume.voxels.data();
    ForEachSample(raw,
                  [&](size_t index, auto sample, double real)
                  {
                      if (mapping.keepsSamples)
                          stored[index] = int16_t(sample); // NOLINT(bugprone-signed-char-misuse): signed on purpose
                      else
                          stored[index] =
                              RoundToStored(((IsReal(real) ? real : survey.minimum) - mapping.offset) / mapping.step);
                  });
    if (volume.voxels.empty())
        volume.voxels = std::move(raw.memory);
    return volume;
}

std::vector<uint8_t> LabelsOf(const RawVolume& raw, const std::string& name)
{
    const int largest = raw.marksCuts ? kLabelBits + kCutBit : kLabelBits;
    std::vector<uint8_t> labels(raw.grid.VoxelCount());
    ForEachSample(raw,
                  [&](size_t index, auto, double real)
                  {
                      if (!(real >= 0 && real <= largest && IsWhole(real)))
                      {
                          const size_t perSlice = raw.grid.VoxelsPerSlice(), columns = size_t(raw.grid.sizeX);
                          throw Error(ErrorKind::Input, name + ": the value " + Number(real) + " at voxel (" +
                                                            std::to_string(index % columns) + ", " +
                                                            std::to_string(index % perSlice / columns) + ", " +
                                                            std::to_string(index / perSlice) +
                                                            ") is no label; labels are whole numbers from 0 to " +
                                                            std::to_string(largest));
                      }
                      labels[index] = uint8_t(real);
                  });
    return labels;
}
} // namespace corvane::host
