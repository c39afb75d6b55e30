#ifndef CORVANE_RECORDS_H
#define CORVANE_RECORDS_H

// The records that cross the interface. Field order and widths are part of the binary interface. Unless a comment
// says otherwise lengths are millimetres, positions and directions are in the patient space of DICOM (x to the
// patient's left, y to posterior, z to superior) and directions are unit vectors. Memory named by a record belongs to
// the host; the library frees it only where an owns flag says so.

#include <stddef.h>
#include <stdint.h>

// The same records serve C: there a record is called by its name alone, defaults are left out and an enumeration is an
// integer of its width.
#ifdef __cplusplus
#define CORVANE_DEFAULT(...) = __VA_ARGS__
#define CORVANE_INT32 : int32_t
#else
#define CORVANE_DEFAULT(...)
#define CORVANE_INT32
typedef struct KsVolumeData KsVolumeData;
typedef struct KsVolumeMark KsVolumeMark;
typedef struct PnImageParam PnImageParam;
typedef struct PnImageRGB PnImageRGB;
typedef struct KsImageVAL KsImageVAL;
typedef struct KsImageMark KsImageMark;
typedef struct KsImageData KsImageData;
typedef struct KsMarkData KsMarkData;
typedef struct KsPalettePoint KsPalettePoint;
typedef struct KsPalette KsPalette;
typedef struct VolumePaletteEntry VolumePaletteEntry;
typedef struct VolumePalette VolumePalette;
typedef struct KsViewPoint KsViewPoint;
typedef struct KsCamera KsCamera;
typedef struct KsSliceParam KsSliceParam;
typedef struct KsBlendImage KsBlendImage;
typedef struct KsPlaneFrame KsPlaneFrame;
typedef struct KsMPRParam KsMPRParam;
typedef int32_t KsRender;
typedef int32_t KsMPRType;
#endif

// A volume of stored values. Voxel (i, j, k) lies at
// origin + i * spacing[0] * rowDirection + j * spacing[1] * columnDirection + k * spacing[2] * sliceDirection.
// The slice direction need not be perpendicular to the other two: a tilted stack is described as it is.
struct KsVolumeData
{
    const int16_t* const* slices; // sizeZ pointers to sizeX * sizeY stored values, x fastest; null: no volume
    int32_t sizeX;                // voxels along rowDirection, at least 1
    int32_t sizeY;                // voxels along columnDirection, at least 1
    int32_t sizeZ;                // voxels along sliceDirection, at least 1
    float spacing[3];             // mm between voxel centres along x, y and z, each above 0
    float origin[3];              // centre of voxel (0, 0, 0)
    float rowDirection[3];        // direction in which i grows
    float columnDirection[3];     // direction in which j grows
    float sliceDirection[3];      // direction in which k grows
};

// Labels of a volume, one byte per voxel: bits 0 to 5 the label (0 is the default), bit 6 (64) set where the voxel is
// cut away. The sizes are those of the volume.
struct KsVolumeMark
{
    uint8_t** slices; // sizeZ pointers to sizeX * sizeY labels, x fastest; null: no labels
    uint32_t sizeX;   // voxels along x
    uint32_t sizeY;   // voxels along y
    uint32_t sizeZ;   // voxels along z
};

// Geometry of one image plane.
// Pixel (row r, column c) lies at position + c * columnSpacing * rowDirection + r * rowSpacing * columnDirection.
struct PnImageParam
{
    uint32_t rows;             // pixels along columnDirection
    uint32_t columns;          // pixels along rowDirection
    double rowSpacing;         // mm between rows
    double columnSpacing;      // mm between columns
    double rowDirection[3];    // direction in which the column index grows
    double columnDirection[3]; // direction in which the row index grows
    double position[3];        // centre of the first pixel
};

// A colour image in the host's buffer of rows * columns pixels, row by row. The renderer writes the geometry.
struct PnImageRGB
{
    uint32_t* pixels;   // bits 0 to 7 coverage, 8 to 15 red, 16 to 23 green, 24 to 31 blue
    PnImageParam param; // where the image lies
};

// An image of stored values in the host's buffer of rows * columns values, row by row; -1024 outside the volume.
struct KsImageVAL
{
    int16_t* values;    // row by row
    PnImageParam param; // where the image lies
};

// An image of labels in the host's buffer of rows * columns bytes, row by row; 0 outside the volume.
struct KsImageMark
{
    uint8_t* labels;    // row by row
    PnImageParam param; // where the image lies
};

