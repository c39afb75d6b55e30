#include "host/picture_marks.h"

#include <gtest/gtest.h>

namespace corvane::host
{
namespace
{
Picture Blank(int rows, int columns, uint8_t grey)
{
    return {rows, columns, 1, 1, std::vector<uint8_t>(size_t(rows) * size_t(columns) * 3, grey)};
}

int GreyAt(Picture& picture, int row, int column) { return *picture.At(row, column); }

// Whether the white dots of a text, and no others, fill its rectangle at this place.
bool TextStandsAt(Picture& picture, const std::string& text, int scale, int row, int column)
{
    const int width = TextWidth(scale, text), height = 7 * scale;
    if (row < 0 || column < 0 || row + height > picture.rows || column + width > picture.columns)
        return false;
    Picture alone = Blank(height, width, 0);
    DrawText(alone, 0, 0, scale, text);
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c)
            if ((GreyAt(alone, r, c) == 255) != (GreyAt(picture, row + r, column + c) == 255))
                return false;
    return true;
}

struct Place
{
    int row = -1, column = -1;
};

// Where a text stands within a rectangle of the picture.
Place Find(Picture& picture, const std::string& text, int scale, int firstRow, int lastRow, int firstColumn,
           int lastColumn)
{
    for (int row = firstRow; row <= lastRow; ++row)
        for (int column = firstColumn; column <= lastColumn; ++column)
            if (TextStandsAt(picture, text, scale, row, column))
                return {row, column};
    return {};
}

TEST(DrawText, DrawsTheDotsOfALetter)
{
    Picture picture = Blank(11, 9, 0);
    DrawText(picture, 2, 2, 1, "L");
    for (int row = 0; row < 11; ++row)
        for (int column = 0; column < 9; ++column)
        {
            const bool ink = (column == 2 && row >= 2 && row <= 8) || (row == 8 && column >= 2 && column <= 6);
            EXPECT_EQ(GreyAt(picture, row, column) == 255, ink) << row << " " << column;
        }
}

TEST(DrawText, CanBeReadOnWhiteThroughItsOutline)
{
    Picture picture = Blank(40, 40, 255);
    DrawText(picture, 10, 10, 2, "I");
    // The stem of the I spans columns 14 and 15 of rows 10 to 23; dark beside it, white again further out.
    EXPECT_EQ(GreyAt(picture, 16, 14), 255);
    EXPECT_LT(GreyAt(picture, 16, 13), 40);
    EXPECT_LT(GreyAt(picture, 16, 16), 40);
    EXPECT_EQ(GreyAt(picture, 16, 18), 255);
}

TEST(DrawText, IsCutOffAtTheEdges)
{
    Picture picture = Blank(20, 20, 7);
    DrawText(picture, -3, -3, 1, "P");
    DrawText(picture, 17, 17, 3, "88");
    DrawText(picture, 500, -500, 3, "A");
    EXPECT_EQ(GreyAt(picture, 10, 10), 7);
    EXPECT_EQ(GreyAt(picture, 0, 0), 255); // row 3, column 3 of the P: where its bow closes
}

TEST(OrientationLetters, StandAtTheEdgesTheyName)
{
    struct View
    {
        PnImageParam plane;
        const char *left, *right, *top, *bottom;
    };
    const View views[] = {
        {{100, 120, 1, 1, {1, 0, 0}, {0, 1, 0}, {}}, "R", "L", "A", "P"},        // axial
        {{100, 120, 1, 1, {1, 0, 0}, {0, 0, -1}, {}}, "R", "L", "S", "I"},       // coronal
        {{100, 120, 1, 1, {0, 1, 0}, {0, 0, -1}, {}}, "A", "P", "S", "I"},       // sagittal
        {{100, 120, 1, 1, {0.8, 0.6, 0}, {0, 0, -1}, {}}, "RA", "LP", "S", "I"}, // oblique
    };
    for (const View& view : views)
    {
        Picture picture = Blank(100, 120, 60);
        DrawOrientationLetters(picture, view.plane);
        const Place left = Find(picture, view.left, 1, 40, 60, 0, 5);
        const Place right = Find(picture, view.right, 1, 40, 60, 100, 119);
        const Place top = Find(picture, view.top, 1, 0, 5, 50, 70);
        const Place bottom = Find(picture, view.bottom, 1, 85, 99, 50, 70);
        EXPECT_GE(left.row, 0) << view.left;
        EXPECT_GE(right.row, 0) << view.right;
        EXPECT_GE(top.row, 0) << view.top;
        EXPECT_GE(bottom.row, 0) << view.bottom;
        EXPECT_EQ(right.column + TextWidth(1, view.right), 120 - left.column); // as far from either edge
    }
}

TEST(OrientationLetters, SpareTinyPictures)
{
    Picture picture = Blank(39, 200, 60);
    DrawOrientationLetters(picture, {39, 200, 1, 1, {1, 0, 0}, {0, 1, 0}, {}});
    EXPECT_EQ(picture.rgb, Blank(39, 200, 60).rgb);
}

TEST(ScaleBar, HasARoundLengthOfAtMostAQuarterOfThePicture)
{
    EXPECT_EQ(ScaleBarLength(99), 50);
    EXPECT_EQ(ScaleBarLength(100), 100);
    EXPECT_EQ(ScaleBarLength(49.9), 20);
    EXPECT_EQ(ScaleBarLength(19), 10);
    EXPECT_DOUBLE_EQ(ScaleBarLength(0.6), 0.5);

    Picture picture = Blank(300, 400, 60);
    picture.columnSpacing = 0.5; // 200 mm wide: a bar of 50 mm, 100 pixels
    DrawScaleBar(picture);
    int longest = 0;
    for (int row = 0; row < 300; ++row)
        for (int column = 0, run = 0; column < 400; ++column)
        {
            run = GreyAt(picture, row, column) == 255 ? run + 1 : 0;
            longest = std::max(longest, run);
        }
    EXPECT_EQ(longest, 100);
    EXPECT_GE(Find(picture, "50 mm", 2, 150, 299, 0, 100).row, 0);
}
} // namespace
} // namespace corvane::host
