#ifndef CORVANE_FUZZ_LIBRARY_PLANES_H
#define CORVANE_FUZZ_LIBRARY_PLANES_H

#include "session.h"

namespace corvane::fuzz
{
// Rows and columns of an image, or other than can be: then they have no pixels, or too many to be counted.
struct Size
{
    int rows, columns;

    bool IsTooLarge() const { return int64_t(rows) * columns > int64_t(kMostPixels); } // then there is no buffer
    size_t Pixels() const { return rows > 0 && columns > 0 && !IsTooLarge() ? size_t(rows) * size_t(columns) : 0; }
};

// A size with pixels, sometimes none.
Size MakeSize(Session& session);

// Sometimes a size that every operation refuses.
Size MakeSizeToRefuse(Session& session);

// Unit vectors at right angles, most of the time.
void FillDirections(Session& session, double* row, double* column);

// Without a size.
PnImageParam MakePlane(Session& session);
PnImageParam MakePlane(Session& session, Size size);

KsSliceParam MakeSlice(Session& session);
KsCamera MakeCamera(Session& session);
KsViewPoint MakeView(Session& session);
KsMPRParam MakeFrames(Session& session);
KsMPRType MakeType(Session& session);

// Blend images with pixels for every picture, sometimes none.
struct BlendImages
{
    KsBlendImage* images;
    int count;
};
BlendImages MakeBlendImages(Session& session);
} // namespace corvane::fuzz

#endif
