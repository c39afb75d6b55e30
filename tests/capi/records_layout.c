#include "checks.h"

#include <corvane/corvane_c.h>

/* Offsets and sizes as C sees them, counted by hand: every field at the next multiple of its own width, a record as long
 * as a multiple of its widest field. */

#define FIELD(Record, field, offset) CHECK(offsetof(Record, field) == (offset))

void RecordsLieAsTheirFieldsWereCounted(void)
{
    CHECK(sizeof(KsVolumeData) == 80);
    FIELD(KsVolumeData, slices, 0);
    FIELD(KsVolumeData, sizeX, 8);
    FIELD(KsVolumeData, sizeY, 12);
    FIELD(KsVolumeData, sizeZ, 16);
    FIELD(KsVolumeData, spacing, 20);
    FIELD(KsVolumeData, origin, 32);
    FIELD(KsVolumeData, rowDirection, 44);
    FIELD(KsVolumeData, columnDirection, 56);
    FIELD(KsVolumeData, sliceDirection, 68);
    CHECK(sizeof(KsVolumeMark) == 24);
    FIELD(KsVolumeMark, slices, 0);
    FIELD(KsVolumeMark, sizeX, 8);
    FIELD(KsVolumeMark, sizeY, 12);
    FIELD(KsVolumeMark, sizeZ, 16);
    CHECK(sizeof(PnImageParam) == 96);
    FIELD(PnImageParam, rows, 0);
    FIELD(PnImageParam, columns, 4);
    FIELD(PnImageParam, rowSpacing, 8);
    FIELD(PnImageParam, columnSpacing, 16);
    FIELD(PnImageParam, rowDirection, 24);
    FIELD(PnImageParam, columnDirection, 48);
    FIELD(PnImageParam, position, 72);
    CHECK(sizeof(PnImageRGB) == 104);
    FIELD(PnImageRGB, pixels, 0);
    FIELD(PnImageRGB, param, 8);
    CHECK(sizeof(KsImageVAL) == 104);
    FIELD(KsImageVAL, values, 0);
    FIELD(KsImageVAL, param, 8);
    CHECK(sizeof(KsImageMark) == 104);
    FIELD(KsImageMark, labels, 0);
    FIELD(KsImageMark, param, 8);
    CHECK(sizeof(KsImageData) == 128);
    FIELD(KsImageData, valueCount, 0);
    FIELD(KsImageData, values, 8);
    FIELD(KsImageData, ownsValues, 16);
    FIELD(KsImageData, rows, 20);
    FIELD(KsImageData, columns, 24);
    FIELD(KsImageData, param, 32);
    CHECK(sizeof(KsMarkData) == 128);
    FIELD(KsMarkData, labelCount, 0);
    FIELD(KsMarkData, labels, 8);
    FIELD(KsMarkData, ownsLabels, 16);
    FIELD(KsMarkData, rows, 20);
    FIELD(KsMarkData, columns, 24);
    FIELD(KsMarkData, param, 32);
    CHECK(sizeof(KsPalettePoint) == 12);
    FIELD(KsPalettePoint, value, 0);
    FIELD(KsPalettePoint, colour, 4);
    FIELD(KsPalettePoint, opacity, 8);
    CHECK(sizeof(KsPalette) == 40);
    FIELD(KsPalette, visible, 0);
    FIELD(KsPalette, shading, 4);
    FIELD(KsPalette, opacity, 16);
    FIELD(KsPalette, pointCount, 20);
    FIELD(KsPalette, points, 24);
    FIELD(KsPalette, ownsPoints, 32);
    CHECK(sizeof(VolumePaletteEntry) == 56);
    FIELD(VolumePaletteEntry, rangeStart, 0);
    FIELD(VolumePaletteEntry, rangeEnd, 4);
    FIELD(VolumePaletteEntry, size, 8);
    FIELD(VolumePaletteEntry, colours, 16);
    FIELD(VolumePaletteEntry, opacities, 24);
    FIELD(VolumePaletteEntry, opacity, 32);
    FIELD(VolumePaletteEntry, visible, 36);
    FIELD(VolumePaletteEntry, shading, 40);
    CHECK(sizeof(VolumePalette) == 528);
    FIELD(VolumePalette, entries, 0);
    FIELD(VolumePalette, sumStart, 512);
    FIELD(VolumePalette, sumLength, 516);
    FIELD(VolumePalette, opacitySums, 520);
    CHECK(sizeof(KsViewPoint) == 36);
    FIELD(KsViewPoint, eye, 0);
    FIELD(KsViewPoint, direction, 12);
    FIELD(KsViewPoint, up, 24);
    CHECK(sizeof(KsCamera) == 36);
    FIELD(KsCamera, center, 0);
    FIELD(KsCamera, direction, 12);
    FIELD(KsCamera, up, 24);
    CHECK(sizeof(KsSliceParam) == 80);
    FIELD(KsSliceParam, position, 0);
    FIELD(KsSliceParam, rowDirection, 24);
    FIELD(KsSliceParam, columnDirection, 48);
    FIELD(KsSliceParam, sideLength, 72);
    CHECK(sizeof(KsBlendImage) == 232);
    FIELD(KsBlendImage, corners, 0);
    FIELD(KsBlendImage, pixels, 32);
    FIELD(KsBlendImage, reserved, 40);
    FIELD(KsBlendImage, rowDirection, 160);
    FIELD(KsBlendImage, columnDirection, 184);
    FIELD(KsBlendImage, position, 208);
    CHECK(sizeof(KsPlaneFrame) == 72);
    FIELD(KsPlaneFrame, rowDirection, 0);
    FIELD(KsPlaneFrame, columnDirection, 24);
    FIELD(KsPlaneFrame, normal, 48);
    CHECK(sizeof(KsMPRParam) == 240);
    FIELD(KsMPRParam, origin, 0);
    FIELD(KsMPRParam, transverse, 24);
    FIELD(KsMPRParam, coronal, 96);
    FIELD(KsMPRParam, sagittal, 168);
    CHECK(sizeof(CorvaneView) == 20);
    FIELD(CorvaneView, from, 0);
    FIELD(CorvaneView, right, 4);
    FIELD(CorvaneView, up, 8);
    FIELD(CorvaneView, screen, 12);
    FIELD(CorvaneView, extent, 16);
    CHECK(sizeof(KsRender) == 4 && KsRenderParallel == 0 && KsRenderPerspective == 1);
    CHECK(sizeof(KsMPRType) == 4 && KsMPRTransverse == 1 && KsMPRSagittal == 2 && KsMPRCoronal == 3);
    CHECK(sizeof(CorvaneStatus) == 4);
}
