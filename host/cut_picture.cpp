#include "cut_picture.h"

#include <cassert>

#include "view_rendering.h"

namespace corvane::host
{
namespace
{
constexpr Rgb kCutAway = {225, 40, 40}, kLine = {255, 220, 60};
constexpr double kShare = 0.4; // of the colour of what is cut away

void Mix(uint8_t* pixel, Rgb colour, double share)
{
    const uint8_t target[3] = {colour.red, colour.green, colour.blue};
    for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = uint8_t(pixel[channel] + share * (target[channel] - pixel[channel]) + 0.5);
}
} // namespace

void DrawRegion(Picture& picture, const DrawnRegion& region, CutSide side)
{
    assert(region.pixels.size() * 3 == picture.rgb.size());
    const auto drawn = [&](int row, int column)
    {
        return row >= 0 && row < picture.rows && column >= 0 && column < picture.columns &&
               region.pixels[size_t(row) * size_t(picture.columns) + size_t(column)];
    };
    for (int row = 0; row < picture.rows; ++row)
        for (int column = 0; column < picture.columns; ++column)
        {
            const bool inside = drawn(row, column);
            const bool onEdge = inside && !(drawn(row - 1, column) && drawn(row + 1, column) &&
                                            drawn(row, column - 1) && drawn(row, column + 1));
            if (onEdge)
                Mix(picture.At(row, column), kLine, 1);
            else if (inside == (side == CutSide::Inside))
                Mix(picture.At(row, column), kCutAway, kShare);
        }
}
} // namespace corvane::host
