#include "checks.h"

#include <corvane/corvane_c.h>

#include <math.h>
#include <stdlib.h>
#include <string.h>

/* The C interface as a program in C uses it. Expected values come from the volume: stored values grow linearly, by 30 for
 * a voxel in x, 10 in y and 2 in z, and voxels are 1 x 2 x 4 mm, so that the value at patient (x, y, z) is
 * 30 x + 5 y + z / 2. */

enum
{
    SIZE_X = 32,
    SIZE_Y = 24,
    SIZE_Z = 16,
    VOXELS = SIZE_X * SIZE_Y * SIZE_Z
};

int failedChecks = 0;

static int16_t voxels[VOXELS];
static const int16_t* slices[SIZE_Z];

static KsVolumeData MakeRamp(void)
{
    KsVolumeData volume;
    int n, k;
    memset(&volume, 0, sizeof volume);
    for (n = 0; n < VOXELS; ++n)
        voxels[n] = (int16_t)(30 * (n % SIZE_X) + 10 * (n / SIZE_X % SIZE_Y) + 2 * (n / (SIZE_X * SIZE_Y)));
    for (k = 0; k < SIZE_Z; ++k)
        slices[k] = voxels + k * SIZE_X * SIZE_Y;
    volume.slices = slices;
    volume.sizeX = SIZE_X;
    volume.sizeY = SIZE_Y;
    volume.sizeZ = SIZE_Z;
    volume.spacing[0] = 1;
    volume.spacing[1] = 2;
    volume.spacing[2] = 4;
    volume.rowDirection[0] = volume.columnDirection[1] = volume.sliceDirection[2] = 1;
    return volume;
}

/* 4 x 4 pixels of 1 mm, transverse, the first at a patient point. */
static PnImageParam MakePlane(double x, double y, double z)
{
    PnImageParam plane;
    memset(&plane, 0, sizeof plane);
    plane.rows = plane.columns = 4;
    plane.rowSpacing = plane.columnSpacing = 1;
    plane.rowDirection[0] = plane.columnDirection[1] = 1;
    plane.position[0] = x;
    plane.position[1] = y;
    plane.position[2] = z;
    return plane;
}

static KsPalette MakePalette(KsPalettePoint* points)
{
    KsPalette palette;
    corvane_palette_init(&palette);
    points[0].value = 0;
    points[0].colour = 0x804020;
    points[0].opacity = 1;
    points[1].value = 2000;
    points[1].colour = 0x804020;
    points[1].opacity = 1;
    palette.points = points;
    palette.pointCount = 2;
    return palette;
}

static int CountNotZero(const uint32_t* pixels, int count)
{
    int n, found = 0;
    for (n = 0; n < count; ++n)
        found += pixels[n] != 0;
    return found;
}

static void ErrorsHaveTextsAndVersionsAgree(void)
{
    int32_t major = -1, minor = -1, patch = -1, a, b;
    char text[64];
    for (a = CORVANE_OK; a <= CORVANE_ERROR_NO_STEP; ++a)
        for (b = CORVANE_OK; b < a; ++b)
            CHECK(strcmp(corvane_error_text(a), corvane_error_text(b)) != 0);
    CHECK(strcmp(corvane_error_text(12345), corvane_error_text(-1)) == 0);
    CHECK(corvane_version_numbers(&major, &minor, &patch) == CORVANE_OK);
    sprintf(text, "%d.%d.%d", (int)major, (int)minor, (int)patch);
    CHECK(strcmp(text, corvane_version()) == 0);
    CHECK(corvane_check_interface(CORVANE_C_INTERFACE) == CORVANE_OK);
    CHECK(corvane_check_interface(CORVANE_C_INTERFACE + 1) == CORVANE_ERROR_VERSION);
    CHECK(corvane_engine3d_create(CORVANE_C_INTERFACE + 1) == NULL);
    CHECK(corvane_scene_create(0) == NULL);
}

