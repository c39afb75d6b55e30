// Exits with 0 when a plane of a linear ramp has the value that the ramp has there.
#include <corvane/Corvane.h>

#include <vector>

int main()
{
    std::vector<int16_t> voxels;
    for (int n = 0; n < 16 * 16 * 16; ++n)
        voxels.push_back(int16_t(100 * (n % 16) + 20 * (n / 16 % 16) - 8 * (n / 256)));
    std::vector<const int16_t*> slices;
    for (int k = 0; k < 16; ++k)
        slices.push_back(voxels.data() + 256 * k);
    EngineMPR engine;
    KsImageData image = {};
    const PnImageParam plane = {2, 2, 1, 1, {1, 0, 0}, {0, 1, 0}, {4.25, 7.5, 3.75}};
    const KsVolumeData volume = {slices.data(), 16, 16, 16, {1, 1, 1}, {}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    if (!engine.InitData(volume) || !engine.Imaging(plane, &image))
        return 1;
    const bool right = image.values[0] == 545 && image.values[3] == 665; // 100 * 4.25 + 20 * 7.5 - 8 * 3.75, then + 120
    delete[] image.values;
    return right ? 0 : 1;
}
