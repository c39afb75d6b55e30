#include "state.h"

#include "core/guarded.h"
#include "cutting.h"

#include <cstdint>

// Selecting what a drawn region covers, and cutting it away.

using namespace corvane;
using namespace corvane::core;
using namespace corvane::engine3d;

bool Engine3D::CutAppend(const KsVolumeMark& selection)
{
    if (!state_ || !selection.slices)
        return false;
    KsVolumeMark& labels = state_->labels.Record();
    if (!labels.slices || !SameSizes(selection, labels))
        return false;
    CutSelected(selection, labels);
    state_->ForwardLabels();
    return true;
}

bool Engine3D::CutSubtract(const KsVolumeMark&) { return false; }

void Engine3D::CutClear() {}

bool Engine3D::CutFill(const KsImageMark& region, KsVolumeMark& result, uint8_t value)
{
    if (!state_ || !state_->volume.slices || !region.labels)
        return false;
    const KsVolumeMark& labels = state_->labels.Record();
    if (!FitsVolume(result, state_->volume) || !FitsVolume(labels, state_->volume) || region.param.rows > INT32_MAX ||
        region.param.columns > INT32_MAX)
        return false;
    return Guarded(
        [&]
        {
            SelectCovered(state_->volume, labels, state_->tables.Records(), region, value, result);
            return true;
        });
}
