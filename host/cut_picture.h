#ifndef CORVANE_HOST_CUT_PICTURE_H
#define CORVANE_HOST_CUT_PICTURE_H

#include "cut_selection.h"
#include "picture.h"

namespace corvane::host
{
// Shows on a picture what is to be cut away: that side of the region red, and a yellow line along its pixels' edge,
// inside of it. The region's plane has as many pixels as the picture.
void DrawRegion(Picture& picture, const DrawnRegion& region, CutSide side);
} // namespace corvane::host

#endif
