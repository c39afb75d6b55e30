// A ball of bone around a red core: rendered, opened with a drawn region and rendered again.
//   usage: render_and_cut [FOLDER]   writes closed.ppm and open.ppm into the folder
#include <corvane/Engine3D.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

const int kSide = 400; // pixels of a picture's side

// How many mm2 of the picture show something; writes the picture, too, where it is wanted.
static double Picture(Engine3D& engine, const std::string& file)
{
    std::vector<uint32_t> pixels(kSide * kSide);
    PnImageRGB image;
    if (!engine.ImagingVR(kSide, kSide, pixels.data(), false, &image, 0))
        return 0;
    int covered = 0;
    std::string ppm = "P6 " + std::to_string(kSide) + " " + std::to_string(kSide) + " 255\n";
    for (const uint32_t pixel : pixels) // coverage, red, green and blue from the lowest byte on
    {
        covered += (pixel & 255) > 127;
        ppm += {char(pixel >> 8), char(pixel >> 16), char(pixel >> 24)};
    }
    if (!file.empty())
        std::ofstream(file, std::ios::binary) << ppm;
    return covered * image.param.rowSpacing * image.param.columnSpacing;
}

int main(int count, char** arguments)
{
    const std::string folder = count > 1 ? arguments[1] + std::string("/") : "";

    // The volume: a shell of 1200 HU with a radius of 30 mm around a core of 200 HU. The engine reads the slices in
    // place.
    const int size = 80;
    std::vector<std::vector<int16_t>> voxels(size, std::vector<int16_t>(size * size));
    std::vector<const int16_t*> slices;
    for (int k = 0; k < size; ++k)
    {
        for (int n = 0; n < size * size; ++n)
        {
            const double radius = std::hypot(n % size - 39.5, n / size - 39.5, k - 39.5);
            const double shell = 1200 - 300 * std::fabs(radius - 27), core = 240 - 200 * std::fmax(0, radius - 18);
            voxels[k][n] = int16_t(std::fmax(-1000, std::fmax(shell, core)));
        }
        slices.push_back(voxels[k].data());
    }
    const KsVolumeData volume = {slices.data(), size,      size,      size,     {1, 1, 1},
                                 {0, 0, 0},     {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    Engine3D engine;
    if (!engine.InitData(volume))
        return 1;
    engine.RotateV(0.4f); // from a little above; Zoom below 1 comes nearer
    engine.Zoom(0.6f);
    const double closed = Picture(engine, folder.empty() ? "" : folder + "closed.ppm");

    // A region drawn on that picture: its right half. Select what lies behind it, then cut that away.
    KsImageMark region;
    engine.GetImageParams(kSide, kSide, region.param);
    std::vector<uint8_t> drawn(kSide * kSide);
    for (int n = 0; n < kSide * kSide; ++n)
        drawn[n] = n % kSide >= kSide / 2;
    region.labels = drawn.data();
    std::vector<uint8_t> selected(size * size * size);
    std::vector<uint8_t*> selectedSlices;
    for (int k = 0; k < size; ++k)
        selectedSlices.push_back(selected.data() + k * size * size);
    KsVolumeMark selection = {selectedSlices.data(), size, size, size};
    if (!engine.CutFill(region, selection, 1) || !engine.CutAppend(selection))
        return 1;
    const double half = Picture(engine, "");
    engine.RotateH(1.0f); // look into the opened ball
    Picture(engine, folder.empty() ? "" : folder + "open.ppm");
    std::printf("closed %.0f mm2, half %.0f mm2\n", closed, half);
}
