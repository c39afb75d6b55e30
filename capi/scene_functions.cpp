#include "arguments.h"
#include "scene_handle.h"

#include <algorithm>
#include <cmath>

// The exported functions of a scene but for its cuts: each checks its arguments and hands over.

using namespace corvane::capi;

namespace
{
constexpr float kLeastThickness = 0.1f; // mm; what the renderer takes

// Spacings above 0 and numbers that are finite.
CorvaneStatus HasGeometry(const KsVolumeData& volume)
{
    return First(Finite3(volume.spacing), Finite3(volume.origin), Finite3(volume.rowDirection),
                 Finite3(volume.columnDirection), Finite3(volume.sliceDirection),
                 Require(volume.spacing[0] > 0 && volume.spacing[1] > 0 && volume.spacing[2] > 0));
}

// How many voxels a volume of sizes that the renderers take has; 0 for other sizes.
uint64_t VoxelCountOf(const KsVolumeData& volume)
{
    return HasRenderableSizes(volume) == CORVANE_OK
               ? uint64_t(volume.sizeX) * uint64_t(volume.sizeY) * uint64_t(volume.sizeZ)
               : 0;
}

// A plane and a buffer that holds its image.
CorvaneStatus IsPicture(const PnImageParam* plane, const void* buffer, size_t capacity)
{
    return First(NotNull(buffer), IsPlane(plane), plane ? Holds(capacity, plane->rows, plane->columns) : CORVANE_OK);
}

CorvaneStatus IsSize(uint32_t rows, uint32_t columns)
{
    return Require(rows >= 1 && rows <= INT32_MAX && columns >= 1 && columns <= INT32_MAX);
}

CorvaneStatus IsView(const CorvaneView* view)
{
    return Require(view && view->from >= CORVANE_FROM_FRONT && view->from <= CORVANE_FROM_FEET &&
                   std::isfinite(view->right) && std::isfinite(view->up) && std::isfinite(view->screen) &&
                   view->extent >= 1e-6f && view->extent <= 1e6f);
}

CorvaneStatus IsViewPoint(const KsViewPoint* view)
{
    return Require(view && Finite3(view->eye) == CORVANE_OK && Finite3(view->direction) == CORVANE_OK &&
                   Finite3(view->up) == CORVANE_OK);
}

CorvaneStatus IsKind(int32_t kind) { return Require(kind >= CORVANE_MAXIMUM && kind <= CORVANE_MINIMUM); }

CorvaneStatus IsLabel(int32_t label) { return Require(label >= 0 && label < LabelPalettes::kLabelCount); }

} // namespace

CorvaneScene* corvane_scene_create(uint32_t interfaceVersion)
{
    return Create<CorvaneScene>(interfaceVersion, [](Scene& scene) { return scene.IsUsable(); });
}

void corvane_scene_destroy(CorvaneScene* scene) { Destroy(scene); }

CorvaneStatus corvane_scene_set_volume(CorvaneScene* scene, const KsVolumeData* volume)
{
    return OneCall(scene, First(IsRenderableVolume(volume), volume ? HasGeometry(*volume) : CORVANE_OK),
                   [&](Scene& object) { return object.Load(*volume, nullptr); });
}

CorvaneStatus corvane_scene_set_voxels(CorvaneScene* scene, const KsVolumeData* geometry, const int16_t* voxels,
                                       size_t voxelCount)
{
    const auto isGiven = [&]
    { return First(HasGeometry(*geometry), Require(voxelCount > 0 && voxelCount == VoxelCountOf(*geometry))); };
    return OneCall(scene, First(NotNull(voxels), geometry ? isGiven() : CORVANE_ERROR_ARGUMENT),
                   [&](Scene& object) { return object.Load(*geometry, voxels); });
}

CorvaneStatus corvane_scene_clear(CorvaneScene* scene)
{
    return OneCall(scene, CORVANE_OK, [](Scene& object) { object.Clear(); });
}

CorvaneStatus corvane_scene_get_bounding_box(CorvaneScene* scene, float* min3, float* max3)
{
    return OnVolume(scene, NotNull(min3, max3), [&](Scene& object) { return object.GetBoundingBox(min3, max3); });
}

CorvaneStatus corvane_scene_set_visible_box(CorvaneScene* scene, const float* a3, const float* b3)
{
    return OnVolume(scene, First(Finite3(a3), Finite3(b3)),
                    [&](Scene& object) { return object.SetVisibleBox(a3, b3); });
}

CorvaneStatus corvane_scene_get_visible_box(CorvaneScene* scene, float* min3, float* max3)
{
    return OnVolume(scene, NotNull(min3, max3), [&](Scene& object) { return object.GetVisibleBox(min3, max3); });
}

CorvaneStatus corvane_scene_set_labels(CorvaneScene* scene, const uint8_t* labels, size_t labelCount)
{
    return OnVolume(scene, NotNull(labels),
                    [&](Scene& object) -> CorvaneStatus
                    {
                        const auto isLabel = [](uint8_t label) { return label < LabelPalettes::kLabelCount; };
                        if (labelCount != object.VoxelCount() || !std::all_of(labels, labels + labelCount, isLabel))
                            return CORVANE_ERROR_ARGUMENT;
                        object.SetLabels(labels);
                        return CORVANE_OK;
                    });
}

