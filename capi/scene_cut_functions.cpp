#include "arguments.h"
#include "scene_handle.h"

#include <algorithm>
#include <cmath>

// The exported functions of a scene for cuts and their history: each checks its arguments and hands over.

using namespace corvane::capi;

namespace
{
constexpr size_t kMostPoints = size_t(1) << 16; // each costs a step for every row of voxels

// Corners that a picture can have, within a thousand million pixels.
CorvaneStatus IsPolygon(const double* points, size_t pointCount)
{
    return Require(points && pointCount >= 3 && pointCount <= kMostPoints &&
                   std::all_of(points, points + 2 * pointCount, [](double at) { return std::abs(at) <= 1e9; }));
}

CorvaneStatus IsSide(int32_t side) { return Require(side == CORVANE_INSIDE || side == CORVANE_OUTSIDE); }

void Store(uint64_t* target, uint64_t count)
{
    if (target)
        *target = count;
}
} // namespace

CorvaneStatus corvane_scene_cut_polygon(CorvaneScene* scene, const PnImageParam* plane, const double* points,
                                        size_t pointCount, int32_t side, uint64_t* cutCount)
{
    return OnVolume(scene, First(IsPlane(plane), IsPolygon(points, pointCount), IsSide(side)),
                    [&](Scene& object) { Store(cutCount, object.CutPolygon(*plane, points, pointCount, side)); });
}

CorvaneStatus corvane_scene_cut_selection(CorvaneScene* scene, const uint8_t* selection, size_t count,
                                          uint64_t* cutCount)
{
    return OnVolume(scene, NotNull(selection),
                    [&](Scene& object) -> CorvaneStatus
                    {
                        if (count != object.VoxelCount())
                            return CORVANE_ERROR_ARGUMENT;
                        Store(cutCount, object.CutSelection(selection));
                        return CORVANE_OK;
                    });
}

CorvaneStatus corvane_scene_restore(CorvaneScene* scene, uint64_t* restoredCount)
{
    return OnVolume(scene, CORVANE_OK, [&](Scene& object) { Store(restoredCount, object.Restore()); });
}

CorvaneStatus corvane_scene_undo(CorvaneScene* scene)
{
    return OnVolume(scene, CORVANE_OK, [](Scene& object) { return object.Undo(); });
}

CorvaneStatus corvane_scene_redo(CorvaneScene* scene)
{
    return OnVolume(scene, CORVANE_OK, [](Scene& object) { return object.Redo(); });
}

CorvaneStatus corvane_scene_get_history(CorvaneScene* scene, size_t* undoable, size_t* redoable, size_t* bytes)
{
    return OneCall(scene, CORVANE_OK,
                   [&](Scene& object)
                   {
                       if (undoable)
                           *undoable = object.History().UndoableCount();
                       if (redoable)
                           *redoable = object.History().RedoableCount();
                       if (bytes)
                           *bytes = object.History().Bytes();
                   });
}

CorvaneStatus corvane_scene_set_history_limit(CorvaneScene* scene, size_t bytes)
{
    return OneCall(scene, CORVANE_OK, [&](Scene& object) { object.History().SetLimit(bytes); });
}