static void EngineDrawsAndProjects(void)
{
    static uint32_t pixels[48 * 64];
    static int16_t values[48 * 64];
    const KsVolumeData volume = MakeRamp();
    KsPalettePoint points[2];
    const KsPalette palette = MakePalette(points);
    const PnImageParam plane = MakePlane(10, 20, 30);
    KsPalette kept;
    KsVolumeMark* mark = NULL;
    KsImageData slab;
    PnImageRGB picture;
    CorvaneEngine3D* engine = corvane_engine3d_create(CORVANE_C_INTERFACE);
    memset(&slab, 0, sizeof slab);
    CHECK(engine != NULL);
    CHECK(corvane_engine3d_imaging_vr(engine, 48, 64, pixels, 48 * 64, NULL, 0) == CORVANE_ERROR_NO_VOLUME);
    CHECK(corvane_engine3d_init_data(engine, &volume) == CORVANE_OK);
    CHECK(corvane_engine3d_set_palette(engine, &palette) == CORVANE_OK);
    corvane_palette_init(&kept);
    CHECK(corvane_engine3d_get_palette(engine, &kept) == CORVANE_OK);
    CHECK(kept.pointCount == 2 && kept.ownsPoints && kept.points[1].value == 2000);
    corvane_palette_free(&kept);

    CHECK(corvane_engine3d_imaging_vr(engine, 48, 64, pixels, 48 * 64 - 1, NULL, 0) == CORVANE_ERROR_BUFFER);
    CHECK(corvane_engine3d_imaging_vr(engine, 48, 64, pixels, 48 * 64, &picture, 0) == CORVANE_OK);
    CHECK(picture.pixels == pixels && picture.param.rows == 48 && picture.param.columns == 64);
    CHECK(CountNotZero(pixels, 48 * 64) > 100);
    CHECK(corvane_engine3d_imaging_mip_by_size(engine, 48, 64, values, 48 * 64, NULL) == CORVANE_OK);
    /* From the front a ray runs along y; the highest value it can meet is that of the last sampled row, y < 46. */
    CHECK(values[24 * 64 + 32] > 30 * 15 + 5 * 40 && values[24 * 64 + 32] < 30 * 16 + 5 * 46 + 40);

    /* The mean of a slab of a linear volume is the value on its plane. */
    CHECK(corvane_engine3d_imaging_aip_by_plane(engine, &plane, 8.0f, &slab) == CORVANE_OK);
    CHECK(slab.valueCount == 16 && fabs(slab.values[0] - (30 * 10 + 5 * 20 + 30 / 2.0)) <= 1.0);
    corvane_image_data_free(&slab);
    CHECK(slab.values == NULL && slab.valueCount == 0);

    CHECK(corvane_engine3d_get_mark_data(engine, &mark) == CORVANE_OK);
    for (mark->slices[0][0] = 64; mark->slices[0][0] == 64; mark->slices[0][0] = 0)
        CHECK(corvane_engine3d_update_mark_data(engine) == CORVANE_OK);
    CHECK(corvane_engine3d_cut_clear(engine) == CORVANE_ERROR_NOT_OFFERED);
    corvane_engine3d_destroy(engine);
}

static void RendererDrawsWithTablesOfTheHost(void)
{
    static uint32_t pixels[64 * 64];
    uint8_t colours[2 * 3] = {10, 20, 30, 40, 50, 60};
    float opacities[2] = {1, 1}, sums[2] = {1, 1};
    const KsVolumeData volume = MakeRamp();
    VolumePaletteEntry entry;
    VolumePalette tables;
    PnImageRGB image;
    CorvaneRender3D *clone, *render = corvane_render3d_create(CORVANE_C_INTERFACE);
    memset(&entry, 0, sizeof entry);
    memset(&tables, 0, sizeof tables);
    entry.rangeStart = 600;
    entry.rangeEnd = 601;
    entry.size = 2;
    entry.colours = colours;
    entry.opacities = opacities;
    entry.opacity = 1;
    entry.visible = 1;
    entry.shading[0] = 1; /* ambient light only: the tables' colours as they are */
    tables.entries[0] = &entry;
    tables.sumStart = 600;
    tables.sumLength = 2;
    tables.opacitySums = sums;
    image.pixels = pixels;
    image.param = MakePlane(0, 0, -20);
    image.param.rows = image.param.columns = 64;
    CHECK(corvane_render3d_init_data(render, &volume, NULL, &tables) == CORVANE_OK);
    CHECK(corvane_render3d_imaging_vr(render, &image, 64 * 64 - 1, 0) == CORVANE_ERROR_BUFFER);
    CHECK(corvane_render3d_imaging_vr(render, &image, 64 * 64, 0) == CORVANE_OK);
    CHECK(CountNotZero(pixels, 64 * 64) > 0);
    CHECK((clone = corvane_render3d_clone(render)) != NULL);
    corvane_render3d_destroy(render);
    memset(pixels, 0, sizeof pixels);
    CHECK(corvane_render3d_imaging_vr(clone, &image, 64 * 64, 0) == CORVANE_OK);
    CHECK(CountNotZero(pixels, 64 * 64) > 0);
    corvane_render3d_destroy(clone);
}

