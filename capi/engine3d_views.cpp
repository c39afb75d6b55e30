#include "arguments.h"
#include "blend_images.h"
#include "engine3d_handle.h"

// Engine3D: cameras, and the pictures that they see.

using namespace corvane::capi;

namespace
{
// Pictures of width * height elements.
CorvaneStatus IsPicture(const void* buffer, size_t capacity, int32_t width, int32_t height)
{
    return First(NotNull(buffer), Holds(capacity, width, height));
}
} // namespace

CorvaneStatus corvane_engine3d_set_render_type(CorvaneEngine3D* engine, KsRender type)
{
    return OneCall(engine, Require(type == KsRenderParallel || type == KsRenderPerspective),
                   [&](Engine3D& object) { object.SetRenderType(type); });
}

CorvaneStatus corvane_engine3d_get_render_type(CorvaneEngine3D* engine, KsRender* type)
{
    return OneCall(engine, NotNull(type), [&](Engine3D& object) { *type = object.GetRenderType(); });
}

CorvaneStatus corvane_engine3d_get_origin(CorvaneEngine3D* engine, double* origin3)
{
    return OneCall(engine, NotNull(origin3), [&](Engine3D& object) { return object.GetOrigin(origin3); });
}

CorvaneStatus corvane_engine3d_set_origin(CorvaneEngine3D* engine, const double* origin3)
{
    return OneCall(engine, Finite3(origin3), [&](Engine3D& object) { return object.SetOrigin(origin3); });
}

CorvaneStatus corvane_engine3d_step(CorvaneEngine3D* engine, float distance)
{
    return OneCall(engine, Finite(distance), [&](Engine3D& object) { object.Step(distance); });
}

CorvaneStatus corvane_engine3d_step_origin(CorvaneEngine3D* engine, float distance)
{
    return OneCall(engine, Finite(distance), [&](Engine3D& object) { object.StepOrigin(distance); });
}

CorvaneStatus corvane_engine3d_rotate_screen(CorvaneEngine3D* engine, float angle)
{
    return OneCall(engine, Finite(angle), [&](Engine3D& object) { object.RotateScreen(angle); });
}

CorvaneStatus corvane_engine3d_rotate_h(CorvaneEngine3D* engine, float angle)
{
    return OneCall(engine, Finite(angle), [&](Engine3D& object) { object.RotateH(angle); });
}

CorvaneStatus corvane_engine3d_rotate_v(CorvaneEngine3D* engine, float angle)
{
    return OneCall(engine, Finite(angle), [&](Engine3D& object) { object.RotateV(angle); });
}

CorvaneStatus corvane_engine3d_rotate_to_sagittal(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToSagittal(); });
}

CorvaneStatus corvane_engine3d_rotate_to_coronal(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToCoronal(); });
}

CorvaneStatus corvane_engine3d_rotate_to_axial(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToAxial(); });
}

CorvaneStatus corvane_engine3d_rotate_to_z(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToZ(); });
}

CorvaneStatus corvane_engine3d_rotate_to_x(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToX(); });
}

CorvaneStatus corvane_engine3d_rotate_to_y(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToY(); });
}

CorvaneStatus corvane_engine3d_rotate_to_back(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.RotateToBack(); });
}

CorvaneStatus corvane_engine3d_zoom(CorvaneEngine3D* engine, float factor)
{
    return OneCall(engine, First(Finite(factor), Require(factor > 0.0f)),
                   [&](Engine3D& object) { object.Zoom(factor); });
}

CorvaneStatus corvane_engine3d_set_view_angle(CorvaneEngine3D* engine, float degrees)
{
    return OneCall(engine, Finite(degrees), [&](Engine3D& object) { object.SetViewAngle(degrees); });
}

CorvaneStatus corvane_engine3d_get_params_of_vr(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                PnImageParam* plane)
{
    return OneCall(engine, First(NotNull(plane), Require(width >= 1 && height >= 1)),
                   [&](Engine3D& object) { return object.GetParamsOfVR(width, height, *plane); });
}

CorvaneStatus corvane_engine3d_get_image_params(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                PnImageParam* plane)
{
    return OneCall(engine, First(NotNull(plane), Require(width >= 1 && height >= 1)),
                   [&](Engine3D& object) { return object.GetImageParams(width, height, *plane); });
}