CorvaneStatus corvane_scene_get_labels(CorvaneScene* scene, uint8_t* labels, size_t capacity)
{
    return OnVolume(scene, NotNull(labels),
                    [&](Scene& object) -> CorvaneStatus
                    {
                        if (capacity < object.VoxelCount())
                            return CORVANE_ERROR_BUFFER;
                        object.GetLabels(labels);
                        return CORVANE_OK;
                    });
}

CorvaneStatus corvane_scene_set_palette(CorvaneScene* scene, int32_t label, const KsPalette* palette)
{
    return OnVolume(scene, First(IsLabel(label), IsPalette(palette)),
                    [&](Scene& object) { return object.SetPalette(label, *palette); });
}

CorvaneStatus corvane_scene_get_palette(CorvaneScene* scene, int32_t label, KsPalette* palette)
{
    return OnVolume(scene, First(IsLabel(label), NotNull(palette)),
                    [&](Scene& object) { return object.GetPalette(label, *palette); });
}

CorvaneStatus corvane_scene_remove_palette(CorvaneScene* scene, int32_t label)
{
    return OnVolume(scene, IsLabel(label), [&](Scene& object) { object.RemovePalette(label); });
}

CorvaneStatus corvane_scene_view_plane(CorvaneScene* scene, const CorvaneView* view, uint32_t rows, uint32_t columns,
                                       PnImageParam* plane)
{
    return OnVolume(scene, First(IsView(view), IsSize(rows, columns), NotNull(plane)),
                    [&](Scene& object) { return object.ViewPlane(*view, rows, columns, *plane); });
}

CorvaneStatus corvane_scene_render(CorvaneScene* scene, const PnImageParam* plane, uint32_t* pixels, size_t capacity)
{
    return OnVolume(scene, IsPicture(plane, pixels, capacity),
                    [&](Scene& object) { return object.Render(*plane, pixels); });
}

CorvaneStatus corvane_scene_endoscopy(CorvaneScene* scene, const KsViewPoint* view, float viewAngleDegrees,
                                      uint32_t rows, uint32_t columns, uint32_t* pixels, size_t capacity,
                                      PnImageParam* plane)
{
    return OnVolume(scene,
                    First(IsViewPoint(view), Finite(viewAngleDegrees), IsSize(rows, columns), NotNull(pixels),
                          Holds(capacity, rows, columns)),
                    [&](Scene& object)
                    { return object.Endoscopy(*view, viewAngleDegrees, rows, columns, pixels, plane); });
}

CorvaneStatus corvane_scene_project(CorvaneScene* scene, int32_t kind, const PnImageParam* plane, int16_t* values,
                                    size_t capacity)
{
    return OnVolume(scene, First(IsKind(kind), IsPicture(plane, values, capacity)),
                    [&](Scene& object) { return object.Project(kind, *plane, values); });
}

CorvaneStatus corvane_scene_slab(CorvaneScene* scene, int32_t kind, const PnImageParam* plane, float thickness,
                                 int16_t* values, size_t capacity)
{
    return OnVolume(scene,
                    First(IsKind(kind), Finite(thickness), Require(thickness >= kLeastThickness),
                          IsPicture(plane, values, capacity)),
                    [&](Scene& object) { return object.Slab(kind, *plane, thickness, values); });
}

CorvaneStatus corvane_scene_reslice(CorvaneScene* scene, const PnImageParam* plane, int16_t* values, size_t capacity)
{
    return OnVolume(scene, IsPicture(plane, values, capacity),
                    [&](Scene& object) { return object.Reslice(*plane, values); });
}

CorvaneStatus corvane_scene_reslice_labels(CorvaneScene* scene, const PnImageParam* plane, uint8_t* labels,
                                           size_t capacity)
{
    return OnVolume(scene, IsPicture(plane, labels, capacity),
                    [&](Scene& object) { return object.ResliceLabels(*plane, labels); });
}

CorvaneStatus corvane_scene_get_mpr(CorvaneScene* scene, KsMPRParam* planes)
{
    return OnVolume(scene, NotNull(planes), [&](Scene& object) { return object.Planes().GetParams(*planes); });
}

CorvaneStatus corvane_scene_set_mpr(CorvaneScene* scene, const KsMPRParam* planes)
{
    return OnVolume(scene, AreFrames(planes), [&](Scene& object) { return object.Planes().SetParams(*planes); });
}

CorvaneStatus corvane_scene_rotate_mpr(CorvaneScene* scene, KsMPRType type, float angle)
{
    return OnVolume(scene, First(IsPlaneType(type), Finite(angle)),
                    [&](Scene& object) { return object.Planes().Rotate(type, angle); });
}

CorvaneStatus corvane_scene_reset_mpr(CorvaneScene* scene)
{
    return OnVolume(scene, CORVANE_OK, [](Scene& object) { return object.Planes().Reset(); });
}

CorvaneStatus corvane_scene_mpr_plane(CorvaneScene* scene, KsMPRType type, PnImageParam* plane)
{
    return OnVolume(scene, First(IsPlaneType(type), NotNull(plane)),
                    [&](Scene& object) { return object.Planes().GetImageParam(type, *plane); });
}
