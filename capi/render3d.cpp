#include "corvane/Render3D.h"
#include "arguments.h"
#include "blend_images.h"
#include "handle.h"

using namespace corvane::capi;

struct CorvaneRender3D : Handle<Kind::Render3D, Render3D>
{
};

namespace
{
bool IsUsable(Render3D& object) { return object.SetPalette(VolumePalette()); }

// Copies a renderer; false when memory is short.
bool Copy(CorvaneRender3D& target, CorvaneRender3D& source)
{
    float low[3], high[3];
    target.object.Clear(); // so that what fails to be copied is seen
    target.object = source.object;
    target.hasVolume = source.hasVolume && target.object.GetBoundingBox(low, high);
    return target.hasVolume == source.hasVolume;
}
} // namespace

CorvaneRender3D* corvane_render3d_create(uint32_t interfaceVersion)
{
    return Create<CorvaneRender3D>(interfaceVersion, IsUsable);
}

CorvaneRender3D* corvane_render3d_clone(CorvaneRender3D* source)
{
    CorvaneRender3D* const clone = IsHandle(source) ? corvane_render3d_create(CORVANE_C_INTERFACE) : nullptr;
    if (clone && corvane_render3d_assign(clone, source) == CORVANE_OK)
        return clone;
    Destroy(clone);
    return nullptr;
}

CorvaneStatus corvane_render3d_assign(CorvaneRender3D* target, CorvaneRender3D* source)
{
    if (!IsHandle(target) || !IsHandle(source))
        return CORVANE_ERROR_HANDLE;
    if (target == source)
        return CORVANE_OK;
    return Guarded(
        [&]() -> CorvaneStatus
        {
            const std::scoped_lock lock(target->oneCall, source->oneCall);
            return Copy(*target, *source) ? CORVANE_OK : CORVANE_ERROR_MEMORY;
        });
}

void corvane_render3d_destroy(CorvaneRender3D* render) { Destroy(render); }

CorvaneStatus corvane_render3d_init_data(CorvaneRender3D* render, const KsVolumeData* volume, const KsVolumeMark* mark,
                                         const VolumePalette* palette)
{
    return Load(render, First(IsRenderableVolume(volume), NotNull(palette)),
                [&](Render3D& object) { return object.InitData(*volume, mark ? *mark : KsVolumeMark(), *palette); });
}

CorvaneStatus corvane_render3d_clear(CorvaneRender3D* render)
{
    return OneCall(render, CORVANE_OK,
                   [&](Render3D& object)
                   {
                       render->hasVolume = false;
                       object.Clear();
                   });
}

CorvaneStatus corvane_render3d_set_volume_mark(CorvaneRender3D* render, const KsVolumeMark* mark)
{
    return OneCall(render, NotNull(mark), [&](Render3D& object) { object.SetVolumeMark(*mark); });
}

CorvaneStatus corvane_render3d_set_palette(CorvaneRender3D* render, const VolumePalette* palette)
{
    return OneCall(render, NotNull(palette), [&](Render3D& object) { return object.SetPalette(*palette); });
}

CorvaneStatus corvane_render3d_get_bounding_box(CorvaneRender3D* render, float* min3, float* max3)
{
    return OneCall(render, NotNull(min3, max3), [&](Render3D& object) { return object.GetBoundingBox(min3, max3); });
}

CorvaneStatus corvane_render3d_set_visible_box(CorvaneRender3D* render, const float* a3, const float* b3)
{
    return OneCall(render, NotNull(a3, b3), [&](Render3D& object) { return object.SetVisibleBox(a3, b3); });
}

CorvaneStatus corvane_render3d_get_visible_box(CorvaneRender3D* render, float* min3, float* max3)
{
    return OneCall(render, NotNull(min3, max3), [&](Render3D& object) { return object.GetVisibleBox(min3, max3); });
}

CorvaneStatus corvane_render3d_imaging_vr(CorvaneRender3D* render, PnImageRGB* image, size_t capacity,
                                          int32_t volumeIndex)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](Render3D& object) { return object.ImagingVR(image, volumeIndex); });
}

