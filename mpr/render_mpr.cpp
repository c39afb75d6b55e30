#include "corvane/RenderMPR.h"

#include "core/guarded.h"
#include "labelling.h"
#include "plane_rows.h"
#include "resampling.h"

#include <algorithm>
#include <new>

using namespace corvane;
using namespace corvane::core;

struct RenderMPR::State
{
    KsVolumeData volume = {}; // the slice table tells whether there is a volume
    KsVolumeMark mark = {};   // likewise; kept when another volume comes, so its sizes may be other ones
    VolumeGeometry geometry = {};
};

RenderMPR::RenderMPR() : state_(new (std::nothrow) State) {}

RenderMPR::~RenderMPR() { delete state_; }

bool RenderMPR::InitData(const KsVolumeData& volume)
{
    if (!HasState(state_))
        return false;
    const KsVolumeData taken = volume; // the host's record may be what is cleared next
    state_->volume.slices = nullptr;
    if (!IsLoadable(taken))
        return false;
    state_->volume = taken;
    PrepareVolumeGeometry(taken, state_->geometry);
    return true;
}

void RenderMPR::Clear()
{
    if (!state_)
        return;
    state_->volume.slices = nullptr;
    state_->mark.slices = nullptr;
}

bool RenderMPR::GetBoundingBox(float* min3, float* max3)
{
    if (!state_ || !state_->volume.slices || !min3 || !max3)
        return false;
    Store(state_->geometry.boundingBox.min, min3);
    Store(state_->geometry.boundingBox.max, max3);
    return true;
}

bool RenderMPR::GetBoundingVertexes(float (*vertexes)[3])
{
    if (!state_ || !state_->volume.slices || !vertexes)
        return false;
    for (const Vec3f& corner : state_->geometry.corners)
        Store(corner, *vertexes++);
    return true;
}

KsVolumeMark* RenderMPR::GetMarkData() { return state_ ? &state_->mark : nullptr; }

bool RenderMPR::SetMarkData(const KsVolumeMark& mark)
{
    if (!state_)
        return false;
    const KsVolumeMark taken = mark; // the host may hand back the record of GetMarkData
    state_->mark.slices = nullptr;
    const KsVolumeData& volume = state_->volume;
    if (!taken.slices || !volume.slices || taken.sizeX != uint32_t(volume.sizeX) ||
        taken.sizeY != uint32_t(volume.sizeY) || taken.sizeZ != uint32_t(volume.sizeZ))
        return false;
    state_->mark = taken;
    return true;
}

bool RenderMPR::GetMPRSize(const double* directions, const double* center, double* origin, double& rowExtent,
                           double& columnExtent)
{
    if (!state_ || !state_->volume.slices || !directions || !center || !origin)
        return false;
    const Vec3d row = VecOf(directions), column = VecOf(directions + 3), point = VecOf(center);
    float along[8], across[8];
    for (int corner = 0; corner < 8; ++corner)
    {
        along[corner] = float(Dot(ToDouble(state_->geometry.corners[corner]), row));
        across[corner] = float(Dot(ToDouble(state_->geometry.corners[corner]), column));
    }
    const auto [lowU, highU] = std::minmax_element(along, along + 8);
    const auto [lowV, highV] = std::minmax_element(across, across + 8);
    const double u = Dot(point, row) - double(*lowU);
    const double v = Dot(point, column) - double(*lowV);
    Store(point - (u * row + v * column), origin);
    rowExtent = double(*highU - *lowU);
    columnExtent = double(*highV - *lowV);
    return true;
}

bool RenderMPR::Marking(KsImageMark* image)
{
    if (!state_ || !state_->mark.slices || !image || !image->labels || !mpr::HasPixels(image->param))
        return false;
    // Labels outlive a volume that was refused; without a volume there is nothing that they lie on.
    const LabelView labels = state_->volume.slices ? LabelViewOf(state_->mark) : LabelView{};
    mpr::LabelPlane(labels, state_->geometry, *image);
    return true;
}

bool RenderMPR::Imaging(const KsVolumeData& volume, KsImageVAL* image)
{
    if (!state_ || !state_->volume.slices || !image || !image->values || !mpr::HasPixels(image->param) ||
        !SameSizes(volume, state_->volume) || !IsLoadable(volume))
        return false;
    mpr::ResamplePlane(VolumeViewOf(volume), state_->geometry, *image);
    return true;
}

bool RenderMPR::Imaging(KsImageVAL* image) { return state_ && Imaging(state_->volume, image); }

bool RenderMPR::ImagingMIP(float, KsImageVAL*) { return false; }

bool RenderMPR::ImagingMinIP(float, KsImageVAL*) { return false; }

bool RenderMPR::ImagingAIP(float, KsImageVAL*) { return false; }
