#include "polygon_rows.h"
#include "scene.h"

#include <utility>

// Cuts of a scene, and their history. The voxels of a step are found first; only then anything changes.

namespace corvane::capi
{
namespace
{
// Adds those of the voxels [first, end) for which isTaken(voxel) holds.
template <class IsTaken>
void AppendTaken(uint64_t first, uint64_t end, const IsTaken& isTaken, VoxelRuns& step)
{
    for (uint64_t voxel = first; voxel < end;)
    {
        while (voxel < end && !isTaken(voxel))
            ++voxel;
        const uint64_t runFirst = voxel;
        while (voxel < end && isTaken(voxel))
            ++voxel;
        step.Append(runFirst, voxel);
    }
}
} // namespace

uint64_t Scene::CutPolygon(const PnImageParam& plane, const double* points, size_t pointCount, int32_t side)
{
    const VisibleBytes isVisible = VisibleLabels();
    const uint8_t* const labels = labels_.get();
    const auto isTaken = [&](uint64_t voxel) { return isVisible[labels[voxel]]; };
    PolygonRows rows(volume_, plane, points, pointCount);
    VoxelRuns step;
    for (int32_t k = 0; k < volume_.sizeZ; ++k)
        for (int32_t j = 0; j < volume_.sizeY; ++j)
        {
            const uint64_t row = (uint64_t(k) * uint64_t(volume_.sizeY) + uint64_t(j)) * uint64_t(volume_.sizeX);
            int32_t behind = 0; // the end of the last range inside
            for (const VoxelRange& inside : rows.InsideOf(j, k))
            {
                if (side == CORVANE_INSIDE)
                    AppendTaken(row + uint64_t(inside.first), row + uint64_t(inside.end), isTaken, step);
                else
                    AppendTaken(row + uint64_t(behind), row + uint64_t(inside.first), isTaken, step);
                behind = inside.end;
            }
            if (side == CORVANE_OUTSIDE)
                AppendTaken(row + uint64_t(behind), row + uint64_t(volume_.sizeX), isTaken, step);
        }
    return Do(std::move(step));
}

uint64_t Scene::CutSelection(const uint8_t* selection)
{
    const VisibleBytes isVisible = VisibleLabels();
    const uint8_t* const labels = labels_.get();
    VoxelRuns step;
    AppendTaken(
        0, VoxelCount(), [&](uint64_t voxel) { return selection[voxel] && isVisible[labels[voxel]]; }, step);
    return Do(std::move(step));
}

uint64_t Scene::Restore()
{
    const uint8_t* const labels = labels_.get();
    VoxelRuns step;
    AppendTaken(
        0, VoxelCount(), [&](uint64_t voxel) { return (labels[voxel] & kCutAway) != 0; }, step);
    return Do(std::move(step));
}

CorvaneStatus Scene::Undo()
{
    const VoxelRuns* const step = history_.ToUndo();
    if (!step)
        return CORVANE_ERROR_NO_STEP;
    TurnOver(*step);
    history_.Undone();
    return CORVANE_OK;
}

CorvaneStatus Scene::Redo()
{
    const VoxelRuns* const step = history_.ToRedo();
    if (!step)
        return CORVANE_ERROR_NO_STEP;
    TurnOver(*step);
    history_.Redone();
    return CORVANE_OK;
}

Scene::VisibleBytes Scene::VisibleLabels() const
{
    VisibleBytes isVisible = {};
    for (int label = 0; label < LabelPalettes::kLabelCount; ++label)
        isVisible[size_t(label)] = palettes_.IsVisible(label);
    return isVisible;
}

uint64_t Scene::Do(VoxelRuns&& step)
{
    step.Finish();
    const uint64_t count = step.VoxelCount();
    if (count == 0)
        return 0;
    history_.Reserve();
    TurnOver(step);
    history_.Record(std::move(step));
    return count;
}

void Scene::TurnOver(const VoxelRuns& step) noexcept
{
    uint8_t* const labels = labels_.get();
    step.ForEach(
        [labels](uint64_t first, uint64_t end)
        {
            for (uint64_t voxel = first; voxel < end; ++voxel)
                labels[voxel] ^= kCutAway;
        });
    ForwardLabels();
}
} // namespace corvane::capi
