#include "state.h"

#include "core/guarded.h"
#include "core/image_plane.h"
#include "slab_planes.h"

#include <algorithm>
#include <optional>

// Pictures: builds the record around the host's buffer, lets a camera place it, chooses the renderer and hands the
// record back.

using namespace corvane;
using namespace corvane::core;
using namespace corvane::engine3d;

namespace
{
constexpr int16_t kBackground = -1024; // stored value of air

// Geometry of an image of `width` rows and `height` columns; empty for sizes that are not above 0 or hold too many
// pixels, which the renderers refuse.
PnImageParam ImageOf(const camera::Camera& camera, int width, int height)
{
    PnImageParam param = {};
    if (int64_t(width) * height <= int64_t(UINT32_MAX))
        camera.GetImageParams(width, height, param);
    return param;
}

size_t PixelsOf(const PnImageParam& param) { return size_t(param.rows) * param.columns; }

// A projection through the whole volume: operation(image) renders.
template <class Operation>
bool ProjectBySize(const camera::Camera& camera, int width, int height, int16_t* values, KsImageVAL* image,
                   const Operation& operation)
{
    if (!values)
        return false;
    KsImageVAL val = {values, ImageOf(camera, width, height)};
    std::fill_n(values, PixelsOf(val.param), kBackground);
    const bool done = operation(val);
    if (image)
        *image = val;
    return done;
}

// Sizes an image for a plane; `val` receives a view of it.
bool PrepareImage(const PnImageParam& plane, KsImageData& image, KsImageVAL& val)
{
    if (!SizeFor(plane, image))
        return false;
    val = {image.values, plane};
    return true;
}
} // namespace

bool Engine3D::GetParamsOfVR(int width, int height, PnImageParam& param)
{
    return state_ && state_->orthographic.GetImageParams(width, height, param);
}

// One operation with two names: what a derived class makes of the other one is not asked.
bool Engine3D::GetImageParams(int width, int height, PnImageParam& param)
{
    return Engine3D::GetParamsOfVR(width, height, param);
}

bool Engine3D::Imaging(int width, int height, uint32_t* pixels, bool unused, PnImageRGB* image, int volumeIndex)
{
    if (state_ && state_->renderType == KsRenderPerspective)
        return ImagingVE(width, height, pixels, state_->viewAngle, unused, image);
    return ImagingVR(width, height, pixels, unused, image, volumeIndex);
}

bool Engine3D::ImagingVR(int width, int height, uint32_t* pixels, bool, PnImageRGB* image, int volumeIndex)
{
    if (!state_ || !pixels)
        return false;
    PnImageRGB rgb = {pixels, ImageOf(state_->orthographic, width, height)};
    if (rgb.param.rows == 0 && width != 0 && height != 0)
        return false; // an image without pixels is fine, one that cannot be is not
    std::fill_n(pixels, PixelsOf(rgb.param), 0u);
    const bool done = state_->DrawsOnGpu(BlendImages::Sent) ? state_->gpu->ImagingVR(&rgb, volumeIndex)
                                                            : state_->render.ImagingVR(&rgb, volumeIndex);
    if (image)
        *image = rgb;
    return done;
}

bool Engine3D::ImagingVE(int width, int height, uint32_t* pixels, float viewAngle, bool, PnImageRGB* image)
{
    if (!state_)
        return false;
    KsViewPoint view;
    Store(ToFloat(state_->perspective.Eye()), view.eye);
    Store(ToFloat(state_->perspective.Direction()), view.direction);
    Store(ToFloat(state_->perspective.Up()), view.up);
    PnImageRGB rgb = {pixels, ImageOf(state_->perspective, width, height)};
    if (state_->DrawsOnGpu(BlendImages::NotSent))
        state_->gpu->ImagingVE(view, viewAngle, &rgb);
    else
        state_->render.ImagingVE(view, viewAngle, &rgb);
    if (image)
        *image = rgb;
    return true; // whatever the renderer said: hosts count on it
}

