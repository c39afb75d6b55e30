#include "corvane/EngineMPR.h"

#include "core/guarded.h"
#include "core/image_plane.h"
#include "core/vec3.h"
#include "corvane/RenderMPR.h"
#include "plane_frames.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>

using namespace corvane;
using namespace corvane::core;

struct EngineMPR::State
{
    KsVolumeData volume = {}; // the slice table tells whether there is a volume
    RenderMPR render;
    mpr::PlaneFrames planes;
    float vertexes[8][3] = {}; // patient corners of the volume
};

namespace
{
constexpr float kLeastSliceSpacing = 0.01f; // mm

// Moves the point that the planes share to the middle of the volume's box, where there is one.
void MoveToCenter(RenderMPR& render, EngineMPR& engine)
{
    float low[3], high[3];
    if (!render.GetBoundingBox(low, high))
        return;
    double center[3];
    for (int axis = 0; axis < 3; ++axis)
        center[axis] = double(low[axis] + high[axis]) * 0.5;
    engine.SetOrigin(center);
}

// Geometry of the image that covers the volume on a plane through a point; nothing when it cannot be counted in
// pixels.
std::optional<PnImageParam> CoveringImage(RenderMPR& render, const KsPlaneFrame& frame, const double* center,
                                          double spacing)
{
    PnImageParam param = {};
    CopyDoubles(frame.rowDirection, param.rowDirection, 3);
    CopyDoubles(frame.columnDirection, param.columnDirection, 3);
    double directions[6];
    CopyDoubles(frame.rowDirection, directions, 3);
    CopyDoubles(frame.columnDirection, directions + 3, 3);
    double rowExtent, columnExtent;
    if (!render.GetMPRSize(directions, center, param.position, rowExtent, columnExtent))
        return std::nullopt;
    const std::optional<uint32_t> rows = PixelCount(columnExtent, spacing);
    const std::optional<uint32_t> columns = PixelCount(rowExtent, spacing);
    if (!rows || !columns)
        return std::nullopt;
    param.rows = *rows;
    param.columns = *columns;
    param.rowSpacing = param.columnSpacing = spacing;
    return param;
}

// Sizes an image for a geometry and makes a view of it for the renderer.
bool PrepareImage(const std::optional<PnImageParam>& param, KsImageData* image, KsImageVAL& val)
{
    return Guarded(
        [&]
        {
            if (!image || !param || !SizeFor(*param, *image))
                return false;
            val = {image->values, *param};
            return true;
        });
}

// A count of slices: a quotient of single-precision numbers, truncated; 0 for what is no number, and limited to what
// the result holds.
int SliceCount(float quotient)
{
    if (!(quotient > -2147483648.0f))
        return std::isnan(quotient) ? 0 : INT32_MIN;
    return quotient < 2147483648.0f ? int(quotient) : INT32_MAX;
}
} // namespace

EngineMPR::EngineMPR() : state_(new (std::nothrow) State) {}

EngineMPR::~EngineMPR() { delete state_; }

bool EngineMPR::InitData(const KsVolumeData& volume)
{
    if (!HasState(state_))
        return false;
    state_->volume = volume;
    ResetScreen();
    if (!state_->render.InitData(volume))
    {
        state_->volume.slices = nullptr;
        return false;
    }
    state_->render.GetBoundingVertexes(state_->vertexes);
    MoveToCenter(state_->render, *this);
    return true;
}

void EngineMPR::Clear()
{
    if (!state_)
        return;
    state_->volume.slices = nullptr;
    state_->render.Clear();
}

bool EngineMPR::SetMarkData(const KsVolumeMark& mark) { return state_ && state_->render.SetMarkData(mark); }

bool EngineMPR::GetOrigin(double* origin)
{
    if (!state_ || !origin)
        return false;
    CopyDoubles(state_->planes.Params().origin, origin, 3);
    return true;
}

bool EngineMPR::SetOrigin(const double* origin)
{
    if (!state_ || !origin)
        return false;
    CopyDoubles(origin, state_->planes.Params().origin, 3);
    return true;
}

bool EngineMPR::GetDirect(KsMPRType type, double* normal)
{
    const KsPlaneFrame* frame = state_ ? state_->planes.FrameOf(type) : nullptr;
    if (!frame || !normal)
        return false;
    CopyDoubles(frame->normal, normal, 3);
    return true;
}

bool EngineMPR::GetParams(KsMPRParam& param)
{
    if (!state_)
        return false;
    param = state_->planes.Params();
    return true;
}

bool EngineMPR::SetParams(const KsMPRParam& param)
{
    if (!state_)
        return false;
    state_->planes.Params() = param;
    return true;
}

bool EngineMPR::Rotate(KsMPRType type, float angle) { return state_ && state_->planes.Rotate(type, angle); }

