#ifndef CORVANE_CORVANE_C_ENGINE3D_H
#define CORVANE_CORVANE_C_ENGINE3D_H

// The operations of the class Engine3D; Engine3D.h says what each does. Differences are said here.

#include "corvane_c_common.h"

// A handle of an Engine3D.
typedef struct CorvaneEngine3D CorvaneEngine3D;

// NULL when memory is short and for an interface that the library does not speak.
CORVANE_C_API CorvaneEngine3D* corvane_engine3d_create(uint32_t interfaceVersion);
CORVANE_C_API void corvane_engine3d_destroy(CorvaneEngine3D* engine);

// The volume's slice table and its slices must live until the next _init_data, _clear or _destroy. The record that
// _get_volume_data writes points at them.
CORVANE_C_API CorvaneStatus corvane_engine3d_init_data(CorvaneEngine3D* engine, const KsVolumeData* volume);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_volume_data(CorvaneEngine3D* engine, KsVolumeData* volume);
CORVANE_C_API CorvaneStatus corvane_engine3d_clear(CorvaneEngine3D* engine);

// Enabling gives CORVANE_ERROR_NOT_OFFERED where there is no GPU.
CORVANE_C_API CorvaneStatus corvane_engine3d_support_gpu(CorvaneEngine3D* engine, int32_t* supported);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_gpu_enabled(CorvaneEngine3D* engine, int32_t enabled);
CORVANE_C_API CorvaneStatus corvane_engine3d_is_gpu_enabled(CorvaneEngine3D* engine, int32_t* enabled);

// The cameras. Other render types than the two, and numbers that are not finite, are CORVANE_ERROR_ARGUMENT.
CORVANE_C_API CorvaneStatus corvane_engine3d_set_render_type(CorvaneEngine3D* engine, KsRender type);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_render_type(CorvaneEngine3D* engine, KsRender* type);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_origin(CorvaneEngine3D* engine, double* origin3);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_origin(CorvaneEngine3D* engine, const double* origin3);
CORVANE_C_API CorvaneStatus corvane_engine3d_step(CorvaneEngine3D* engine, float distance);
CORVANE_C_API CorvaneStatus corvane_engine3d_step_origin(CorvaneEngine3D* engine, float distance);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_screen(CorvaneEngine3D* engine, float angle);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_h(CorvaneEngine3D* engine, float angle);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_v(CorvaneEngine3D* engine, float angle);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_sagittal(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_coronal(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_axial(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_z(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_x(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_y(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_rotate_to_back(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_zoom(CorvaneEngine3D* engine, float factor); // above 0
CORVANE_C_API CorvaneStatus corvane_engine3d_set_view_angle(CorvaneEngine3D* engine, float degrees);

// _get_mark_data hands out the engine's own record: sizes and slices to be edited in place, not while another thread
// calls; valid until the next _init_data, _clear or _destroy.
CORVANE_C_API CorvaneStatus corvane_engine3d_get_mark_data(CorvaneEngine3D* engine, KsVolumeMark** mark);
CORVANE_C_API CorvaneStatus corvane_engine3d_update_mark_data(CorvaneEngine3D* engine);

// Boxes are two opposite corners, three numbers each.
CORVANE_C_API CorvaneStatus corvane_engine3d_get_bounding_box(CorvaneEngine3D* engine, float* min3, float* max3);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_visible_box(CorvaneEngine3D* engine, const float* a3, const float* b3);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_visible_box(CorvaneEngine3D* engine, float* min3, float* max3);

// Palettes are copied both ways. _get_palette frees points that the record owns: begin with corvane_palette_init and
// end with corvane_palette_free.
CORVANE_C_API CorvaneStatus corvane_engine3d_set_palette(CorvaneEngine3D* engine, const KsPalette* palette);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_palette(CorvaneEngine3D* engine, KsPalette* palette);
CORVANE_C_API CorvaneStatus corvane_engine3d_adjust_color(CorvaneEngine3D* engine, int32_t shift);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_shading(CorvaneEngine3D* engine, float ambient, float diffuse,
                                                         float specular, int32_t label);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_opacity(CorvaneEngine3D* engine, float opacity, int32_t label);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_visible(CorvaneEngine3D* engine, int32_t visible, int32_t label);

// Selections are labels of the volume's sizes in the caller's memory. _cut_fill writes sizeX * sizeY bytes to every
// slice of the result. _cut_subtract and _cut_clear are CORVANE_ERROR_NOT_OFFERED: a scene undoes cuts.
CORVANE_C_API CorvaneStatus corvane_engine3d_cut_append(CorvaneEngine3D* engine, const KsVolumeMark* selection);
CORVANE_C_API CorvaneStatus corvane_engine3d_cut_subtract(CorvaneEngine3D* engine, const KsVolumeMark* selection);
CORVANE_C_API CorvaneStatus corvane_engine3d_cut_clear(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_cut_fill(CorvaneEngine3D* engine, const KsImageMark* region,
                                                      KsVolumeMark* result, uint8_t value);

// The geometry of an image of `width` rows and `height` columns, and pictures of that size.
//   pixels, values  receive width * height elements
//   capacity        elements that the buffer holds
//   image           receives buffer and geometry; may be NULL
//   volumeIndex     0 for the volume, 1, 2, ... for an attached one
CORVANE_C_API CorvaneStatus corvane_engine3d_get_params_of_vr(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                              PnImageParam* plane);
CORVANE_C_API CorvaneStatus corvane_engine3d_get_image_params(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                              PnImageParam* plane);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                     uint32_t* pixels, size_t capacity, PnImageRGB* image,
                                                     int32_t volumeIndex);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_vr(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                        uint32_t* pixels, size_t capacity, PnImageRGB* image,
                                                        int32_t volumeIndex);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_ve(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                        uint32_t* pixels, size_t capacity, float viewAngleDegrees,
                                                        PnImageRGB* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_mip_by_size(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                                 int16_t* values, size_t capacity, KsImageVAL* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_aip_by_size(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                                 int16_t* values, size_t capacity, KsImageVAL* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_minip_by_size(CorvaneEngine3D* engine, int32_t width,
                                                                   int32_t height, int16_t* values, size_t capacity,
                                                                   KsImageVAL* image);

// Projections of a slab into an image that the library sizes; see corvane_image_data_free.
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_mip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane,
                                                                  float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_aip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane,
                                                                  float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_minip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane,
                                                                    float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_mip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice,
                                                                  float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_aip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice,
                                                                  float thickness, KsImageData* image);
CORVANE_C_API CorvaneStatus corvane_engine3d_imaging_minip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice,
                                                                    float thickness, KsImageData* image);

// An attached volume must live as the volume does; `count` receives how many are attached, or 0 when it is refused.
// Blend images are copied but for their pixels, which must live until the next call; at most the first 4 are used, and
// NULL or a count below 1 takes them away.
CORVANE_C_API CorvaneStatus corvane_engine3d_attach_volume_data(CorvaneEngine3D* engine, const KsVolumeData* volume,
                                                                int32_t* count);
CORVANE_C_API CorvaneStatus corvane_engine3d_clear_attach_volume(CorvaneEngine3D* engine);
CORVANE_C_API CorvaneStatus corvane_engine3d_set_blend_image(CorvaneEngine3D* engine, const KsBlendImage* images,
                                                             int32_t count);

#endif
