/* Exits with 0 when a plane of a linear ramp has the value that the ramp has there. */
#include <corvane/corvane_c.h>

int main(void)
{
    static int16_t voxels[16 * 16 * 16];
    const KsVolumeData geometry = {0, 16, 16, 16, {1, 1, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const PnImageParam plane = {2, 2, 1, 1, {1, 0, 0}, {0, 1, 0}, {4.25, 7.5, 3.75}};
    int16_t values[4] = {0, 0, 0, 0};
    int n, done;
    CorvaneScene* scene = corvane_scene_create(CORVANE_C_INTERFACE);
    for (n = 0; n < 16 * 16 * 16; ++n)
        voxels[n] = (int16_t)(100 * (n % 16) + 20 * (n / 16 % 16) - 8 * (n / 256));
    done = corvane_scene_set_voxels(scene, &geometry, voxels, 16 * 16 * 16) == CORVANE_OK &&
           corvane_scene_reslice(scene, &plane, values, 4) == CORVANE_OK;
    corvane_scene_destroy(scene);
    return done && values[0] == 545 && values[3] == 665 ? 0 : 1; /* 100 * 4.25 + 20 * 7.5 - 8 * 3.75, then + 120 */
}