// An image of stored values whose buffer the library sizes. Start from a zeroed record and release what is left at
// the end with `if (image.ownsValues) delete[] image.values;`.
struct KsImageData
{
    uint32_t valueCount; // rows * columns while the buffer is the library's
    int16_t* values;     // row by row
    uint8_t ownsValues;  // not 0: the buffer came from the library, which frees it on the next resize
    uint32_t rows;       // of the buffer
    uint32_t columns;    // of the buffer
    PnImageParam param;  // where the image lies
};

// The same with one label per pixel.
struct KsMarkData
{
    uint32_t labelCount; // rows * columns while the buffer is the library's
    uint8_t* labels;     // row by row
    uint8_t ownsLabels;  // not 0: the buffer came from the library, which frees it on the next resize
    uint32_t rows;       // of the buffer
    uint32_t columns;    // of the buffer
    PnImageParam param;  // where the image lies
};

// One control point of a transfer function.
struct KsPalettePoint
{
    int16_t value;   // stored value
    uint32_t colour; // 0x00RRGGBB
    float opacity;   // 0 to 1
};

// A transfer function as the host gives it. Accepted with at least two points.
struct KsPalette
{
    uint8_t visible CORVANE_DEFAULT(1);                      // 0: hidden
    float shading[3] CORVANE_DEFAULT({0.11f, 0.816f, 0.0f}); // ambient, diffuse, specular
    float opacity CORVANE_DEFAULT(1.0f);                     // overall opacity
    int32_t pointCount CORVANE_DEFAULT(0);                   // control points
    KsPalettePoint* points CORVANE_DEFAULT(nullptr);         // in any order
    uint8_t ownsPoints CORVANE_DEFAULT(0);                   // not 0: the points are freed with the record
};

// Lookup tables of one label: one entry for each stored value from rangeStart to rangeEnd.
struct VolumePaletteEntry
{
    int32_t rangeStart; // smallest control-point value
    int32_t rangeEnd;   // largest control-point value
    int32_t size;       // rangeEnd - rangeStart + 1
    uint8_t* colours;   // size * 3 bytes: red, green, blue
    float* opacities;   // size opacities
    float opacity;      // overall opacity
    uint8_t visible;    // 0: hidden
    float shading[3];   // ambient, diffuse, specular
};

// Lookup tables of all labels, and for each stored value the sum of the opacities of all visible entries.
struct VolumePalette
{
    VolumePaletteEntry* entries[64]; // by label; null: the label has no table
    int32_t sumStart;                // stored value of the first sum
    int32_t sumLength;               // sums
    float* opacitySums;              // sumLength sums
};

// The view of a virtual endoscopy. Row direction of the image: direction x up; column direction: direction x row.
struct KsViewPoint
{
    float eye[3];       // where the picture is seen from
    float direction[3]; // of the line of sight through its middle
    float up[3];        // what is up in it
};

// The view of a camera-based intensity projection. Image axes as for KsViewPoint.
struct KsCamera
{
    float center[3];    // centre of the image
    float direction[3]; // of the rays
    float up[3];        // what is up in the image
};

// A square plane.
struct KsSliceParam
{
    double position[3];        // first pixel
    double rowDirection[3];    // direction in which the column index grows
    double columnDirection[3]; // direction in which the row index grows
    double sideLength;         // mm
};

// One flat image that is blended into a volume rendering.
struct KsBlendImage
{
    int32_t corners[4][2];     // x, y in output pixels, in the order of the outline
    uint32_t* pixels;          // as large as the output: bits 8 to 15 red, 16 to 23 green, 24 to 31 blue
    uint8_t reserved[120];     // the host's; copied, never read
    double rowDirection[3];    // of the plane in the patient
    double columnDirection[3]; // of the plane in the patient
    double position[3];        // a point of the plane
};

// Axes of one reconstruction plane: three unit vectors.
struct KsPlaneFrame
{
    double rowDirection[3];    // direction in which the column index grows
    double columnDirection[3]; // direction in which the row index grows
    double normal[3];          // the third axis
};

// The state of the three reconstruction planes. The coronal frame stands before the sagittal one.
struct KsMPRParam
{
    double origin[3];        // the point that the three planes share
    KsPlaneFrame transverse; // across the patient
    KsPlaneFrame coronal;    // from the front
    KsPlaneFrame sagittal;   // from the side
};

