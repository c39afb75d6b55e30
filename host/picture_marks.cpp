#include "picture_marks.h"

#include <algorithm>
#include <cmath>

#include "orientation.h"
#include "plane.h"
#include "read_text.h"

namespace corvane::host
{
namespace
{
constexpr int kGlyphWidth = 5, kGlyphHeight = 7, kAdvance = 6;
constexpr uint8_t kInk = 255, kOutline = 16;

struct Glyph
{
    char letter;
    const char* rows[kGlyphHeight];
};

constexpr Glyph kGlyphs[] = {
    {'R', {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"}},
    {'L', {"#....", "#....", "#....", "#....", "#....", "#....", "#####"}},
    {'A', {".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'P', {"####.", "#...#", "#...#", "####.", "#....", "#....", "#...."}},
    {'S', {".####", "#....", "#....", ".###.", "....#", "....#", "####."}},
    {'I', {".###.", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."}},
    {'H', {"#...#", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'F', {"#####", "#....", "#....", "####.", "#....", "#....", "#...."}},
    {'0', {".###.", "#...#", "#..##", "#.#.#", "##..#", "#...#", ".###."}},
    {'1', {"..#..", ".##..", "..#..", "..#..", "..#..", "..#..", ".###."}},
    {'2', {".###.", "#...#", "....#", "..##.", ".#...", "#....", "#####"}},
    {'3', {".###.", "#...#", "....#", "..##.", "....#", "#...#", ".###."}},
    {'4', {"...#.", "..##.", ".#.#.", "#..#.", "#####", "...#.", "...#."}},
    {'5', {"#####", "#....", "####.", "....#", "....#", "#...#", ".###."}},
    {'6', {"..##.", ".#...", "#....", "####.", "#...#", "#...#", ".###."}},
    {'7', {"#####", "....#", "...#.", "..#..", "..#..", ".#...", ".#..."}},
    {'8', {".###.", "#...#", "#...#", ".###.", "#...#", "#...#", ".###."}},
    {'9', {".###.", "#...#", "#...#", ".####", "....#", "...#.", ".##.."}},
    {'.', {".....", ".....", ".....", ".....", ".....", ".##..", ".##.."}},
    {'m', {".....", ".....", "##.#.", "#.#.#", "#.#.#", "#.#.#", "#.#.#"}},
};

const Glyph* GlyphOf(char letter)
{
    for (const Glyph& glyph : kGlyphs)
        if (glyph.letter == letter)
            return &glyph;
    return nullptr;
}

void FillRectangle(Picture& picture, int row, int column, int rows, int columns, uint8_t grey)
{
    for (int r = std::max(0, row); r < std::min(picture.rows, row + rows); ++r)
        for (int c = std::max(0, column); c < std::min(picture.columns, column + columns); ++c)
            std::fill_n(picture.At(r, c), 3, grey);
}

// Letters grow with the picture, so that they stay readable when it is shown at the size of a window, but take at most
// a quarter of a narrow one.
int ScaleFor(const Picture& picture)
{
    const int shortest = std::min(picture.rows, picture.columns), longest = std::max(picture.rows, picture.columns);
    return std::max(1, std::min((longest + 80) / 180, shortest / (4 * kGlyphHeight)));
}
} // namespace

void DrawText(Picture& picture, int row, int column, int scale, const std::string& text)
{
    // All outlines first: they must not cover the ink of the letter before.
    for (const bool outline : {true, false})
        for (size_t n = 0; n < text.size(); ++n)
        {
            const Glyph* glyph = GlyphOf(text[n]);
            for (int y = 0; glyph && y < kGlyphHeight; ++y)
                for (int x = 0; x < kGlyphWidth; ++x)
                {
                    if (glyph->rows[y][x] != '#')
                        continue;
                    const int left = column + (int(n) * kAdvance + x) * scale, top = row + y * scale;
                    const int rim = outline ? (scale + 1) / 2 : 0;
                    FillRectangle(picture, top - rim, left - rim, scale + 2 * rim, scale + 2 * rim,
                                  outline ? kOutline : kInk);
                }
        }
}

int TextWidth(int scale, const std::string& text)
{
    return text.empty() ? 0 : (int(text.size()) * kAdvance - (kAdvance - kGlyphWidth)) * scale;
}

void DrawOrientationLetters(Picture& picture, const PnImageParam& plane)
{
    if (std::min(picture.rows, picture.columns) < 40)
        return;
    const int scale = ScaleFor(picture), margin = 3 * scale, height = kGlyphHeight * scale;
    const Vec3 right = RowDirection(plane), down = ColumnDirection(plane);
    const int middleRow = (picture.rows - height) / 2;
    const auto centred = [&](const std::string& text) { return (picture.columns - TextWidth(scale, text)) / 2; };
    const std::string atRight = DirectionLetters(right), atBottom = DirectionLetters(down);
    const std::string atLeft = DirectionLetters(-1.0 * right), atTop = DirectionLetters(-1.0 * down);
    DrawText(picture, middleRow, margin, scale, atLeft);
    DrawText(picture, middleRow, picture.columns - margin - TextWidth(scale, atRight), scale, atRight);
    DrawText(picture, margin, centred(atTop), scale, atTop);
    DrawText(picture, picture.rows - margin - height, centred(atBottom), scale, atBottom);
}

void DrawScaleBar(Picture& picture)
{
    if (std::min(picture.rows, picture.columns) < 80 || !(picture.columnSpacing > 0))
        return;
    const int scale = ScaleFor(picture), margin = 3 * scale;
    const double length = ScaleBarLength(0.25 * picture.columns * picture.columnSpacing);
    const int width = int(length / picture.columnSpacing + 0.5), rim = (scale + 1) / 2;
    const int bottom = picture.rows - margin, tick = 3 * scale;
    // A line with an upright tick at either end, outline first.
    for (const int grow : {rim, 0})
    {
        const uint8_t grey = grow > 0 ? kOutline : kInk;
        FillRectangle(picture, bottom - scale - grow, margin - grow, scale + 2 * grow, width + 2 * grow, grey);
        for (const int column : {margin, margin + width - scale})
            FillRectangle(picture, bottom - tick - grow, column - grow, tick + 2 * grow, scale + 2 * grow, grey);
    }
    DrawText(picture, bottom - tick - (kGlyphHeight + 2) * scale, margin, scale, Number(length) + " mm");
}

double ScaleBarLength(double longest)
{
    double power = 1;
    while (power > longest)
        power /= 10;
    while (power * 10 <= longest)
        power *= 10;
    return 5 * power <= longest ? 5 * power : 2 * power <= longest ? 2 * power : power;
}
} // namespace corvane::host
