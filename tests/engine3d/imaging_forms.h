#ifndef CORVANE_TESTS_ENGINE3D_IMAGING_FORMS_H
#define CORVANE_TESTS_ENGINE3D_IMAGING_FORMS_H

#include "corvane/Engine3D.h"
#include "tests/mpr/owned_image.h"
#include "tests/render3d/plain_projection.h"

// The nine projections of an engine by kind, and the renderer's by hand.
namespace corvane::tests
{
bool ProjectSize(Engine3D& engine, ProjectionKind kind, int width, int height, int16_t* values, KsImageVAL* image);
bool ProjectPlane(Engine3D& engine, ProjectionKind kind, const PnImageParam& plane, float thickness,
                  KsImageData* image);
bool ProjectSlice(Engine3D& engine, ProjectionKind kind, const KsSliceParam& slice, float thickness,
                  KsImageData* image);
bool ProjectCamera(Render3D& render, ProjectionKind kind, const KsCamera& camera, float fieldSize, float thickness,
                   KsImageVAL* image);
} // namespace corvane::tests

#endif