bool EngineMPR::Reset()
{
    if (!state_)
        return false;
    ResetScreen();
    MoveToCenter(state_->render, *this);
    return true;
}

bool EngineMPR::Marking(KsMPRType type, KsMarkData* image)
{
    PnImageParam param;
    if (!image || !GetImageParam(type, param) || !Guarded([&] { return SizeFor(param, *image); }))
        return false;
    KsImageMark view = {image->labels, param};
    return state_->render.Marking(&view);
}

bool EngineMPR::Imaging(const PnImageParam& param, KsImageData* image)
{
    const PnImageParam taken = param; // may be the image's own
    KsImageVAL val;
    return state_ && PrepareImage(taken, image, val) && state_->render.Imaging(&val);
}

bool EngineMPR::Imaging(KsSliceParam slice, KsImageData* image)
{
    KsImageVAL val;
    return state_ && PrepareImage(ImageOfSlice(slice, state_->volume), image, val) && state_->render.Imaging(&val);
}

bool EngineMPR::Imaging(KsMPRType type, const KsVolumeData& volume, KsImageData* image)
{
    KsImageVAL val;
    return CreateImageVAL(type, image, val) && state_->render.Imaging(volume, &val);
}

bool EngineMPR::Imaging(KsMPRType type, KsImageData* image)
{
    KsImageVAL val;
    return CreateImageVAL(type, image, val) && state_->render.Imaging(&val);
}

bool EngineMPR::ImagingMIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return state_ && PrepareImage(ImageOfSlice(slice, state_->volume), image, val) &&
           state_->render.ImagingMIP(thickness, &val);
}

bool EngineMPR::ImagingMIP(KsMPRType type, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return CreateImageVAL(type, image, val) && state_->render.ImagingMIP(thickness, &val);
}

bool EngineMPR::ImagingMinIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return state_ && PrepareImage(ImageOfSlice(slice, state_->volume), image, val) &&
           state_->render.ImagingMinIP(thickness, &val);
}

bool EngineMPR::ImagingMinIP(KsMPRType type, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return CreateImageVAL(type, image, val) && state_->render.ImagingMinIP(thickness, &val);
}

bool EngineMPR::ImagingAIP(KsSliceParam slice, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return state_ && PrepareImage(ImageOfSlice(slice, state_->volume), image, val) &&
           state_->render.ImagingAIP(thickness, &val);
}

bool EngineMPR::ImagingAIP(KsMPRType type, float thickness, KsImageData* image)
{
    KsImageVAL val;
    return CreateImageVAL(type, image, val) && state_->render.ImagingAIP(thickness, &val);
}

bool EngineMPR::GetImageParam(KsMPRType type, PnImageParam& param)
{
    const KsPlaneFrame* frame = state_ ? state_->planes.FrameOf(type) : nullptr;
    if (!frame || !state_->volume.slices)
        return false;
    const std::optional<PnImageParam> covering =
        CoveringImage(state_->render, *frame, state_->planes.Params().origin, PixelSpacing(state_->volume));
    if (covering)
        param = *covering;
    return covering.has_value();
}

int EngineMPR::GetImageCount(KsMPRType type, float spacing, PnImageParam* param)
{
    const KsPlaneFrame* frame = state_ ? state_->planes.FrameOf(type) : nullptr;
    if (!frame || !state_->volume.slices || !(spacing >= kLeastSliceSpacing))
        return 0;
    const Vec3d origin = VecOf(state_->planes.Params().origin), normal = VecOf(frame->normal);
    float distances[8];
    for (int corner = 0; corner < 8; ++corner)
        distances[corner] = float(Dot(ToDouble(VecOf(state_->vertexes[corner])) - origin, normal));
    const auto [nearest, farthest] = std::minmax_element(distances, distances + 8);

    // With the origin inside the volume the start is a number of slices and used as if it were millimetres. Hosts
    // count on it.
    const bool inside = *nearest * *farthest < 0.0f;
    const float start = inside ? float(SliceCount(*nearest / spacing)) : *nearest;
    const int count = SliceCount((*farthest - start) / spacing);
    if (count < 1 || !param)
        return count;

    double center[3];
    Store(origin + double(start) * normal, center);
    const std::optional<PnImageParam> covering =
        CoveringImage(state_->render, *frame, center, PixelSpacing(state_->volume));
    if (!covering)
        return 0;
    *param = *covering;
    return count;
}

void EngineMPR::ResetScreen() { state_->planes.Reset(); }

bool EngineMPR::CreateImageVAL(KsMPRType type, KsImageData* image, KsImageVAL& val)
{
    PnImageParam param;
    return GetImageParam(type, param) && PrepareImage(param, image, val);
}
