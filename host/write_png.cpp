#include "write_png.h"

#include <cmath>
#include <csetjmp>

#include <png.h>

#include "error.h"
#include "numbers.h"

namespace corvane::host
{
namespace
{
void Append(png_structp png, png_bytep data, size_t size)
{
    static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), size);
}

void Ignore(png_structp) {}

[[noreturn]] void Fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void Silent(png_structp, png_const_charp) {}

struct Layout
{
    size_t columns, rows;
    int bitDepth, colourType;
    double rowSpacing, columnSpacing;
};

// One text of the file; PNG keeps the name (Latin letters) and the text.
struct Note
{
    std::string name, text;
};

// libpng leaves by longjmp on errors: nothing between here and it may own memory.
bool WritePng(png_structp png, png_infop info, const Layout& layout, const std::vector<const uint8_t*>& rows,
              std::vector<png_text>& texts)
{
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_IHDR(png, info, png_uint_32(layout.columns), png_uint_32(layout.rows), layout.bitDepth, layout.colourType,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const auto pixelsPerMetre = [](double spacing) { return std::floor(1000 / spacing + 0.5); };
    const double x = pixelsPerMetre(layout.columnSpacing), y = pixelsPerMetre(layout.rowSpacing);
    if (x >= 1 && y >= 1 && x < 1e9 && y < 1e9)
        png_set_pHYs(png, info, png_uint_32(x), png_uint_32(y), PNG_RESOLUTION_METER);
    if (!texts.empty())
        png_set_text(png, info, texts.data(), int(texts.size()));
    png_write_info(png, info);
    for (const uint8_t* row : rows)
        png_write_row(png, row);
    png_write_end(png, info);
    return true;
}

std::string Encode(const Layout& layout, const std::vector<uint8_t>& pixels, const std::vector<Note>& notes)
{
    const size_t channels = layout.colourType == PNG_COLOR_TYPE_RGB ? 3 : 1;
    const size_t rowBytes = layout.columns * channels * size_t(layout.bitDepth / 8);
    std::vector<const uint8_t*> rows(layout.rows);
    for (size_t row = 0; row < layout.rows; ++row)
        rows[row] = pixels.data() + row * rowBytes;
    std::vector<png_text> texts(notes.size());
    for (size_t n = 0; n < notes.size(); ++n)
    {
        texts[n] = {};
        texts[n].compression = PNG_TEXT_COMPRESSION_NONE;
        texts[n].key = const_cast<char*>(notes[n].name.c_str());
        texts[n].text = const_cast<char*>(notes[n].text.c_str());
        texts[n].text_length = notes[n].text.size();
    }
    std::string bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Silent);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool written = false;
    if (info)
    {
        png_set_write_fn(png, &bytes, Append, Ignore);
        written = WritePng(png, info, layout, rows, texts);
    }
    png_destroy_write_struct(&png, &info);
    if (!written)
        throw Error(ErrorKind::Output, "the picture cannot be written as PNG; choose larger pixels");
    return bytes;
}
} // namespace

std::string PngOf(const Picture& picture)
{
    Layout layout = {size_t(picture.columns), size_t(picture.rows), 8,
                     PNG_COLOR_TYPE_GRAY,     picture.rowSpacing,   picture.columnSpacing};
    std::vector<uint8_t> greys;
    greys.reserve(picture.rgb.size() / 3);
    for (size_t n = 0; n + 2 < picture.rgb.size(); n += 3)
    {
        if (picture.rgb[n] != picture.rgb[n + 1] || picture.rgb[n] != picture.rgb[n + 2])
        {
            layout.colourType = PNG_COLOR_TYPE_RGB;
            return Encode(layout, picture.rgb, {});
        }
        greys.push_back(picture.rgb[n]);
    }
    return Encode(layout, greys, {});
}

std::string Png16Of(const KsImageData& image, double valueSlope, double valueIntercept)
{
    const Layout layout = {
        image.columns, image.rows, 16, PNG_COLOR_TYPE_GRAY, image.param.rowSpacing, image.param.columnSpacing};
    std::vector<uint8_t> pixels;
    pixels.reserve(layout.columns * layout.rows * 2);
    for (size_t n = 0; n < layout.columns * layout.rows; ++n)
    {
        const int value = image.values[n] + 32768;
        pixels.push_back(uint8_t(value >> 8)); // PNG stores the high byte first
        pixels.push_back(uint8_t(value & 255));
    }
    return Encode(layout, pixels,
                  {{"Stored value", "sample - 32768"},
                   {"Real value", ExactNumber(valueSlope) + " * stored value + " + ExactNumber(valueIntercept)}});
}
} // namespace corvane::host
