#include "png_reader.h"

#include <cstring>
#include <png.h>
#include <stdexcept>

namespace corvane::host
{
namespace
{
struct Source
{
    const std::string* bytes;
    size_t at;
};

void Take(png_structp png, png_bytep target, size_t size)
{
    auto* source = static_cast<Source*>(png_get_io_ptr(png));
    if (source->bytes->size() - source->at < size)
        png_error(png, "the file ends too early");
    std::memcpy(target, source->bytes->data() + source->at, size);
    source->at += size;
}

void Fail(png_structp, png_const_charp message) { throw std::runtime_error(message); }
} // namespace

PngFile ReadPng(const std::string& bytes)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, nullptr);
    png_infop info = png_create_info_struct(png);
    PngFile file;
    try
    {
        Source source = {&bytes, 0};
        png_set_read_fn(png, &source, Take);
        png_read_info(png, info);
        file.rows = int(png_get_image_height(png, info));
        file.columns = int(png_get_image_width(png, info));
        file.bitDepth = png_get_bit_depth(png, info);
        file.channels = png_get_channels(png, info);
        file.pixelsPerMetreX = png_get_x_pixels_per_meter(png, info);
        file.pixelsPerMetreY = png_get_y_pixels_per_meter(png, info);
        png_textp texts = nullptr;
        int textCount = 0;
        png_get_text(png, info, &texts, &textCount);
        for (int n = 0; n < textCount; ++n)
            file.texts[texts[n].key] = texts[n].text;
        std::vector<uint8_t> row(png_get_rowbytes(png, info));
        for (int r = 0; r < file.rows; ++r)
        {
            png_read_row(png, row.data(), nullptr);
            for (size_t n = 0; n < row.size(); n += size_t(file.bitDepth / 8))
                file.samples.push_back(file.bitDepth == 16 ? uint16_t(row[n] << 8 | row[n + 1]) : row[n]);
        }
        png_read_end(png, info);
    }
    catch (...)
    {
        png_destroy_read_struct(&png, &info, nullptr);
        throw;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return file;
}
} // namespace corvane::host
