#include "scene.h"

#include <algorithm>

#include "camera_aim.h"
#include "error.h"
#include "work_elsewhere.h"

namespace corvane::host
{
namespace
{
void Require(bool done)
{
    if (!done)
        throw Error(ErrorKind::Computation, "the library refuses this volume; memory may be short");
}

// False when there is nothing to copy: the engine's labels are 0 as they are, and cost no memory as long as nobody
// writes to them.
bool CopyLabels(const KsVolumeMark& from, const KsVolumeMark& to, uint8_t bits)
{
    bool some = false;
    const size_t sliceSize = size_t(to.sizeX) * to.sizeY;
    for (uint32_t k = 0; from.slices && k < to.sizeZ; ++k)
        for (size_t n = 0; n < sliceSize; ++n)
            if (const uint8_t label = from.slices[k][n] & bits)
            {
                to.slices[k][n] = label;
                some = true;
            }
    return some;
}

template <class Renderer>
void Show(Renderer& renderer, const PatientBox& box)
{
    const float from[3] = {float(box.from.x), float(box.from.y), float(box.from.z)};
    const float to[3] = {float(box.to.x), float(box.to.y), float(box.to.z)};
    Require(renderer.SetVisibleBox(from, to));
}
} // namespace

Scene::Scene(const VolumeView& volume, uint8_t labelBits) : volume_(volume)
{
    Require(engine_.InitData(volume.Data()));
    if (CopyLabels(volume.Labels(), *engine_.GetMarkData(), labelBits))
        UpdateLabels();
    PnImageParam onePixel = {};
    Require(engine_.GetImageParams(1, 1, onePixel));
    fullSize_ = onePixel.columnSpacing;
}

Render3D& Scene::RendererBeside(const VolumePalette& tables)
{
    if (!besideHolds_)
    {
        Require(beside_.InitData(volume_.Data(), *engine_.GetMarkData(), tables));
        besideHolds_ = true;
        if (visible_)
            Show(beside_, *visible_);
    }
    return beside_;
}

void Scene::SetVisibleBox(const PatientBox& box)
{
    visible_ = box;
    Show(engine_, box);
    if (besideHolds_)
        Show(beside_, box);
}

void Scene::UpdateLabels()
{
    const WorkElsewhere elsewhere;
    engine_.UpdateMarkData();
    if (besideHolds_)
        beside_.SetVolumeMark(*engine_.GetMarkData());
}

PnImageParam Scene::Aim(const Framing& framing)
{
    engine_.SetRenderType(KsRenderParallel);
    AimCamera(engine_, framing.view);
    engine_.Zoom(float(framing.pixelSize * std::min(framing.rows, framing.columns) / fullSize_));
    PnImageParam plane = {};
    // The engine takes the number of rows for its width and that of columns for its height.
    Require(engine_.GetImageParams(int(framing.rows), int(framing.columns), plane));
    if (framing.middle)
    {
        const Vec3 shift = *framing.middle - Middle();
        plane.position[0] += shift.x;
        plane.position[1] += shift.y;
        plane.position[2] += shift.z;
    }
    return plane;
}

Vec3 Scene::Middle()
{
    float low[3] = {}, high[3] = {};
    Require(engine_.GetBoundingBox(low, high));
    const auto middle = [&](int axis) { return 0.5 * (double(low[axis]) + double(high[axis])); };
    return {middle(0), middle(1), middle(2)};
}
} // namespace corvane::host
