#ifndef CORVANE_CAPI_BLEND_IMAGES_H
#define CORVANE_CAPI_BLEND_IMAGES_H

#include "corvane/corvane_c_common.h"

#include <algorithm>

namespace corvane::capi
{
// Hands blend images to a renderer, at most as many as renderers use: a count that is wrong by much reads nothing.
template <class Renderer>
void SetBlendImages(Renderer& renderer, const KsBlendImage* images, int32_t count)
{
    constexpr int32_t kMostUsed = 4;
    KsBlendImage taken[kMostUsed];
    const int32_t takenCount = images ? std::clamp(count, 0, kMostUsed) : 0;
    std::copy_n(images, takenCount, taken);
    renderer.SetBlendImage(taken, takenCount);
}
} // namespace corvane::capi

#endif
