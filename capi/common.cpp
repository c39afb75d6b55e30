#include "arguments.h"
#include "corvane/VolumeUtil.h"
#include "corvane/corvane_c_common.h"

// Error texts, versions and the memory of records. CORVANE_VERSION comes from the build.

using namespace corvane::capi;

namespace
{
constexpr int32_t kVersion[] = {CORVANE_VERSION_MAJOR, CORVANE_VERSION_MINOR, CORVANE_VERSION_PATCH};
}

const char* corvane_error_text(CorvaneStatus status)
{
    switch (status)
    {
    case CORVANE_OK:
        return "no error";
    case CORVANE_ERROR_HANDLE:
        return "the handle is null or of another class; pass what the matching _create function returned";
    case CORVANE_ERROR_ARGUMENT:
        return "an argument is null or has a value that the function does not take; see the function's comment";
    case CORVANE_ERROR_VERSION:
        return "the library speaks another interface; compile the program against the headers of the installed library";
    case CORVANE_ERROR_MEMORY:
        return "memory is short; free some or use a smaller volume or image";
    case CORVANE_ERROR_NO_VOLUME:
        return "there is no volume; load one first";
    case CORVANE_ERROR_REFUSED:
        return "the operation was refused; the comment of the C++ class says what it does not take";
    case CORVANE_ERROR_NOT_OFFERED:
        return "this is not offered here: no GPU, or an operation that only a scene has";
    case CORVANE_ERROR_BUFFER:
        return "the buffer is too small; it needs rows * columns elements, or one per voxel";
    case CORVANE_ERROR_NO_STEP:
        return "there is no step to undo or to redo";
    default:
        return "not an error code of this library";
    }
}

const char* corvane_version(void) { return CORVANE_VERSION; }

CorvaneStatus corvane_version_numbers(int32_t* major, int32_t* minor, int32_t* patch)
{
    if (!major || !minor || !patch)
        return CORVANE_ERROR_ARGUMENT;
    *major = kVersion[0];
    *minor = kVersion[1];
    *patch = kVersion[2];
    return CORVANE_OK;
}

CorvaneStatus corvane_check_interface(uint32_t interfaceVersion)
{
    return interfaceVersion == CORVANE_C_INTERFACE ? CORVANE_OK : CORVANE_ERROR_VERSION;
}

CorvaneStatus corvane_palette_init(KsPalette* palette)
{
    if (!palette)
        return CORVANE_ERROR_ARGUMENT;
    *palette = KsPalette();
    return CORVANE_OK;
}

void corvane_palette_free(KsPalette* palette)
{
    if (!palette)
        return;
    if (palette->ownsPoints)
        delete[] palette->points;
    palette->points = nullptr;
    palette->pointCount = 0;
    palette->ownsPoints = 0;
}

void corvane_image_data_free(KsImageData* image)
{
    if (!image)
        return;
    if (image->ownsValues)
        delete[] image->values;
    *image = {};
}

void corvane_mark_data_free(KsMarkData* image)
{
    if (!image)
        return;
    if (image->ownsLabels)
        delete[] image->labels;
    *image = {};
}

CorvaneStatus corvane_patient_to_image_coords(const PnImageParam* plane, const double* patientPoint3,
                                              double* imagePoint2)
{
    if (!plane || !patientPoint3 || !imagePoint2 || plane->rowSpacing == 0.0 || plane->columnSpacing == 0.0)
        return CORVANE_ERROR_ARGUMENT;
    VolumeUtil::PatientToImageCoords(*plane, patientPoint3, imagePoint2);
    return CORVANE_OK;
}

CorvaneStatus corvane_patient_to_image_coords_float(const PnImageParam* plane, const float* patientPoint3,
                                                    float* imagePoint2)
{
    if (!plane || !patientPoint3 || !imagePoint2 || plane->rowSpacing == 0.0 || plane->columnSpacing == 0.0)
        return CORVANE_ERROR_ARGUMENT;
    VolumeUtil::PatientToImageCoords(*plane, patientPoint3, imagePoint2);
    return CORVANE_OK;
}
