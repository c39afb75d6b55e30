#ifndef CORVANE_CORVANE_C_COMMON_H
#define CORVANE_CORVANE_C_COMMON_H

// What all of the C interface shares: error codes, versions, memory. See corvane_c.h for what holds for every function.

#include "Records.h"

#ifdef __cplusplus
#define CORVANE_C_LINKAGE extern "C"
#else
#define CORVANE_C_LINKAGE
#endif
#if defined(_WIN32) && defined(CORVANE_C_BUILDING)
#define CORVANE_C_API CORVANE_C_LINKAGE __declspec(dllexport)
#elif defined(_WIN32)
#define CORVANE_C_API CORVANE_C_LINKAGE __declspec(dllimport)
#else
#define CORVANE_C_API CORVANE_C_LINKAGE __attribute__((visibility("default")))
#endif

// The interface that these headers describe; hand it to every _create. A library that speaks another one creates
// nothing, so that a program never calls functions that take other arguments than it was compiled for.
#define CORVANE_C_INTERFACE 1u

// What a function answers.
typedef int32_t CorvaneStatus;
enum
{
    CORVANE_OK = 0,
    CORVANE_ERROR_HANDLE = 1,      // the handle is NULL or of another class
    CORVANE_ERROR_ARGUMENT = 2,    // a null pointer, or a value that the function does not take
    CORVANE_ERROR_VERSION = 3,     // the library speaks another interface
    CORVANE_ERROR_MEMORY = 4,      // memory is short
    CORVANE_ERROR_NO_VOLUME = 5,   // there is no volume yet
    CORVANE_ERROR_REFUSED = 6,     // the operation answered false; its class says when it does
    CORVANE_ERROR_NOT_OFFERED = 7, // this machine or this class cannot do it
    CORVANE_ERROR_BUFFER = 8,      // the buffer holds fewer elements than the result has
    CORVANE_ERROR_NO_STEP = 9      // nothing is left to undo or to redo
};

// One line that says what is wrong and what to do. Never NULL, for any number; the text is the library's.
CORVANE_C_API const char* corvane_error_text(CorvaneStatus status);

// The library's version, "major.minor.patch", and as three numbers.
CORVANE_C_API const char* corvane_version(void);
CORVANE_C_API CorvaneStatus corvane_version_numbers(int32_t* major, int32_t* minor, int32_t* patch);

// CORVANE_OK, or CORVANE_ERROR_VERSION for an interface that this library does not speak; tells why a _create gave
// NULL.
CORVANE_C_API CorvaneStatus corvane_check_interface(uint32_t interfaceVersion);

// Gives a palette its defaults: visible, shading 0.11, 0.816, 0, opacity 1, no points. What it held is not freed.
CORVANE_C_API CorvaneStatus corvane_palette_init(KsPalette* palette);

// Free what the library allocated for a record (its owns flag says so), and empty the record. Begin with a record of
// zeros, or corvane_palette_init, and free it once at the end: in between the library replaces its buffer itself.
CORVANE_C_API void corvane_palette_free(KsPalette* palette);
CORVANE_C_API void corvane_image_data_free(KsImageData* image);
CORVANE_C_API void corvane_mark_data_free(KsMarkData* image);

// Pixel coordinates (column, row) of the orthogonal projection of a patient point onto an image plane; (0, 0) is the
// centre of the first pixel; neither rounded nor limited to the image.
//   patientPoint3  x, y, z in mm
//   imagePoint2    receives column, row
CORVANE_C_API CorvaneStatus corvane_patient_to_image_coords(const PnImageParam* plane, const double* patientPoint3,
                                                            double* imagePoint2);
CORVANE_C_API CorvaneStatus corvane_patient_to_image_coords_float(const PnImageParam* plane, const float* patientPoint3,
                                                                  float* imagePoint2);

#endif