bool Engine3D::ImagingMIP(const PnImageParam& plane, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return BuildImageParamVAL(plane, thickness, image, val) && state_->render.ImagingMIP(&val, thickness);
}

bool Engine3D::ImagingMIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsCamera camera;
    KsImageVAL val;
    return BuildSliceImageVAL(slice, thickness, image, camera, val) &&
           state_->render.ImagingMIP(camera, float(slice.sideLength), thickness, &val);
}

bool Engine3D::ImagingMIP(int width, int height, int16_t* values, bool, KsImageVAL* image)
{
    return state_ && ProjectBySize(state_->orthographic, width, height, values, image,
                                   [&](KsImageVAL& val) { return state_->render.ImagingMIP(&val); });
}

bool Engine3D::ImagingAIP(const PnImageParam& plane, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return BuildImageParamVAL(plane, thickness, image, val) && state_->render.ImagingAIP(&val, thickness);
}

bool Engine3D::ImagingAIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsCamera camera;
    KsImageVAL val;
    return BuildSliceImageVAL(slice, thickness, image, camera, val) &&
           state_->render.ImagingAIP(camera, float(slice.sideLength), thickness, &val);
}

bool Engine3D::ImagingAIP(int width, int height, int16_t* values, bool, KsImageVAL* image)
{
    return state_ && ProjectBySize(state_->orthographic, width, height, values, image,
                                   [&](KsImageVAL& val) { return state_->render.ImagingAIP(&val); });
}

bool Engine3D::ImagingMinIP(const PnImageParam& plane, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return BuildImageParamVAL(plane, thickness, image, val) && state_->render.ImagingMinIP(&val, thickness);
}

bool Engine3D::ImagingMinIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsCamera camera;
    KsImageVAL val;
    return BuildSliceImageVAL(slice, thickness, image, camera, val) &&
           state_->render.ImagingMinIP(camera, float(slice.sideLength), thickness, &val);
}

bool Engine3D::ImagingMinIP(int width, int height, int16_t* values, bool, KsImageVAL* image)
{
    return state_ && ProjectBySize(state_->orthographic, width, height, values, image,
                                   [&](KsImageVAL& val) { return state_->render.ImagingMinIP(&val); });
}

// Sizes the image of a slice and places the camera that looks through its slab.
bool Engine3D::BuildSliceImageVAL(KsSliceParam slice, float thickness, KsImageData* image, KsCamera& camera,
                                  KsImageVAL& val)
{
    KsVolumeData volume;
    if (!image || !GetVolumeData(volume))
        return false;
    return Guarded(
        [&]
        {
            const std::optional<PnImageParam> plane = ImageOfSlice(slice, volume);
            if (!plane || !PrepareImage(*plane, *image, val))
                return false;
            camera = CameraOfSlice(slice, thickness);
            return true;
        });
}

// Sizes the image of a plane and places its slab.
bool Engine3D::BuildImageParamVAL(PnImageParam plane, float thickness, KsImageData* image, KsImageVAL& val)
{
    KsVolumeData volume;
    if (!image || !GetVolumeData(volume))
        return false;
    return Guarded(
        [&]
        {
            if (!PrepareImage(plane, *image, val))
                return false;
            val.param = StartOfSlab(plane, thickness);
            return true;
        });
}

bool EngineState::DrawsOnGpu(BlendImages blends)
{
    if (gpuEnabled && !gpuHasData)
    {
        gpuHasData = gpu->InitData(volume, labels.Record(), tables.Records());
        if (gpuHasData && blends == BlendImages::Sent)
            gpu->SetBlendImage(blendImages.data(), int(blendImages.size()));
        if (gpuHasData)
            for (const KsVolumeData& attached : attachedVolumes)
                gpu->AttachVolumeData(attached);
    }
    return gpuEnabled && gpuHasData;
}
