/* Draws two labels of a volume in their own colours, cuts a corner away and writes the picture as scene.ppm. */
#include <corvane/corvane_c.h>

#include <stdio.h>
#include <stdlib.h>

enum
{
    SIZE = 96,
    VOXELS = SIZE * SIZE * SIZE,
    ROWS = 480,
    COLUMNS = 640
};

static void Check(CorvaneStatus status, const char* what)
{
    if (status == CORVANE_OK)
        return;
    fprintf(stderr, "%s: %s\n", what, corvane_error_text(status));
    exit(1);
}

/* From 0 to 1 over 4 mm. */
static double Ramp(double depth) { return depth < -2 ? 0 : depth > 2 ? 1 : depth / 4 + 0.5; }

int main(void)
{
    /* Voxels of 1 mm: a ball of bone, label 1, in a ball of soft tissue, label 2. */
    static int16_t voxels[VOXELS];
    static uint8_t labels[VOXELS];
    static uint32_t pixels[ROWS * COLUMNS];
    KsVolumeData geometry = {NULL, SIZE, SIZE, SIZE, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    KsPalettePoint bone[] = {{250, 0xFFF5E0, 0}, {450, 0xFFF5E0, 1}, {2000, 0xFFFFFF, 1}};
    KsPalettePoint tissue[] = {{-500, 0xC86450, 0}, {-200, 0xE08068, 0.04f}, {30, 0xE08068, 0.01f}};
    KsPalette palette;
    CorvaneView view = {CORVANE_FROM_FRONT, 0.5f, 0.35f, 0, 0.6f};
    const double corner[] = {320, -1, 640, -1, 640, 220, 320, 220}; /* columns and rows of the picture */
    PnImageParam plane;
    uint64_t cut = 0, covered = 0;
    FILE* file;
    int n;
    CorvaneScene* scene = corvane_scene_create(CORVANE_C_INTERFACE);
    for (n = 0; n < VOXELS; ++n)
    {
        const double x = n % SIZE - 47.5, y = n / SIZE % SIZE - 47.5, z = n / (SIZE * SIZE) - 47.5;
        const double square = x * x + y * y + z * z;
        const double depth = (40 * 40 - square) / 80, boneDepth = (24 * 24 - square) / 48; /* mm, at the surfaces */
        labels[n] = square < 27 * 27 ? 1 : 2;
        voxels[n] = (int16_t)(-1000 + 1060 * Ramp(depth) + 840 * Ramp(boneDepth));
    }
    Check(corvane_scene_set_voxels(scene, &geometry, voxels, VOXELS), "the volume");
    Check(corvane_scene_set_labels(scene, labels, VOXELS), "the labels");
    corvane_palette_init(&palette);
    palette.pointCount = 3;
    palette.points = bone;
    Check(corvane_scene_set_palette(scene, 1, &palette), "the palette of bone");
    palette.points = tissue;
    Check(corvane_scene_set_palette(scene, 2, &palette), "the palette of soft tissue");

    Check(corvane_scene_view_plane(scene, &view, ROWS, COLUMNS, &plane), "the view");
    Check(corvane_scene_cut_polygon(scene, &plane, corner, 4, CORVANE_INSIDE, &cut), "the cut");
    Check(corvane_scene_render(scene, &plane, pixels, ROWS * COLUMNS), "the picture");
    corvane_scene_destroy(scene);

    file = fopen("scene.ppm", "wb");
    if (!file)
        return 1;
    fprintf(file, "P6 %d %d 255\n", COLUMNS, ROWS);
    for (n = 0; n < ROWS * COLUMNS; ++n)
    {
        const unsigned char rgb[3] = {pixels[n] >> 8 & 255, pixels[n] >> 16 & 255, pixels[n] >> 24 & 255};
        covered += pixels[n] != 0;
        fwrite(rgb, 1, 3, file);
    }
    printf("%lu voxels cut away, %.0f mm2 drawn\n", (unsigned long)cut,
           (double)covered * plane.rowSpacing * plane.columnSpacing);
    return fclose(file) != 0;
}
