// Three perpendicular planes through a volume, turned by 30 degrees, and the area of a ball on each of them.
#include <corvane/EngineMPR.h>

#include <cstdio>
#include <vector>

int main()
{
    // Voxels of 0.8 x 0.8 x 1.5 mm with a ball of radius 20 mm in the centre. The library reads the slices in place.
    const int sizeX = 96, sizeY = 80, sizeZ = 48;
    std::vector<std::vector<int16_t>> voxels(sizeZ, std::vector<int16_t>(sizeX * sizeY));
    std::vector<const int16_t*> slices;
    for (int k = 0; k < sizeZ; ++k)
    {
        for (int n = 0; n < sizeX * sizeY; ++n)
        {
            const double x = 0.8 * (n % sizeX - 47.5), y = 0.8 * (n / sizeX - 39.5), z = 1.5 * (k - 23.5);
            voxels[k][n] = x * x + y * y + z * z < 20 * 20 ? 1000 : -1000;
        }
        slices.push_back(voxels[k].data());
    }
    KsVolumeData volume = {slices.data(), sizeX, sizeY, sizeZ, {0.8f, 0.8f, 1.5f}, {}, {}, {}, {}};
    volume.rowDirection[0] = 1;    // columns of voxels grow to the patient's left,
    volume.columnDirection[1] = 1; // rows to posterior,
    volume.sliceDirection[2] = 1;  // slices to superior; the first voxel lies at patient (0, 0, 0)

    EngineMPR engine;
    if (!engine.InitData(volume))
        return 1;
    engine.Rotate(KsMPRTransverse, 0.5236f); // turns the two other planes by 30 degrees

    KsImageData image = {};
    for (const KsMPRType plane : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        if (!engine.Imaging(plane, &image))
            return 1;
        int inside = 0;
        for (uint32_t n = 0; n < image.valueCount; ++n)
            inside += image.values[n] > 0;
        std::printf("plane %d: %u x %u pixels of %.1f mm, ball %.0f mm2\n", int(plane), image.columns, image.rows,
                    image.param.rowSpacing, inside * image.param.rowSpacing * image.param.columnSpacing);
    }
    if (image.ownsValues)
        delete[] image.values;
}
