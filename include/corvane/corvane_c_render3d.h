#ifndef CORVANE_CORVANE_C_RENDER3D_H
#define CORVANE_CORVANE_C_RENDER3D_H

// The operations of the class Render3D; Render3D.h says what each does. Differences are said here.

#include "corvane_c_common.h"

// A handle of a Render3D.
typedef struct CorvaneRender3D CorvaneRender3D;

// NULL when memory is short and for an interface that the library does not speak. _clone makes a second, independent
// renderer of the same voxels, labels and tables (NULL for what is not a renderer); _assign makes one out of `target`.
CORVANE_C_API CorvaneRender3D* corvane_render3d_create(uint32_t interfaceVersion);
CORVANE_C_API CorvaneRender3D* corvane_render3d_clone(CorvaneRender3D* source);
CORVANE_C_API CorvaneStatus corvane_render3d_assign(CorvaneRender3D* target, CorvaneRender3D* source);
CORVANE_C_API void corvane_render3d_destroy(CorvaneRender3D* render);

// Voxels, labels and tables are not copied: slice tables, slices, entries and tables must live until they are replaced,
// or until _clear or _destroy of every renderer that has them.
//   mark  NULL: label 0 everywhere
CORVANE_C_API CorvaneStatus corvane_render3d_init_data(CorvaneRender3D* render, const KsVolumeData* volume,
                                                       const KsVolumeMark* mark, const VolumePalette* palette);
CORVANE_C_API CorvaneStatus corvane_render3d_clear(CorvaneRender3D* render);
CORVANE_C_API CorvaneStatus corvane_render3d_set_volume_mark(CorvaneRender3D* render, const KsVolumeMark* mark);
CORVANE_C_API CorvaneStatus corvane_render3d_set_palette(CorvaneRender3D* render, const VolumePalette* palette);

// Boxes are two opposite corners, three numbers each.
CORVANE_C_API CorvaneStatus corvane_render3d_get_bounding_box(CorvaneRender3D* render, float* min3, float* max3);
CORVANE_C_API CorvaneStatus corvane_render3d_set_visible_box(CorvaneRender3D* render, const float* a3, const float* b3);
CORVANE_C_API CorvaneStatus corvane_render3d_get_visible_box(CorvaneRender3D* render, float* min3, float* max3);

// Pictures into the buffer that the image record names.
//   image     rows and columns say how large it is, param where it lies; forms with a camera or a view write param
//   capacity  elements that its buffer holds, at least rows * columns
// _imaging_vr writes only pixels that something visible can cover: clear the buffer first.
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_vr(CorvaneRender3D* render, PnImageRGB* image, size_t capacity,
                                                        int32_t volumeIndex);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_ve(CorvaneRender3D* render, const KsViewPoint* view,
                                                        float fieldOfViewDegrees, PnImageRGB* image, size_t capacity);

// Projections through the whole volume along the normal of the image,
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_mip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_aip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_minip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity);

// as far as `thickness` mm from the image, every label shown,
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_mip_slab(CorvaneRender3D* render, float thickness,
                                                              KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_aip_slab(CorvaneRender3D* render, float thickness,
                                                              KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_minip_slab(CorvaneRender3D* render, float thickness,
                                                                KsImageVAL* image, size_t capacity);

// as a camera sees it, with `fieldSize` mm along the shorter side,
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_mip_camera(CorvaneRender3D* render, const KsCamera* camera,
                                                                float fieldSize, KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_aip_camera(CorvaneRender3D* render, const KsCamera* camera,
                                                                float fieldSize, KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_minip_camera(CorvaneRender3D* render, const KsCamera* camera,
                                                                  float fieldSize, KsImageVAL* image, size_t capacity);

// and both.
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_mip_camera_slab(CorvaneRender3D* render, const KsCamera* camera,
                                                                     float fieldSize, float thickness,
                                                                     KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_aip_camera_slab(CorvaneRender3D* render, const KsCamera* camera,
                                                                     float fieldSize, float thickness,
                                                                     KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render3d_imaging_minip_camera_slab(CorvaneRender3D* render, const KsCamera* camera,
                                                                       float fieldSize, float thickness,
                                                                       KsImageVAL* image, size_t capacity);

// As with Engine3D.
CORVANE_C_API CorvaneStatus corvane_render3d_attach_volume_data(CorvaneRender3D* render, const KsVolumeData* volume,
                                                                int32_t* count);
CORVANE_C_API CorvaneStatus corvane_render3d_clear_attach_volume(CorvaneRender3D* render);
CORVANE_C_API CorvaneStatus corvane_render3d_set_blend_image(CorvaneRender3D* render, const KsBlendImage* images,
                                                             int32_t count);

#endif