// How Engine3D looks at the volume.
enum KsRender CORVANE_INT32
{
    KsRenderParallel = 0,   // orthographic camera: volume rendering and intensity projections
    KsRenderPerspective = 1 // perspective camera: virtual endoscopy
};

// The three reconstruction planes, as they stand before any rotation.
enum KsMPRType CORVANE_INT32
{
    KsMPRTransverse = 1, // row (1, 0, 0), column (0, 1, 0), normal (0, 0, 1)
    KsMPRSagittal = 2,   // row (0, 1, 0), column (0, 0, -1), normal (-1, 0, 0)
    KsMPRCoronal = 3     // row (1, 0, 0), column (0, 0, -1), normal (0, 1, 0)
};

#undef CORVANE_DEFAULT
#undef CORVANE_INT32

#ifdef __cplusplus
static_assert(sizeof(void*) == 8, "the binary interface is that of 64-bit machines");
static_assert(sizeof(KsVolumeData) == 80 && offsetof(KsVolumeData, sizeX) == 8, "");
static_assert(offsetof(KsVolumeData, spacing) == 20 && offsetof(KsVolumeData, origin) == 32, "");
static_assert(offsetof(KsVolumeData, rowDirection) == 44 && offsetof(KsVolumeData, sliceDirection) == 68, "");
static_assert(sizeof(KsVolumeMark) == 24 && offsetof(KsVolumeMark, sizeZ) == 16, "");
static_assert(sizeof(PnImageParam) == 96 && offsetof(PnImageParam, rowSpacing) == 8, "");
static_assert(offsetof(PnImageParam, rowDirection) == 24 && offsetof(PnImageParam, position) == 72, "");
static_assert(sizeof(PnImageRGB) == 104 && offsetof(PnImageRGB, param) == 8, "");
static_assert(sizeof(KsImageVAL) == 104 && offsetof(KsImageVAL, param) == 8, "");
static_assert(sizeof(KsImageMark) == 104 && offsetof(KsImageMark, param) == 8, "");
static_assert(sizeof(KsImageData) == 128 && offsetof(KsImageData, values) == 8, "");
static_assert(offsetof(KsImageData, ownsValues) == 16 && offsetof(KsImageData, rows) == 20, "");
static_assert(offsetof(KsImageData, columns) == 24 && offsetof(KsImageData, param) == 32, "");
static_assert(sizeof(KsMarkData) == 128 && offsetof(KsMarkData, labels) == 8, "");
static_assert(offsetof(KsMarkData, ownsLabels) == 16 && offsetof(KsMarkData, rows) == 20, "");
static_assert(offsetof(KsMarkData, columns) == 24 && offsetof(KsMarkData, param) == 32, "");
static_assert(sizeof(KsPalettePoint) == 12 && offsetof(KsPalettePoint, colour) == 4, "");
static_assert(sizeof(KsPalette) == 40 && offsetof(KsPalette, shading) == 4, "");
static_assert(offsetof(KsPalette, opacity) == 16 && offsetof(KsPalette, pointCount) == 20, "");
static_assert(offsetof(KsPalette, points) == 24 && offsetof(KsPalette, ownsPoints) == 32, "");
static_assert(__is_trivially_copyable(KsPalette), "");
static_assert(sizeof(VolumePaletteEntry) == 56 && offsetof(VolumePaletteEntry, colours) == 16, "");
static_assert(offsetof(VolumePaletteEntry, opacity) == 32 && offsetof(VolumePaletteEntry, shading) == 40, "");
static_assert(sizeof(VolumePalette) == 528 && offsetof(VolumePalette, sumStart) == 512, "");
static_assert(offsetof(VolumePalette, opacitySums) == 520, "");
static_assert(sizeof(KsViewPoint) == 36 && sizeof(KsCamera) == 36, "");
static_assert(sizeof(KsSliceParam) == 80 && offsetof(KsSliceParam, sideLength) == 72, "");
static_assert(sizeof(KsBlendImage) == 232 && offsetof(KsBlendImage, pixels) == 32, "");
static_assert(offsetof(KsBlendImage, rowDirection) == 160 && offsetof(KsBlendImage, position) == 208, "");
static_assert(sizeof(KsMPRParam) == 240 && offsetof(KsMPRParam, coronal) == 96, "");
static_assert(sizeof(KsRender) == 4 && sizeof(KsMPRType) == 4, "");
#endif

#endif
