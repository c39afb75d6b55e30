#include "arguments.h"
#include "engine3d_handle.h"

// Engine3D: what is loaded, how it looks, and cutting.

using namespace corvane::capi;

CorvaneEngine3D* corvane_engine3d_create(uint32_t interfaceVersion)
{
    return Create<CorvaneEngine3D>(interfaceVersion, [](Engine3D& object) { return object.GetMarkData(); });
}

void corvane_engine3d_destroy(CorvaneEngine3D* engine) { Destroy(engine); }

CorvaneStatus corvane_engine3d_init_data(CorvaneEngine3D* engine, const KsVolumeData* volume)
{
    return Load(engine, IsRenderableVolume(volume), [&](Engine3D& object) { return object.InitData(*volume); });
}

CorvaneStatus corvane_engine3d_get_volume_data(CorvaneEngine3D* engine, KsVolumeData* volume)
{
    return OneCall(engine, NotNull(volume), [&](Engine3D& object) { return object.GetVolumeData(*volume); });
}

CorvaneStatus corvane_engine3d_clear(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK,
                   [&](Engine3D& object)
                   {
                       engine->hasVolume = false;
                       object.Clear();
                   });
}

CorvaneStatus corvane_engine3d_support_gpu(CorvaneEngine3D* engine, int32_t* supported)
{
    return OneCall(engine, NotNull(supported), [&](Engine3D& object) { *supported = object.SupportGPU(); });
}

CorvaneStatus corvane_engine3d_set_gpu_enabled(CorvaneEngine3D* engine, int32_t enabled)
{
    return OneCall(engine, CORVANE_OK,
                   [&](Engine3D& object) -> CorvaneStatus
                   { return object.SetGPUEnabled(enabled != 0) ? CORVANE_OK : CORVANE_ERROR_NOT_OFFERED; });
}

CorvaneStatus corvane_engine3d_is_gpu_enabled(CorvaneEngine3D* engine, int32_t* enabled)
{
    return OneCall(engine, NotNull(enabled), [&](Engine3D& object) { *enabled = object.IsGPUEnabled(); });
}

CorvaneStatus corvane_engine3d_get_mark_data(CorvaneEngine3D* engine, KsVolumeMark** mark)
{
    return OneCall(engine, NotNull(mark), [&](Engine3D& object) { *mark = object.GetMarkData(); });
}

CorvaneStatus corvane_engine3d_update_mark_data(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D& object) { object.UpdateMarkData(); });
}

CorvaneStatus corvane_engine3d_get_bounding_box(CorvaneEngine3D* engine, float* min3, float* max3)
{
    return OneCall(engine, NotNull(min3, max3), [&](Engine3D& object) { return object.GetBoundingBox(min3, max3); });
}

CorvaneStatus corvane_engine3d_set_visible_box(CorvaneEngine3D* engine, const float* a3, const float* b3)
{
    return OneCall(engine, NotNull(a3, b3), [&](Engine3D& object) { return object.SetVisibleBox(a3, b3); });
}

CorvaneStatus corvane_engine3d_get_visible_box(CorvaneEngine3D* engine, float* min3, float* max3)
{
    return OneCall(engine, NotNull(min3, max3), [&](Engine3D& object) { return object.GetVisibleBox(min3, max3); });
}

CorvaneStatus corvane_engine3d_set_palette(CorvaneEngine3D* engine, const KsPalette* palette)
{
    return OneCall(engine, IsPalette(palette),
                   [&](Engine3D& object) -> CorvaneStatus
                   { return object.SetPalette(*palette) ? CORVANE_OK : CORVANE_ERROR_MEMORY; });
}

CorvaneStatus corvane_engine3d_get_palette(CorvaneEngine3D* engine, KsPalette* palette)
{
    return OneCall(engine, NotNull(palette),
                   [&](Engine3D& object) -> CorvaneStatus
                   { return object.GetPalette(*palette) ? CORVANE_OK : CORVANE_ERROR_MEMORY; });
}

CorvaneStatus corvane_engine3d_adjust_color(CorvaneEngine3D* engine, int32_t shift)
{
    return OneCall(engine, CORVANE_OK,
                   [&](Engine3D& object) -> CorvaneStatus
                   { return object.AdjustColor(shift) ? CORVANE_OK : CORVANE_ERROR_MEMORY; });
}

CorvaneStatus corvane_engine3d_set_shading(CorvaneEngine3D* engine, float ambient, float diffuse, float specular,
                                           int32_t label)
{
    return OneCall(engine, CORVANE_OK,
                   [&](Engine3D& object) { return object.SetShading(ambient, diffuse, specular, label); });
}

CorvaneStatus corvane_engine3d_set_opacity(CorvaneEngine3D* engine, float opacity, int32_t label)
{
    return OneCall(engine, CORVANE_OK, [&](Engine3D& object) { return object.SetOpacity(opacity, label); });
}

CorvaneStatus corvane_engine3d_set_visible(CorvaneEngine3D* engine, int32_t visible, int32_t label)
{
    return OneCall(engine, CORVANE_OK, [&](Engine3D& object) { return object.SetVisible(visible != 0, label); });
}

CorvaneStatus corvane_engine3d_cut_append(CorvaneEngine3D* engine, const KsVolumeMark* selection)
{
    return OneCall(engine, IsMark(selection), [&](Engine3D& object) { return object.CutAppend(*selection); });
}

CorvaneStatus corvane_engine3d_cut_subtract(CorvaneEngine3D* engine, const KsVolumeMark* selection)
{
    return OneCall(engine, NotNull(selection), [](Engine3D&) -> CorvaneStatus { return CORVANE_ERROR_NOT_OFFERED; });
}

CorvaneStatus corvane_engine3d_cut_clear(CorvaneEngine3D* engine)
{
    return OneCall(engine, CORVANE_OK, [](Engine3D&) -> CorvaneStatus { return CORVANE_ERROR_NOT_OFFERED; });
}

CorvaneStatus corvane_engine3d_cut_fill(CorvaneEngine3D* engine, const KsImageMark* region, KsVolumeMark* result,
                                        uint8_t value)
{
    return OneCall(engine, First(NotNull(region), IsMark(result)),
                   [&](Engine3D& object) { return object.CutFill(*region, *result, value); });
}
