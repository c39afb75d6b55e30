#include "arguments.h"
#include "corvane/RenderMPR.h"
#include "handle.h"

using namespace corvane::capi;

struct CorvaneRenderMPR : Handle<Kind::RenderMPR, RenderMPR>
{
};

namespace
{
// The class has slabs in its table and draws none.
CorvaneStatus NotDrawn(bool drawn) { return drawn ? CORVANE_OK : CORVANE_ERROR_NOT_OFFERED; }
} // namespace

CorvaneRenderMPR* corvane_render_mpr_create(uint32_t interfaceVersion)
{
    return Create<CorvaneRenderMPR>(interfaceVersion, [](RenderMPR& object) { return object.GetMarkData(); });
}

void corvane_render_mpr_destroy(CorvaneRenderMPR* render) { Destroy(render); }

CorvaneStatus corvane_render_mpr_init_data(CorvaneRenderMPR* render, const KsVolumeData* volume)
{
    return Load(render, IsVolume(volume), [&](RenderMPR& object) { return object.InitData(*volume); });
}

CorvaneStatus corvane_render_mpr_clear(CorvaneRenderMPR* render)
{
    return OneCall(render, CORVANE_OK,
                   [&](RenderMPR& object)
                   {
                       render->hasVolume = false;
                       object.Clear();
                   });
}

CorvaneStatus corvane_render_mpr_get_mark_data(CorvaneRenderMPR* render, KsVolumeMark** mark)
{
    return OneCall(render, NotNull(mark), [&](RenderMPR& object) { *mark = object.GetMarkData(); });
}

CorvaneStatus corvane_render_mpr_set_mark_data(CorvaneRenderMPR* render, const KsVolumeMark* mark)
{
    return OneCall(render, IsMark(mark), [&](RenderMPR& object) { return object.SetMarkData(*mark); });
}

CorvaneStatus corvane_render_mpr_get_bounding_box(CorvaneRenderMPR* render, float* min3, float* max3)
{
    return OneCall(render, NotNull(min3, max3), [&](RenderMPR& object) { return object.GetBoundingBox(min3, max3); });
}

CorvaneStatus corvane_render_mpr_get_bounding_vertexes(CorvaneRenderMPR* render, float* vertexes24)
{
    return OneCall(render, NotNull(vertexes24),
                   [&](RenderMPR& object)
                   { return object.GetBoundingVertexes(reinterpret_cast<float(*)[3]>(vertexes24)); });
}

CorvaneStatus corvane_render_mpr_get_mpr_size(CorvaneRenderMPR* render, const double* directions6,
                                              const double* center3, double* origin3, double* rowExtent,
                                              double* columnExtent)
{
    return OneCall(render, NotNull(directions6, center3, origin3, rowExtent, columnExtent),
                   [&](RenderMPR& object)
                   { return object.GetMPRSize(directions6, center3, origin3, *rowExtent, *columnExtent); });
}

CorvaneStatus corvane_render_mpr_marking(CorvaneRenderMPR* render, KsImageMark* image, size_t capacity)
{
    return OneCall(render, IsImage(image, capacity), [&](RenderMPR& object) { return object.Marking(image); });
}

CorvaneStatus corvane_render_mpr_imaging(CorvaneRenderMPR* render, KsImageVAL* image, size_t capacity)
{
    return OneCall(render, IsImage(image, capacity), [&](RenderMPR& object) { return object.Imaging(image); });
}

CorvaneStatus corvane_render_mpr_imaging_of_volume(CorvaneRenderMPR* render, const KsVolumeData* volume,
                                                   KsImageVAL* image, size_t capacity)
{
    return OneCall(render, First(IsVolume(volume), IsImage(image, capacity)),
                   [&](RenderMPR& object) { return object.Imaging(*volume, image); });
}

CorvaneStatus corvane_render_mpr_imaging_mip(CorvaneRenderMPR* render, float thickness, KsImageVAL* image,
                                             size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](RenderMPR& object) { return NotDrawn(object.ImagingMIP(thickness, image)); });
}

CorvaneStatus corvane_render_mpr_imaging_aip(CorvaneRenderMPR* render, float thickness, KsImageVAL* image,
                                             size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](RenderMPR& object) { return NotDrawn(object.ImagingAIP(thickness, image)); });
}

CorvaneStatus corvane_render_mpr_imaging_minip(CorvaneRenderMPR* render, float thickness, KsImageVAL* image,
                                               size_t capacity)
{
    return OneCall(render, IsImage(image, capacity),
                   [&](RenderMPR& object) { return NotDrawn(object.ImagingMinIP(thickness, image)); });
}
