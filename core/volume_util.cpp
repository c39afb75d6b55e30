#include "corvane/VolumeUtil.h"

#include "vec3.h"

using namespace corvane::core;

namespace
{
// How far a displacement reaches along a direction, in units of a spacing. Each product is divided on its own: the
// order is part of the result.
double Along(Vec3d displacement, const double* direction, double spacing)
{
    return displacement.x * direction[0] / spacing + displacement.y * direction[1] / spacing +
           displacement.z * direction[2] / spacing;
}
} // namespace

void VolumeUtil::PatientToImageCoords(const PnImageParam& param, const double* patientPoint, double* imagePoint)
{
    const Vec3d displacement = VecOf(patientPoint) - VecOf(param.position);
    imagePoint[0] = Along(displacement, param.rowDirection, param.columnSpacing);
    imagePoint[1] = Along(displacement, param.columnDirection, param.rowSpacing);
}

void VolumeUtil::PatientToImageCoords(const PnImageParam& param, const float* patientPoint, float* imagePoint)
{
    const double widened[3] = {patientPoint[0], patientPoint[1], patientPoint[2]};
    double coordinates[2];
    PatientToImageCoords(param, widened, coordinates);
    imagePoint[0] = float(coordinates[0]);
    imagePoint[1] = float(coordinates[1]);
}