static void PlanesAreSizedAndMeasured(void)
{
    const KsVolumeData volume = MakeRamp();
    const PnImageParam plane = MakePlane(10, 20, 30);
    double origin[3] = {0, 0, 0}, pixel[2], point[3] = {12, 21, 30};
    int32_t count = -1;
    int16_t values[16];
    KsImageData image;
    KsImageVAL buffer;
    CorvaneRenderMPR* render = corvane_render_mpr_create(CORVANE_C_INTERFACE);
    CorvaneEngineMPR* engine = corvane_engine_mpr_create(CORVANE_C_INTERFACE);
    memset(&image, 0, sizeof image);
    CHECK(corvane_engine_mpr_imaging_by_plane(engine, &plane, &image) == CORVANE_ERROR_NO_VOLUME);
    corvane_image_data_free(&image);
    CHECK(corvane_engine_mpr_init_data(engine, &volume) == CORVANE_OK);
    CHECK(corvane_engine_mpr_get_origin(engine, origin) == CORVANE_OK);
    CHECK(fabs(origin[0] - 15.5) < 1e-4 && fabs(origin[1] - 23.0) < 1e-4 && fabs(origin[2] - 30.0) < 1e-4);
    CHECK(corvane_engine_mpr_imaging_by_plane(engine, &plane, &image) == CORVANE_OK);
    CHECK(image.values[0] == 415 && image.values[5] == 450); /* + 30 for a column, + 5 for a row */
    CHECK(corvane_engine_mpr_imaging_mip_by_type(engine, KsMPRCoronal, 5, &image) == CORVANE_ERROR_NOT_OFFERED);
    CHECK(corvane_engine_mpr_imaging_by_type(engine, 4, &image) == CORVANE_ERROR_ARGUMENT);
    corvane_image_data_free(&image);
    /* The sampled part is 60 - 2 * 4.4 = 51.2 mm long. */
    CHECK(corvane_engine_mpr_get_image_count(engine, KsMPRTransverse, 1, &count, NULL) == CORVANE_OK);
    CHECK(count > 40 && count <= 52);

    buffer.values = values;
    buffer.param = plane;
    CHECK(corvane_render_mpr_init_data(render, &volume) == CORVANE_OK);
    CHECK(corvane_render_mpr_imaging(render, &buffer, 15) == CORVANE_ERROR_BUFFER);
    CHECK(corvane_render_mpr_imaging(render, &buffer, 16) == CORVANE_OK);
    CHECK(values[0] == 415 && values[5] == 450);
    CHECK(corvane_patient_to_image_coords(&plane, point, pixel) == CORVANE_OK);
    CHECK(pixel[0] == 2 && pixel[1] == 1);
    corvane_render_mpr_destroy(render);
    corvane_engine_mpr_destroy(engine);
}

static void SceneServesAProgramWithFewCalls(void)
{
    static uint32_t pixels[80 * 60], after[80 * 60];
    static uint8_t labels[VOXELS];
    KsVolumeData geometry = MakeRamp();
    KsPalettePoint points[2];
    const KsPalette palette = MakePalette(points);
    const CorvaneView view = {CORVANE_FROM_HEAD, 0, 0, 0, 1};
    const double triangle[6] = {-1, -1, 200, -1, -1, 200};
    PnImageParam plane, cross;
    int16_t* values;
    uint64_t cut = 0;
    int n, labelled = 0;
    CorvaneScene* scene = corvane_scene_create(CORVANE_C_INTERFACE);
    geometry.slices = NULL;
    CHECK(corvane_scene_set_voxels(scene, &geometry, voxels, VOXELS) == CORVANE_OK);
    for (n = 0; n < VOXELS; ++n)
        labels[n] = n % SIZE_X < 16 ? 0 : 7;
    CHECK(corvane_scene_set_labels(scene, labels, VOXELS) == CORVANE_OK);
    CHECK(corvane_scene_remove_palette(scene, 0) == CORVANE_OK);
    CHECK(corvane_scene_set_palette(scene, 7, &palette) == CORVANE_OK);

    CHECK(corvane_scene_view_plane(scene, &view, 60, 80, &plane) == CORVANE_OK);
    CHECK(plane.rows == 60 && plane.columns == 80);
    CHECK(corvane_scene_render(scene, &plane, pixels, 80 * 60) == CORVANE_OK);
    /* Seen from the head, the front at the top, the patient's left, where label 7 is, lies to the left. */
    CHECK(CountNotZero(pixels + 30 * 80, 39) > 3 && CountNotZero(pixels + 30 * 80 + 41, 39) == 0);

    CHECK(corvane_scene_cut_polygon(scene, &plane, triangle, 3, CORVANE_INSIDE, &cut) == CORVANE_OK);
    CHECK(cut == VOXELS / 2); /* the triangle covers the whole image, only visible labels are cut */
    CHECK(corvane_scene_get_labels(scene, labels, VOXELS) == CORVANE_OK);
    for (n = 0; n < VOXELS; ++n)
        labelled += labels[n] == (n % SIZE_X < 16 ? 0 : 7 + 64);
    CHECK(labelled == VOXELS);
    CHECK(corvane_scene_render(scene, &plane, after, 80 * 60) == CORVANE_OK);
    CHECK(CountNotZero(after, 80 * 60) == 0);
    CHECK(corvane_scene_undo(scene) == CORVANE_OK);
    CHECK(corvane_scene_render(scene, &plane, after, 80 * 60) == CORVANE_OK);
    CHECK(memcmp(pixels, after, sizeof pixels) == 0);
    CHECK(corvane_scene_undo(scene) == CORVANE_ERROR_NO_STEP);

    CHECK(corvane_scene_mpr_plane(scene, KsMPRSagittal, &cross) == CORVANE_OK);
    values = malloc(sizeof *values * cross.rows * cross.columns);
    CHECK(corvane_scene_slab(scene, CORVANE_MAXIMUM, &cross, 6, values, (size_t)cross.rows * cross.columns) == CORVANE_OK);
    /* The slab reaches 3 mm to the left of the plane, where values are 90 higher; rays take samples up to a step apart. */
    n = (int)(cross.rows / 2 * cross.columns + cross.columns / 2);
    {
        const double y = cross.position[1] + cross.columns / 2 * cross.columnSpacing;
        const double z = cross.position[2] - cross.rows / 2 * cross.rowSpacing;
        const double highest = 30 * 18.5 + 5 * y + z / 2;
        CHECK(values[n] <= highest + 1 && values[n] >= highest - 30);
    }
    free(values);
    corvane_scene_destroy(scene);
}

