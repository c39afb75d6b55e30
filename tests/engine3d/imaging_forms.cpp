#include "imaging_forms.h"

namespace corvane::tests
{
bool ProjectSize(Engine3D& engine, ProjectionKind kind, int width, int height, int16_t* values, KsImageVAL* image)
{
    if (kind == ProjectionKind::Maximum)
        return engine.ImagingMIP(width, height, values, false, image);
    if (kind == ProjectionKind::Average)
        return engine.ImagingAIP(width, height, values, false, image);
    return engine.ImagingMinIP(width, height, values, false, image);
}

bool ProjectPlane(Engine3D& engine, ProjectionKind kind, const PnImageParam& plane, float thickness, KsImageData* image)
{
    if (kind == ProjectionKind::Maximum)
        return engine.ImagingMIP(plane, thickness, image);
    if (kind == ProjectionKind::Average)
        return engine.ImagingAIP(plane, thickness, image);
    return engine.ImagingMinIP(plane, thickness, image);
}

bool ProjectSlice(Engine3D& engine, ProjectionKind kind, const KsSliceParam& slice, float thickness, KsImageData* image)
{
    if (kind == ProjectionKind::Maximum)
        return engine.ImagingMIP(slice, thickness, image);
    if (kind == ProjectionKind::Average)
        return engine.ImagingAIP(slice, thickness, image);
    return engine.ImagingMinIP(slice, thickness, image);
}

bool ProjectCamera(Render3D& render, ProjectionKind kind, const KsCamera& camera, float fieldSize, float thickness,
                   KsImageVAL* image)
{
    if (kind == ProjectionKind::Maximum)
        return render.ImagingMIP(camera, fieldSize, thickness, image);
    if (kind == ProjectionKind::Average)
        return render.ImagingAIP(camera, fieldSize, thickness, image);
    return render.ImagingMinIP(camera, fieldSize, thickness, image);
}
} // namespace corvane::tests
