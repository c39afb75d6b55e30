#ifndef CORVANE_VOLUME_UTIL_H
#define CORVANE_VOLUME_UTIL_H

#include "Export.h"
#include "Records.h"

// Coordinate conversions without state.
class CORVANE_API VolumeUtil
{
public:
    // Pixel coordinates of the orthogonal projection of a point onto an image plane.
    //   param         the image plane; its spacings must not be 0
    //   patientPoint  x, y, z in patient mm
    //   imagePoint    receives column, row; (0, 0) is the centre of the first pixel; neither rounded nor limited to
    //                 the image
    static void PatientToImageCoords(const PnImageParam& param, const double* patientPoint, double* imagePoint);

    // The same on single-precision points; computed in double precision.
    static void PatientToImageCoords(const PnImageParam& param, const float* patientPoint, float* imagePoint);
};

#endif