CorvaneStatus corvane_render3d_imaging_ve(CorvaneRender3D* render, const KsViewPoint* view, float fieldOfViewDegrees,
                                          PnImageRGB* image, size_t capacity)
{
    return OneCall(render, First(NotNull(view), Finite(fieldOfViewDegrees), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingVE(*view, fieldOfViewDegrees, image); });
}

CorvaneStatus corvane_render3d_imaging_mip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, IsImage(image, capacity), [&](Render3D& object) { return object.ImagingMIP(image); });
}

CorvaneStatus corvane_render3d_imaging_aip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, IsImage(image, capacity), [&](Render3D& object) { return object.ImagingAIP(image); });
}

CorvaneStatus corvane_render3d_imaging_minip(CorvaneRender3D* render, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, IsImage(image, capacity), [&](Render3D& object) { return object.ImagingMinIP(image); });
}

CorvaneStatus corvane_render3d_imaging_mip_slab(CorvaneRender3D* render, float thickness, KsImageVAL* image,
                                                size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](Render3D& object) { return object.ImagingMIP(image, thickness); });
}

CorvaneStatus corvane_render3d_imaging_aip_slab(CorvaneRender3D* render, float thickness, KsImageVAL* image,
                                                size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](Render3D& object) { return object.ImagingAIP(image, thickness); });
}

CorvaneStatus corvane_render3d_imaging_minip_slab(CorvaneRender3D* render, float thickness, KsImageVAL* image,
                                                  size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](Render3D& object) { return object.ImagingMinIP(image, thickness); });
}

CorvaneStatus corvane_render3d_imaging_mip_camera(CorvaneRender3D* render, const KsCamera* camera, float fieldSize,
                                                  KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingMIP(*camera, fieldSize, image); });
}

CorvaneStatus corvane_render3d_imaging_aip_camera(CorvaneRender3D* render, const KsCamera* camera, float fieldSize,
                                                  KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingAIP(*camera, fieldSize, image); });
}

CorvaneStatus corvane_render3d_imaging_minip_camera(CorvaneRender3D* render, const KsCamera* camera, float fieldSize,
                                                    KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingMinIP(*camera, fieldSize, image); });
}

CorvaneStatus corvane_render3d_imaging_mip_camera_slab(CorvaneRender3D* render, const KsCamera* camera, float fieldSize,
                                                       float thickness, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingMIP(*camera, fieldSize, thickness, image); });
}

CorvaneStatus corvane_render3d_imaging_aip_camera_slab(CorvaneRender3D* render, const KsCamera* camera, float fieldSize,
                                                       float thickness, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingAIP(*camera, fieldSize, thickness, image); });
}

CorvaneStatus corvane_render3d_imaging_minip_camera_slab(CorvaneRender3D* render, const KsCamera* camera,
                                                         float fieldSize, float thickness, KsImageVAL* image,
                                                         size_t capacity)
{
    return OneCall(render, First(NotNull(camera), IsImage(image, capacity)),
                   [&](Render3D& object) { return object.ImagingMinIP(*camera, fieldSize, thickness, image); });
}

CorvaneStatus corvane_render3d_attach_volume_data(CorvaneRender3D* render, const KsVolumeData* volume, int32_t* count)
{
    return OneCall(render, First(IsRenderableVolume(volume), NotNull(count)),
                   [&](Render3D& object) { return (*count = object.AttachVolumeData(*volume)) > 0; });
}

CorvaneStatus corvane_render3d_clear_attach_volume(CorvaneRender3D* render)
{
    return OneCall(render, CORVANE_OK, [](Render3D& object) { object.ClearAttachVolume(); });
}

CorvaneStatus corvane_render3d_set_blend_image(CorvaneRender3D* render, const KsBlendImage* images, int32_t count)
{
    return OneCall(render, CORVANE_OK, [&](Render3D& object) { SetBlendImages(object, images, count); });
}
