#include "corvane/Render3D.h"

#include "blend_layers.h"
#include "core/guarded.h"
#include "endoscopy.h"
#include "mark_dump.h"
#include "projection.h"
#include "volume_rendering.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <new>
#include <vector>

using namespace corvane;
using namespace corvane::render3d;

struct Render3D::State
{
    VolumeSlot main;
    VolumePalette palette = {};
    std::vector<VolumeSlot> attached;
    BlendImages blends;
};

namespace
{
// The line that tells hosts, and people at a console, how long a frame took.
class Stopwatch
{
public:
    void Print(const char* format) const
    {
        using namespace std::chrono;
        const auto elapsed = duration_cast<milliseconds>(steady_clock::now() - start_).count();
        std::printf(format, static_cast<unsigned long long>(elapsed));
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

constexpr char kVolumeRenderingLine[] = "Render3D::VR take time %llu\n";
constexpr char kProjectionLine[] = "RenderIP::IP take time %llu\n";
constexpr char kEndoscopyLine[] = "Render3D::VE take time %llu\n";

// Rows and columns whose product, and every sum of it, fits 64 bits.
bool CanBeCounted(const PnImageParam& param) { return param.rows <= INT32_MAX && param.columns <= INT32_MAX; }

constexpr float kThroughTheVolume = 10000.0f; // mm
constexpr float kLeastThickness = 0.1f;       // mm
constexpr float kLeastFieldSize = 1.0f;       // mm

enum class Labels
{
    Honoured,
    Ignored,
};

bool CanProject(const VolumeSlot& slot, float thickness, const KsImageVAL* image)
{
    return slot.volume.slices && image && image->values && image->param.rows >= 1 && image->param.columns >= 1 &&
           CanBeCounted(image->param) && thickness >= kLeastThickness;
}

// Projects onto the image's own geometry.
bool ProjectImage(ProjectionKind kind, VolumeSlot& slot, const VolumePalette& palette, Labels labels, float thickness,
                  KsImageVAL* image)
{
    return CanProject(slot, thickness, image) &&
           core::Guarded(
               [&]
               {
                   UpdateSlot(slot, palette);
                   const Stopwatch stopwatch;
                   Project(kind, slot, labels == Labels::Honoured ? &palette : nullptr, thickness, *image);
                   stopwatch.Print(kProjectionLine);
                   return true;
               });
}

// Projects onto the image of a camera, whose geometry it writes.
bool ProjectView(ProjectionKind kind, VolumeSlot& slot, const VolumePalette& palette, const KsCamera& camera,
                 float fieldSize, float thickness, KsImageVAL* image)
{
    if (!CanProject(slot, thickness, image) || !(fieldSize >= kLeastFieldSize))
        return false;
    PlaceImage(camera, fieldSize, image->param);
    return ProjectImage(kind, slot, palette, Labels::Honoured, thickness, image);
}

void DrawVolume(VolumeSlot& slot, const VolumePalette& palette, const BlendImages& blends, const PnImageRGB& image)
{
    UpdateSlot(slot, palette);
    const Stopwatch stopwatch;
    RenderVolume(slot, palette, blends, image);
    stopwatch.Print(kVolumeRenderingLine);
}
} // namespace

Render3D::Render3D() : state_(new (std::nothrow) State) {}

Render3D::~Render3D() { delete state_; }

Render3D::Render3D(const Render3D& other) : state_(nullptr)
{
    core::Guarded(
        [&]
        {
            state_ = other.state_ ? new State(*other.state_) : nullptr;
            return true;
        });
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the copy is complete before the old state goes
Render3D& Render3D::operator=(const Render3D& other)
{
    core::Guarded(
        [&]
        {
            State* copy = other.state_ ? new State(*other.state_) : nullptr;
            delete state_;
            state_ = copy;
            return true;
        });
    return *this;
}

bool Render3D::InitData(const KsVolumeData& volume, const KsVolumeMark& mark, const VolumePalette& palette)
{
    const KsVolumeData takenVolume = volume; // the records may be what Clear forgets
    const KsVolumeMark takenMark = mark;
    const VolumePalette takenPalette = palette;
    Clear();
    if (!core::HasState(state_) || !SetVolumeData(takenVolume))
        return false;
    state_->main.mark = takenMark;
    state_->palette = takenPalette;
    return true;
}

void Render3D::Clear()
{
    if (!state_)
        return;
    ReleaseSlot(state_->main);
    state_->palette = {};
    state_->attached.clear();
    state_->blends = {};
}

void Render3D::SetVolumeMark(const KsVolumeMark& mark)
{
    if (!state_)
        return;
    state_->main.mark = mark;
    state_->main.dataChanged = true;
    for (VolumeSlot& slot : state_->attached)
    {
        slot.mark = state_->main.mark;
        slot.dataChanged = true;
    }
    DumpMark(state_->main.mark);
}

bool Render3D::GetBoundingBox(float* const min3, float* const max3)
{
    if (!state_ || !state_->main.volume.slices || !min3 || !max3)
        return false;
    core::Store(state_->main.geometry.boundingBox.min, min3);
    core::Store(state_->main.geometry.boundingBox.max, max3);
    return true;
}

bool Render3D::SetVisibleBox(const float* const a3, const float* const b3)
{
    if (!state_ || !state_->main.volume.slices || !a3 || !b3)
        return false;
    core::Box& box = state_->main.geometry.visibleBox;
    box.min = {std::min(a3[0], b3[0]), std::min(a3[1], b3[1]), std::min(a3[2], b3[2])};
    box.max = {std::max(a3[0], b3[0]), std::max(a3[1], b3[1]), std::max(a3[2], b3[2])};
    return true;
}

bool Render3D::GetVisibleBox(float* const min3, float* const max3)
{
    if (!state_ || !state_->main.volume.slices || !min3 || !max3)
        return false;
    core::Store(state_->main.geometry.visibleBox.min, min3);
    core::Store(state_->main.geometry.visibleBox.max, max3);
    return true;
}

bool Render3D::ImagingVR(PnImageRGB* image, int volumeIndex)
{
    if (!state_ || !state_->main.volume.slices || !image || !image->pixels || !CanBeCounted(image->param))
        return false;
    const bool attached = volumeIndex >= 1 && size_t(volumeIndex) <= state_->attached.size();
    VolumeSlot& slot = attached ? state_->attached[size_t(volumeIndex) - 1] : state_->main;
    return core::Guarded(
        [&]
        {
            DrawVolume(slot, state_->palette, state_->blends, *image);
            return true;
        });
}

bool Render3D::ImagingVR(KsCamera camera, float fieldSize, PnImageRGB* image)
{
    if (!state_ || !state_->main.volume.slices || !image || !image->pixels || !(fieldSize >= kLeastFieldSize) ||
        image->param.rows < 1 || image->param.columns < 1)
        return false;
    PlaceImage(camera, fieldSize, image->param);
    return ImagingVR(image, 0);
}

bool Render3D::ImagingMIP(KsImageVAL* image, float thickness)
{
    return state_ &&
           ProjectImage(ProjectionKind::Maximum, state_->main, state_->palette, Labels::Ignored, thickness, image);
}

bool Render3D::ImagingMIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image)
{
    return state_ &&
           ProjectView(ProjectionKind::Maximum, state_->main, state_->palette, camera, fieldSize, thickness, image);
}

bool Render3D::ImagingMIP(KsCamera camera, float fieldSize, KsImageVAL* image)
{
    return ImagingMIP(camera, fieldSize, kThroughTheVolume, image);
}

bool Render3D::ImagingMIP(KsImageVAL* image)
{
    return state_ && ProjectImage(ProjectionKind::Maximum, state_->main, state_->palette, Labels::Honoured,
                                  kThroughTheVolume, image);
}

bool Render3D::ImagingAIP(KsImageVAL* image, float thickness)
{
    return state_ &&
           ProjectImage(ProjectionKind::Average, state_->main, state_->palette, Labels::Ignored, thickness, image);
}

bool Render3D::ImagingAIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image)
{
    return state_ &&
           ProjectView(ProjectionKind::Average, state_->main, state_->palette, camera, fieldSize, thickness, image);
}

bool Render3D::ImagingAIP(KsCamera camera, float fieldSize, KsImageVAL* image)
{
    return ImagingAIP(camera, fieldSize, kThroughTheVolume, image);
}

bool Render3D::ImagingAIP(KsImageVAL* image)
{
    return state_ && ProjectImage(ProjectionKind::Average, state_->main, state_->palette, Labels::Honoured,
                                  kThroughTheVolume, image);
}

bool Render3D::ImagingMinIP(KsImageVAL* image, float thickness)
{
    return state_ &&
           ProjectImage(ProjectionKind::Minimum, state_->main, state_->palette, Labels::Ignored, thickness, image);
}

bool Render3D::ImagingMinIP(KsCamera camera, float fieldSize, float thickness, KsImageVAL* image)
{
    return state_ &&
           ProjectView(ProjectionKind::Minimum, state_->main, state_->palette, camera, fieldSize, thickness, image);
}

bool Render3D::ImagingMinIP(KsCamera camera, float fieldSize, KsImageVAL* image)
{
    return ImagingMinIP(camera, fieldSize, kThroughTheVolume, image);
}

bool Render3D::ImagingMinIP(KsImageVAL* image)
{
    return state_ && ProjectImage(ProjectionKind::Minimum, state_->main, state_->palette, Labels::Honoured,
                                  kThroughTheVolume, image);
}

bool Render3D::ImagingVE(KsViewPoint view, float fieldOfView, PnImageRGB* image)
{
    const float angle = std::clamp(fieldOfView, 5.0f, 175.0f);
    if (!state_ || !state_->main.volume.slices || !image || !image->pixels || image->param.rows < 1 ||
        image->param.columns < 1 || !CanBeCounted(image->param))
        return false;
    return core::Guarded(
        [&]
        {
            UpdateSlot(state_->main, state_->palette);
            PlaceEndoscopy(view, angle, state_->main.geometry.minSpacing, image->param);
            const Stopwatch stopwatch;
            RenderEndoscopy(state_->main, state_->palette, core::VecOf(view.eye), *image);
            stopwatch.Print(kEndoscopyLine);
            return true;
        });
}

bool Render3D::SetPalette(const VolumePalette& palette)
{
    if (!state_)
        return false;
    state_->palette = palette;
    state_->main.dataChanged = true;
    for (VolumeSlot& slot : state_->attached)
        slot.dataChanged = true;
    return true;
}

int Render3D::AttachVolumeData(const KsVolumeData& volume)
{
    if (!state_ || !state_->main.volume.slices || !core::SameSizes(volume, state_->main.volume))
        return 0;
    return core::Guarded(
        [&]
        {
            VolumeSlot slot;
            if (!LoadSlot(volume, state_->main.mark, slot))
                return 0;
            state_->attached.push_back(std::move(slot));
            return int(state_->attached.size());
        });
}

void Render3D::ClearAttachVolume()
{
    if (state_)
        state_->attached.clear();
}

void Render3D::SetBlendImage(KsBlendImage* images, int count)
{
    if (state_)
        state_->blends = TakeBlendImages(images, count);
}

bool Render3D::SetVolumeData(const KsVolumeData& volume)
{
    return core::Guarded(
        [&]
        {
            // Corners and boxes of a volume whose spacing is not positive are those of the volume before it.
            VolumeSlot slot;
            slot.geometry = state_->main.geometry;
            if (!LoadSlot(volume, {}, slot))
                return false;
            state_->main = std::move(slot);
            return true;
        });
}
