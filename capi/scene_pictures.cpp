#include "label_plane.h"
#include "scene.h"

#include <algorithm>
#include <cmath>

// The pictures of a scene.

namespace corvane::capi
{
namespace
{
uint64_t PixelCount(const PnImageParam& plane) { return uint64_t(plane.rows) * plane.columns; }

// Turns the camera of an engine to one side of the patient.
void LookFrom(Engine3D& engine, int32_t side)
{
    if (side == CORVANE_FROM_FRONT || side == CORVANE_FROM_BACK)
        engine.RotateToCoronal();
    else if (side == CORVANE_FROM_LEFT || side == CORVANE_FROM_RIGHT)
        engine.RotateToSagittal();
    else
        engine.RotateToAxial();
    if (side == CORVANE_FROM_BACK || side == CORVANE_FROM_RIGHT || side == CORVANE_FROM_HEAD)
        engine.RotateToBack();
}

// The plane moved to where the rays of its slab start: half a thickness against its normal. The normal is divided by
// its length plus 1e-6, as Engine3D does for its slabs.
PnImageParam StartOfSlab(const PnImageParam& plane, float thickness)
{
    const double *const r = plane.rowDirection, *const c = plane.columnDirection;
    const double normal[3] = {r[1] * c[2] - r[2] * c[1], r[2] * c[0] - r[0] * c[2], r[0] * c[1] - r[1] * c[0]};
    const double length = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]) + 1e-6;
    PnImageParam start = plane;
    for (int axis = 0; axis < 3; ++axis)
        start.position[axis] -= double(thickness) / 2 * (normal[axis] / length);
    return start;
}
} // namespace

bool Scene::ViewPlane(const CorvaneView& view, uint32_t rows, uint32_t columns, PnImageParam& plane)
{
    LookFrom(camera_, view.from);
    camera_.RotateH(view.right);
    camera_.RotateV(view.up);
    camera_.RotateScreen(view.screen);
    camera_.Zoom(view.extent);
    return camera_.GetParamsOfVR(int(rows), int(columns), plane);
}

bool Scene::Render(const PnImageParam& plane, uint32_t* pixels)
{
    std::fill_n(pixels, PixelCount(plane), 0u);
    PnImageRGB image = {pixels, plane};
    return render_.ImagingVR(&image, 0);
}

bool Scene::Endoscopy(const KsViewPoint& view, float viewAngle, uint32_t rows, uint32_t columns, uint32_t* pixels,
                      PnImageParam* plane)
{
    PnImageRGB image = {pixels, {}};
    image.param.rows = rows;
    image.param.columns = columns;
    std::fill_n(pixels, PixelCount(image.param), 0u);
    if (!render_.ImagingVE(view, viewAngle, &image))
        return false;
    if (plane)
        *plane = image.param;
    return true;
}

bool Scene::Project(int32_t kind, const PnImageParam& plane, int16_t* values)
{
    KsImageVAL image = {values, plane};
    return kind == CORVANE_MAXIMUM ? render_.ImagingMIP(&image)
           : kind == CORVANE_MEAN  ? render_.ImagingAIP(&image)
                                   : render_.ImagingMinIP(&image);
}

bool Scene::Slab(int32_t kind, const PnImageParam& plane, float thickness, int16_t* values)
{
    KsImageVAL image = {values, StartOfSlab(plane, thickness)};
    float low[3], high[3];
    if (!render_.GetVisibleBox(low, high) || !render_.SetVisibleBox(wholeLow_, wholeHigh_))
        return false;
    const bool done = kind == CORVANE_MAXIMUM ? render_.ImagingMIP(&image, thickness)
                      : kind == CORVANE_MEAN  ? render_.ImagingAIP(&image, thickness)
                                              : render_.ImagingMinIP(&image, thickness);
    return render_.SetVisibleBox(low, high) && done;
}

bool Scene::Reslice(const PnImageParam& plane, int16_t* values)
{
    KsImageVAL image = {values, plane};
    return reslice_.Imaging(&image);
}

bool Scene::ResliceLabels(const PnImageParam& plane, uint8_t* labels)
{
    return SampleLabels(labels_.get(), volume_, plane, labels);
}
} // namespace corvane::capi