static void SceneSaysWhatIsWrong(void)
{
    KsVolumeData volume = MakeRamp();
    KsPalettePoint points[2];
    KsPalette palette = MakePalette(points);
    uint8_t labels[8] = {0};
    PnImageParam plane = MakePlane(0, 0, 0);
    uint32_t pixels[16];
    CorvaneScene* scene = corvane_scene_create(CORVANE_C_INTERFACE);
    CHECK(corvane_scene_render(scene, &plane, pixels, 16) == CORVANE_ERROR_NO_VOLUME);
    CHECK(corvane_scene_render(NULL, &plane, pixels, 16) == CORVANE_ERROR_HANDLE);
    CHECK(corvane_scene_render((CorvaneScene*)corvane_engine3d_create(0), &plane, pixels, 16) == CORVANE_ERROR_HANDLE);
    volume.spacing[1] = 0;
    CHECK(corvane_scene_set_volume(scene, &volume) == CORVANE_ERROR_ARGUMENT);
    volume.spacing[1] = 2;
    CHECK(corvane_scene_set_volume(scene, &volume) == CORVANE_OK);
    CHECK(corvane_scene_set_labels(scene, labels, 8) == CORVANE_ERROR_ARGUMENT);
    CHECK(corvane_scene_set_palette(scene, 64, &palette) == CORVANE_ERROR_ARGUMENT);
    points[1].value = points[0].value;
    CHECK(corvane_scene_set_palette(scene, 1, &palette) == CORVANE_ERROR_ARGUMENT);
    CHECK(corvane_scene_get_palette(scene, 1, &palette) == CORVANE_ERROR_ARGUMENT);
    CHECK(corvane_scene_render(scene, &plane, pixels, 15) == CORVANE_ERROR_BUFFER);
    plane.columnDirection[0] = 1; /* no unit vector, not at a right angle */
    CHECK(corvane_scene_render(scene, &plane, pixels, 16) == CORVANE_ERROR_ARGUMENT);
    corvane_scene_destroy(scene);
}

static const struct
{
    const char* name;
    void (*run)(void);
} kTests[] = {
    {"RecordsLieAsTheirFieldsWereCounted", RecordsLieAsTheirFieldsWereCounted},
    {"ErrorsHaveTextsAndVersionsAgree", ErrorsHaveTextsAndVersionsAgree},
    {"EngineDrawsAndProjects", EngineDrawsAndProjects},
    {"RendererDrawsWithTablesOfTheHost", RendererDrawsWithTablesOfTheHost},
    {"PlanesAreSizedAndMeasured", PlanesAreSizedAndMeasured},
    {"SceneServesAProgramWithFewCalls", SceneServesAProgramWithFewCalls},
    {"SceneSaysWhatIsWrong", SceneSaysWhatIsWrong},
};

int main(int argumentCount, char** arguments)
{
    size_t n, run = 0;
    for (n = 0; n < sizeof kTests / sizeof *kTests; ++n)
        if (argumentCount < 2 || strcmp(arguments[1], kTests[n].name) == 0)
        {
            kTests[n].run();
            ++run;
        }
    if (run == 0)
        printf("there is no test %s\n", arguments[1]);
    return failedChecks > 0 || run == 0;
}
