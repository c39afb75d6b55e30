#include "state.h"

#include "core/guarded.h"
#include "core/image_plane.h"
#include "core/vec3.h"
#include "render3d/volume_slot.h"

#include <cmath>

// What is loaded, which renderer draws it, and what both are told.

using namespace corvane;
using namespace corvane::core;
using namespace corvane::engine3d;

namespace
{
// For CT in Hounsfield units: soft tissue that takes up contrast agent in red, vessels in yellow, bone in white.
constexpr KsPalettePoint kDefaultPoints[] = {
    {145, 0xFF1111, 0.05f},
    {264, 0xFFFF75, 0.17f},
    {336, 0xFFFFFF, 0.28f},
    {1448, 0xFFF5F5, 0.62f},
};

KsPalette DefaultPalette(std::vector<KsPalettePoint>& points)
{
    points.assign(std::begin(kDefaultPoints), std::end(kDefaultPoints));
    KsPalette palette;
    palette.pointCount = int32_t(points.size());
    palette.points = points.data();
    return palette;
}

float DiagonalOf(const Box& box)
{
    const Vec3d extent = ToDouble(box.max - box.min);
    return std::sqrt(float(Dot(extent, extent)));
}

// From outside along +y with all of the box in view, and from its centre towards the feet.
void AimCameras(const Box& box, camera::OrthographicCamera& orthographic, camera::PerspectiveCamera& perspective)
{
    constexpr float kEyeDistance = 1.2f; // diagonals
    const Vec3d center = 0.5 * (ToDouble(box.min) + ToDouble(box.max));
    const float diagonal = DiagonalOf(box);
    orthographic.SetEye({center.x, center.y - double(kEyeDistance * diagonal), center.z});
    orthographic.SetOrigin(center);
    orthographic.SetSize(diagonal, diagonal);
    orthographic.RotateToY();
    perspective.SetEye(center);
    perspective.RotateToZ();
    perspective.RotateToBack();
}
} // namespace

Engine3D::Engine3D() : state_(Guarded([] { return new State; })) {}

Engine3D::~Engine3D()
{
    Engine3D::Clear();
    delete state_;
}

bool Engine3D::InitData(const KsVolumeData& volume)
{
    const KsVolumeData taken = volume;
    Clear();
    if (!HasState(state_) || !render3d::CanBeDrawn(taken))
        return false;
    const bool loaded = Guarded(
        [&]
        {
            state_->volume = taken;
            BuildVolumeMark(&taken);
            std::vector<KsPalettePoint> points;
            UpateVolumePalette(DefaultPalette(points), 0);
            PrepareVolumeGeometry(taken, state_->geometry);
            // Labels of 0 everywhere are no labels, which is quicker to draw; edits are seen from UpdateMarkData on.
            return state_->render.InitData(taken, {}, state_->tables.Records());
        });
    if (!loaded)
    {
        Clear();
        return false;
    }
    AimCameras(state_->geometry.boundingBox, state_->orthographic, state_->perspective);
    if (state_->gpuEnabled)
        state_->gpuHasData = state_->gpu->InitData(state_->volume, state_->labels.Record(), state_->tables.Records());
    return true;
}

bool Engine3D::GetVolumeData(KsVolumeData& volume)
{
    if (!state_ || !state_->volume.slices)
        return false;
    volume = state_->volume;
    return true;
}

void Engine3D::Clear()
{
    if (!state_)
        return;
    state_->gpuHasData = false;
    state_->gpu->Clear();
    state_->render.Clear();
    state_->volume.slices = nullptr;
    state_->attachedVolumes.clear();
    state_->blendImages.clear();
    state_->tables.Clear();
    state_->labels.Release();
}

bool Engine3D::SupportGPU() { return state_ && state_->gpu->SupportGPU(); }

bool Engine3D::SetGPUEnabled(bool enabled)
{
    if (!state_)
        return false;
    if (enabled == state_->gpuEnabled)
        return true;
    state_->gpuEnabled = enabled && state_->gpu->SupportGPU();
    return state_->gpuEnabled == enabled;
}

bool Engine3D::IsGPUEnabled() { return state_ && state_->gpuEnabled; }

void Engine3D::SetRenderType(KsRender type)
{
    if (!state_ || (type != KsRenderParallel && type != KsRenderPerspective))
        return;
    state_->renderType = type;
    state_->active = &state_->orthographic;
    if (type == KsRenderPerspective)
        state_->active = &state_->perspective;
}

KsRender Engine3D::GetRenderType() { return state_ ? state_->renderType : KsRenderParallel; }

bool Engine3D::GetOrigin(double* origin3)
{
    if (!state_ || !origin3)
        return false;
    Store(state_->perspective.Eye(), origin3);
    return true;
}

bool Engine3D::SetOrigin(const double* origin3)
{
    if (!state_ || !origin3)
        return false;
    state_->perspective.SetEye(VecOf(origin3));
    return true;
}

KsVolumeMark* Engine3D::GetMarkData() { return state_ ? &state_->labels.Record() : nullptr; }

void Engine3D::UpdateMarkData()
{
    if (state_)
        state_->ForwardLabels();
}

bool Engine3D::GetBoundingBox(float* min3, float* max3) { return state_ && state_->render.GetBoundingBox(min3, max3); }

bool Engine3D::SetVisibleBox(const float* min3, const float* max3)
{
    if (!state_ || !min3 || !max3)
        return false;
    state_->render.SetVisibleBox(min3, max3);
    if (state_->gpuHasData)
        state_->gpu->SetVisibleBox(min3, max3);
    return true;
}

bool Engine3D::GetVisibleBox(float* min3, float* max3) { return state_ && state_->render.GetVisibleBox(min3, max3); }

int Engine3D::AttachVolumeData(const KsVolumeData& volume)
{
    if (!state_)
        return 0;
    return Guarded(
        [&]
        {
            state_->attachedVolumes.push_back(volume);
            if (state_->gpuHasData)
                state_->gpu->AttachVolumeData(volume);
            return state_->render.AttachVolumeData(volume);
        });
}

void Engine3D::ClearAttachVolume()
{
    if (!state_)
        return;
    state_->attachedVolumes.clear();
    if (state_->gpuHasData)
        state_->gpu->ClearAttachVolume();
    state_->render.ClearAttachVolume();
}

void Engine3D::SetBlendImage(KsBlendImage* images, int count)
{
    if (!state_)
        return;
    Guarded(
        [&]
        {
            std::vector<KsBlendImage> taken;
            if (images && count > 0)
                taken.assign(images, images + count);
            state_->blendImages = std::move(taken);
            return true;
        });
    KsBlendImage* const kept = state_->blendImages.data();
    state_->render.SetBlendImage(kept, int(state_->blendImages.size()));
    if (state_->gpuHasData)
        state_->gpu->SetBlendImage(kept, int(state_->blendImages.size()));
}

// All labels 0 for a volume; without a volume there are none. Throws what the allocator throws.
bool Engine3D::BuildVolumeMark(const KsVolumeData* volume)
{
    state_->labels.Build(volume);
    return true;
}

void EngineState::ForwardPalette()
{
    render.SetPalette(tables.Records());
    if (gpuHasData)
        gpu->SetPalette(tables.Records());
}

void EngineState::ForwardLabels()
{
    render.SetVolumeMark(labels.Record());
    if (gpuHasData)
        gpu->SetVolumeMark(labels.Record());
}
