#ifndef CORVANE_CORVANE_C_MPR_H
#define CORVANE_CORVANE_C_MPR_H

// The operations of the classes EngineMPR and RenderMPR; EngineMPR.h and RenderMPR.h say what each does. Differences
// are said here. Slabs, which these classes do not offer, are CORVANE_ERROR_NOT_OFFERED: a scene has them.

#include "corvane_c_common.h"

// Handles of an EngineMPR and of a RenderMPR.
typedef struct CorvaneEngineMPR CorvaneEngineMPR;
typedef struct CorvaneRenderMPR CorvaneRenderMPR;

// NULL when memory is short and for an interface that the library does not speak.
CORVANE_C_API CorvaneEngineMPR* corvane_engine_mpr_create(uint32_t interfaceVersion);
CORVANE_C_API void corvane_engine_mpr_destroy(CorvaneEngineMPR* engine);

// Slice tables and slices of volume and labels must live until they are replaced, _clear or _destroy.
CORVANE_C_API CorvaneStatus corvane_engine_mpr_init_data(CorvaneEngineMPR* engine, const KsVolumeData* volume);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_clear(CorvaneEngineMPR* engine);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_set_mark_data(CorvaneEngineMPR* engine, const KsVolumeMark* mark);

// The planes. Other types than the three are CORVANE_ERROR_ARGUMENT.
CORVANE_C_API CorvaneStatus corvane_engine_mpr_get_origin(CorvaneEngineMPR* engine, double* origin3);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_set_origin(CorvaneEngineMPR* engine, const double* origin3);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_get_direct(CorvaneEngineMPR* engine, KsMPRType type, double* normal3);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_get_params(CorvaneEngineMPR* engine, KsMPRParam* planes);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_set_params(CorvaneEngineMPR* engine, const KsMPRParam* planes);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_rotate(CorvaneEngineMPR* engine, KsMPRType type, float angle);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_reset(CorvaneEngineMPR* engine);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_get_image_param(CorvaneEngineMPR* engine, KsMPRType type,
                                                               PnImageParam* plane);

//   count  receives the number of slices, may be 0 or negative
//   first  receives the geometry of the first slice when the count is at least 1; may be NULL
CORVANE_C_API CorvaneStatus corvane_engine_mpr_get_image_count(CorvaneEngineMPR* engine, KsMPRType type, float spacing,
                                                               int32_t* count, PnImageParam* first);

// Images that the library sizes; see corvane_image_data_free and corvane_mark_data_free. _by_type_of_volume takes
// stored values from another volume of the same sizes, which is not kept.
CORVANE_C_API CorvaneStatus corvane_engine_mpr_marking(CorvaneEngineMPR* engine, KsMPRType type, KsMarkData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_by_plane(CorvaneEngineMPR* engine, const PnImageParam* plane,
                                                                KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                                KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_by_type_of_volume(CorvaneEngineMPR* engine, KsMPRType type,
                                                                         const KsVolumeData* volume,
                                                                         KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_by_type(CorvaneEngineMPR* engine, KsMPRType type,
                                                               KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_mip_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                                    float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_mip_by_type(CorvaneEngineMPR* engine, KsMPRType type,
                                                                   float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_aip_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                                    float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_aip_by_type(CorvaneEngineMPR* engine, KsMPRType type,
                                                                   float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_minip_by_slice(CorvaneEngineMPR* engine,
                                                                      const KsSliceParam* slice, float thickness,
                                                                      KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine_mpr_imaging_minip_by_type(CorvaneEngineMPR* engine, KsMPRType type,
                                                                     float thickness, KsImageData* image);

// NULL when memory is short and for an interface that the library does not speak.
CORVANE_C_API CorvaneRenderMPR* corvane_render_mpr_create(uint32_t interfaceVersion);
CORVANE_C_API void corvane_render_mpr_destroy(CorvaneRenderMPR* render);

// As with EngineMPR. The record that _get_mark_data hands out is the renderer's own, its slices are the caller's.
CORVANE_C_API CorvaneStatus corvane_render_mpr_init_data(CorvaneRenderMPR* render, const KsVolumeData* volume);
CORVANE_C_API CorvaneStatus corvane_render_mpr_clear(CorvaneRenderMPR* render);
CORVANE_C_API CorvaneStatus corvane_render_mpr_get_mark_data(CorvaneRenderMPR* render, KsVolumeMark** mark);
CORVANE_C_API CorvaneStatus corvane_render_mpr_set_mark_data(CorvaneRenderMPR* render, const KsVolumeMark* mark);
CORVANE_C_API CorvaneStatus corvane_render_mpr_get_bounding_box(CorvaneRenderMPR* render, float* min3, float* max3);

//   vertexes24  receives 8 corners, three numbers each
CORVANE_C_API CorvaneStatus corvane_render_mpr_get_bounding_vertexes(CorvaneRenderMPR* render, float* vertexes24);
CORVANE_C_API CorvaneStatus corvane_render_mpr_get_mpr_size(CorvaneRenderMPR* render, const double* directions6,
                                                            const double* center3, double* origin3, double* rowExtent,
                                                            double* columnExtent);

// Pictures into the buffer that the image record names, which holds `capacity` elements, at least rows * columns.
CORVANE_C_API CorvaneStatus corvane_render_mpr_marking(CorvaneRenderMPR* render, KsImageMark* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render_mpr_imaging(CorvaneRenderMPR* render, KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render_mpr_imaging_of_volume(CorvaneRenderMPR* render, const KsVolumeData* volume,
                                                                 KsImageVAL* image, size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render_mpr_imaging_mip(CorvaneRenderMPR* render, float thickness, KsImageVAL* image,
                                                           size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render_mpr_imaging_aip(CorvaneRenderMPR* render, float thickness, KsImageVAL* image,
                                                           size_t capacity);
CORVANE_C_API CorvaneStatus corvane_render_mpr_imaging_minip(CorvaneRenderMPR* render, float thickness,
                                                             KsImageVAL* image, size_t capacity);

#endif
