#include "picture.h"

#include <algorithm>
#include <cmath>

#include "label_byte.h"
#include "plane.h"

namespace corvane::host
{
namespace
{
constexpr int16_t kEmpty = -1024; // what the library writes where it samples nothing

bool NearEdge(const Grid& grid, Vec3 patient)
{
    const Vec3 index = PatientToIndex(grid, patient);
    return !(index.x >= 2 && index.y >= 2 && index.z >= 2 && index.x <= grid.sizeX - 3 && index.y <= grid.sizeY - 3 &&
             index.z <= grid.sizeZ - 3);
}
} // namespace

Picture GreyPicture(const KsImageData& image, const Volume& volume, const Grid& grid, const Window& window)
{
    std::vector<uint8_t> greys(65536);
    for (size_t n = 0; n < greys.size(); ++n)
        greys[n] = GreyOf(window, volume.valueSlope * (double(n) - 32768) + volume.valueIntercept);

    Picture picture = {int(image.rows), int(image.columns), image.param.rowSpacing, image.param.columnSpacing, {}};
    picture.rgb.resize(size_t(image.rows) * image.columns * 3);
    for (int row = 0; row < picture.rows; ++row)
        for (int column = 0; column < picture.columns; ++column)
        {
            const int16_t value = image.values[size_t(row) * image.columns + size_t(column)];
            const bool empty = value == kEmpty && NearEdge(grid, PixelToPatient(image.param, row, column));
            std::fill_n(picture.At(row, column), 3, empty ? uint8_t(0) : greys[size_t(value + 32768)]);
        }
    return picture;
}

void BlendLabels(Picture& picture, const std::vector<uint8_t>& labels, const LabelColours& colours, double opacity)
{
    const LabelColour cutAway = {"cut away", 0, 0, 0, 1};
    for (size_t pixel = 0; pixel < labels.size(); ++pixel)
    {
        const LabelColour& colour = labels[pixel] & kCutBit ? cutAway : colours[labels[pixel] & kLabelBits];
        const double share = colour.opacity * opacity;
        if (!(share > 0))
            continue;
        const uint8_t target[3] = {colour.red, colour.green, colour.blue};
        for (size_t channel = 0; channel < 3; ++channel)
        {
            uint8_t& value = picture.rgb[pixel * 3 + channel];
            value = uint8_t(value + share * (target[channel] - value) + 0.5);
        }
    }
}
} // namespace corvane::host