CorvaneStatus corvane_engine3d_imaging(CorvaneEngine3D* engine, int32_t width, int32_t height, uint32_t* pixels,
                                       size_t capacity, PnImageRGB* image, int32_t volumeIndex)
{
    return OneCall(engine, IsPicture(pixels, capacity, width, height),
                   [&](Engine3D& object) { return object.Imaging(width, height, pixels, false, image, volumeIndex); });
}

CorvaneStatus corvane_engine3d_imaging_vr(CorvaneEngine3D* engine, int32_t width, int32_t height, uint32_t* pixels,
                                          size_t capacity, PnImageRGB* image, int32_t volumeIndex)
{
    return OneCall(engine, IsPicture(pixels, capacity, width, height),
                   [&](Engine3D& object)
                   { return object.ImagingVR(width, height, pixels, false, image, volumeIndex); });
}

CorvaneStatus corvane_engine3d_imaging_ve(CorvaneEngine3D* engine, int32_t width, int32_t height, uint32_t* pixels,
                                          size_t capacity, float viewAngleDegrees, PnImageRGB* image)
{
    return OneCall(engine, First(Finite(viewAngleDegrees), IsPicture(pixels, capacity, width, height)),
                   [&](Engine3D& object)
                   { return object.ImagingVE(width, height, pixels, viewAngleDegrees, false, image); });
}

CorvaneStatus corvane_engine3d_imaging_mip_by_size(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                   int16_t* values, size_t capacity, KsImageVAL* image)
{
    return OneCall(engine, IsPicture(values, capacity, width, height),
                   [&](Engine3D& object) { return object.ImagingMIP(width, height, values, false, image); });
}

CorvaneStatus corvane_engine3d_imaging_aip_by_size(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                   int16_t* values, size_t capacity, KsImageVAL* image)
{
    return OneCall(engine, IsPicture(values, capacity, width, height),
                   [&](Engine3D& object) { return object.ImagingAIP(width, height, values, false, image); });
}

CorvaneStatus corvane_engine3d_imaging_minip_by_size(CorvaneEngine3D* engine, int32_t width, int32_t height,
                                                     int16_t* values, size_t capacity, KsImageVAL* image)
{
    return OneCall(engine, IsPicture(values, capacity, width, height),
                   [&](Engine3D& object) { return object.ImagingMinIP(width, height, values, false, image); });
}

CorvaneStatus corvane_engine3d_imaging_mip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane, float thickness,
                                                    KsImageData* image)
{
    return OneCall(engine, NotNull(plane, image),
                   [&](Engine3D& object) { return object.ImagingMIP(*plane, thickness, image); });
}

CorvaneStatus corvane_engine3d_imaging_aip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane, float thickness,
                                                    KsImageData* image)
{
    return OneCall(engine, NotNull(plane, image),
                   [&](Engine3D& object) { return object.ImagingAIP(*plane, thickness, image); });
}

CorvaneStatus corvane_engine3d_imaging_minip_by_plane(CorvaneEngine3D* engine, const PnImageParam* plane,
                                                      float thickness, KsImageData* image)
{
    return OneCall(engine, NotNull(plane, image),
                   [&](Engine3D& object) { return object.ImagingMinIP(*plane, thickness, image); });
}

CorvaneStatus corvane_engine3d_imaging_mip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice, float thickness,
                                                    KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](Engine3D& object) { return object.ImagingMIP(*slice, thickness, image); });
}

CorvaneStatus corvane_engine3d_imaging_aip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice, float thickness,
                                                    KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](Engine3D& object) { return object.ImagingAIP(*slice, thickness, image); });
}

CorvaneStatus corvane_engine3d_imaging_minip_by_slice(CorvaneEngine3D* engine, const KsSliceParam* slice,
                                                      float thickness, KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](Engine3D& object) { return object.ImagingMinIP(*slice, thickness, image); });
}

CorvaneStatus corvane_engine3d_attach_volume_data(CorvaneEngine3D* engine, const KsVolumeData* volume, int32_t* count)
{
    return OneCall(engine, First(IsRenderableVolume(volume), NotNull(count)),
                   [&](Engine3D& object) { return (*count = object.AttachVolumeData(*volume)) > 0; });
}

CorvaneStatus corvane_engine3d_clear_attach_volume(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.ClearAttachVolume(); });
}

CorvaneStatus corvane_engine3d_set_blend_image(CorvaneEngine3D* engine, const KsBlendImage* images, int32_t count)
{
    return OneCall(engine, CORVANE_OK, [&](Engine3D& object) { SetBlendImages(object, images, count); });
}
