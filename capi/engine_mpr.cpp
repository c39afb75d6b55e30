#include "arguments.h"
#include "corvane/EngineMPR.h"
#include "handle.h"

using namespace corvane::capi;

struct CorvaneEngineMPR : Handle<Kind::EngineMPR, EngineMPR>
{
};

namespace
{
// The class sizes and zeroes the image of a slab, which it cannot draw.
CorvaneStatus NotDrawn(bool drawn) { return drawn ? CORVANE_OK : CORVANE_ERROR_NOT_OFFERED; }
} // namespace

CorvaneEngineMPR* corvane_engine_mpr_create(uint32_t interfaceVersion)
{
    KsMPRParam planes;
    return Create<CorvaneEngineMPR>(interfaceVersion, [&](EngineMPR& object) { return object.GetParams(planes); });
}

void corvane_engine_mpr_destroy(CorvaneEngineMPR* engine) { Destroy(engine); }

CorvaneStatus corvane_engine_mpr_init_data(CorvaneEngineMPR* engine, const KsVolumeData* volume)
{
    return Load(engine, IsVolume(volume), [&](EngineMPR& object) { return object.InitData(*volume); });
}

CorvaneStatus corvane_engine_mpr_clear(CorvaneEngineMPR* engine)
{
    return OneCall(engine, CORVANE_OK,
                   [&](EngineMPR& object)
                   {
                       engine->hasVolume = false;
                       object.Clear();
                   });
}

CorvaneStatus corvane_engine_mpr_set_mark_data(CorvaneEngineMPR* engine, const KsVolumeMark* mark)
{
    return OneCall(engine, IsMark(mark), [&](EngineMPR& object) { return object.SetMarkData(*mark); });
}

CorvaneStatus corvane_engine_mpr_get_origin(CorvaneEngineMPR* engine, double* origin3)
{
    return OneCall(engine, NotNull(origin3), [&](EngineMPR& object) { return object.GetOrigin(origin3); });
}

CorvaneStatus corvane_engine_mpr_set_origin(CorvaneEngineMPR* engine, const double* origin3)
{
    return OneCall(engine, NotNull(origin3), [&](EngineMPR& object) { return object.SetOrigin(origin3); });
}

CorvaneStatus corvane_engine_mpr_get_direct(CorvaneEngineMPR* engine, KsMPRType type, double* normal3)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(normal3)),
                   [&](EngineMPR& object) { return object.GetDirect(type, normal3); });
}

CorvaneStatus corvane_engine_mpr_get_params(CorvaneEngineMPR* engine, KsMPRParam* planes)
{
    return OneCall(engine, NotNull(planes), [&](EngineMPR& object) { return object.GetParams(*planes); });
}

CorvaneStatus corvane_engine_mpr_set_params(CorvaneEngineMPR* engine, const KsMPRParam* planes)
{
    return OneCall(engine, NotNull(planes), [&](EngineMPR& object) { return object.SetParams(*planes); });
}

CorvaneStatus corvane_engine_mpr_rotate(CorvaneEngineMPR* engine, KsMPRType type, float angle)
{
    return OneCall(engine, First(IsPlaneType(type), Finite(angle)),
                   [&](EngineMPR& object) { return object.Rotate(type, angle); });
}

CorvaneStatus corvane_engine_mpr_reset(CorvaneEngineMPR* engine)
{
    return OneCall(engine, CORVANE_OK, [](EngineMPR& object) { return object.Reset(); });
}

CorvaneStatus corvane_engine_mpr_get_image_param(CorvaneEngineMPR* engine, KsMPRType type, PnImageParam* plane)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(plane)),
                   [&](EngineMPR& object) { return object.GetImageParam(type, *plane); });
}

CorvaneStatus corvane_engine_mpr_get_image_count(CorvaneEngineMPR* engine, KsMPRType type, float spacing,
                                                 int32_t* count, PnImageParam* first)
{
    return OneCall(engine, First(IsPlaneType(type), Finite(spacing), NotNull(count)),
                   [&](EngineMPR& object)
                   {
                       *count = object.GetImageCount(type, spacing, first);
                       return engine->hasVolume;
                   });
}

CorvaneStatus corvane_engine_mpr_marking(CorvaneEngineMPR* engine, KsMPRType type, KsMarkData* image)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(image)),
                   [&](EngineMPR& object) { return object.Marking(type, image); });
}

CorvaneStatus corvane_engine_mpr_imaging_by_plane(CorvaneEngineMPR* engine, const PnImageParam* plane,
                                                  KsImageData* image)
{
    return OneCall(engine, NotNull(plane, image), [&](EngineMPR& object) { return object.Imaging(*plane, image); });
}

CorvaneStatus corvane_engine_mpr_imaging_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                  KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image), [&](EngineMPR& object) { return object.Imaging(*slice, image); });
}

CorvaneStatus corvane_engine_mpr_imaging_by_type_of_volume(CorvaneEngineMPR* engine, KsMPRType type,
                                                           const KsVolumeData* volume, KsImageData* image)
{
    return OneCall(engine, First(IsPlaneType(type), IsVolume(volume), NotNull(image)),
                   [&](EngineMPR& object) { return object.Imaging(type, *volume, image); });
}

CorvaneStatus corvane_engine_mpr_imaging_by_type(CorvaneEngineMPR* engine, KsMPRType type, KsImageData* image)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(image)),
                   [&](EngineMPR& object) { return object.Imaging(type, image); });
}

CorvaneStatus corvane_engine_mpr_imaging_mip_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                      float thickness, KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingMIP(*slice, thickness, image)); });
}

CorvaneStatus corvane_engine_mpr_imaging_mip_by_type(CorvaneEngineMPR* engine, KsMPRType type, float thickness,
                                                     KsImageData* image)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(image)),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingMIP(type, thickness, image)); });
}

CorvaneStatus corvane_engine_mpr_imaging_aip_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                      float thickness, KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingAIP(*slice, thickness, image)); });
}

CorvaneStatus corvane_engine_mpr_imaging_aip_by_type(CorvaneEngineMPR* engine, KsMPRType type, float thickness,
                                                     KsImageData* image)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(image)),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingAIP(type, thickness, image)); });
}

CorvaneStatus corvane_engine_mpr_imaging_minip_by_slice(CorvaneEngineMPR* engine, const KsSliceParam* slice,
                                                        float thickness, KsImageData* image)
{
    return OneCall(engine, NotNull(slice, image),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingMinIP(*slice, thickness, image)); });
}

CorvaneStatus corvane_engine_mpr_imaging_minip_by_type(CorvaneEngineMPR* engine, KsMPRType type, float thickness,
                                                       KsImageData* image)
{
    return OneCall(engine, First(IsPlaneType(type), NotNull(image)),
                   [&](EngineMPR& object) { return NotDrawn(object.ImagingMinIP(type, thickness, image)); });
}
