#include "recording_trevik.h"

#include <algorithm>

namespace corvane::tests::gpu
{
Recording& TheRecording()
{
    static Recording recording;
    return recording;
}

namespace
{
Call CallOf(const char* operation, const void* renderer)
{
    Call call;
    call.operation = operation;
    call.renderer = renderer;
    return call;
}

void Record(const Call& call)
{
    TheRecording().calls.push_back(call);
    const std::function<void(const Call&)> during = TheRecording().during; // which it may replace
    if (during)
        during(call);
}

void CopyLabels(const KsVolumeMark& mark, Call& call)
{
    call.mark = mark;
    const size_t sliceSize = size_t(mark.sizeX) * mark.sizeY;
    for (uint32_t k = 0; mark.slices && k < mark.sizeZ; ++k)
        call.labels.insert(call.labels.end(), mark.slices[k], mark.slices[k] + sliceSize);
}

void CopyTables(const VolumePalette& palette, Call& call)
{
    call.palette = palette;
    for (int label = 0; label < 64; ++label)
    {
        const VolumePaletteEntry* const entry = palette.entries[label];
        if (entry)
            call.tables.push_back({label,
                                   *entry,
                                   {entry->colours, entry->colours + 3 * size_t(entry->size)},
                                   {entry->opacities, entry->opacities + entry->size}});
    }
    if (palette.opacitySums)
        call.sums.assign(palette.opacitySums, palette.opacitySums + palette.sumLength);
}

void Paint(PnImageRGB& image, uint32_t paint)
{
    const size_t count = image.pixels ? size_t(image.param.rows) * image.param.columns : 0;
    for (size_t n = 0; n < count; ++n)
        image.pixels[n] = paint + uint32_t(n);
    image.param.position[2] = kWrittenPosition;
}
} // namespace
} // namespace corvane::tests::gpu

using namespace corvane::tests::gpu;

// Lost memory if the destructor is not called.
struct Cuda3D::State
{
    std::vector<int> memory = std::vector<int>(16);
};

Cuda3D::Cuda3D() : state_(new State) { Record(CallOf("create", this)); }

Cuda3D::~Cuda3D()
{
    Record(CallOf("destroy", this));
    delete state_;
}

bool Cuda3D::SupportGPU()
{
    Record(CallOf("SupportGPU", this));
    return TheRecording().supportsGpu;
}

bool Cuda3D::InitData(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette)
{
    Call call = CallOf("InitData", this);
    call.volume = volume;
    CopyLabels(mark, call);
    CopyTables(palette, call);
    Record(call);
    return TheRecording().takesVolumes;
}

bool Cuda3D::SetPalette(const VolumePalette& palette)
{
    Call call = CallOf("SetPalette", this);
    CopyTables(palette, call);
    Record(call);
    return false; // nobody asks
}

void Cuda3D::SetVolumeMark(const KsVolumeMark& mark)
{
    Call call = CallOf("SetVolumeMark", this);
    CopyLabels(mark, call);
    Record(call);
}

bool Cuda3D::SetVisibleBox(const float* min3, const float* max3)
{
    Call call = CallOf("SetVisibleBox", this);
    std::copy_n(min3, 3, call.box.begin());
    std::copy_n(max3, 3, call.box.begin() + 3);
    Record(call);
    return false; // nobody asks
}

bool Cuda3D::GetVisibleBox(float*, float*)
{
    Record(CallOf("GetVisibleBox", this));
    return false;
}

void Cuda3D::Clear() { Record(CallOf("Clear", this)); }

bool Cuda3D::ImagingVR(PnImageRGB* image, int volumeIndex)
{
    Call call = CallOf("ImagingVR", this);
    call.image = *image;
    call.volumeIndex = volumeIndex;
    Record(call);
    Paint(*image, kVolumePaint);
    return TheRecording().drawsVolumes;
}

bool Cuda3D::ImagingVE(KsViewPoint view, float viewAngle, PnImageRGB* image)
{
    Call call = CallOf("ImagingVE", this);
    call.image = *image;
    call.view = view;
    call.viewAngle = viewAngle;
    Record(call);
    Paint(*image, kEndoscopyPaint);
    return TheRecording().drawsEndoscopies;
}

int Cuda3D::AttachVolumeData(const KsVolumeData& volume)
{
    Call call = CallOf("AttachVolumeData", this);
    call.volume = volume;
    Record(call);
    return 77; // nobody asks
}

void Cuda3D::ClearAttachVolume() { Record(CallOf("ClearAttachVolume", this)); }

void Cuda3D::SetBlendImage(KsBlendImage* images, int count)
{
    Call call = CallOf("SetBlendImage", this);
    call.blendPointer = images;
    call.blendCount = count;
    if (images && count > 0)
        call.blends.assign(images, images + count);
    Record(call);
}
