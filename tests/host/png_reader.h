#ifndef CORVANE_TESTS_HOST_PNG_READER_H
#define CORVANE_TESTS_HOST_PNG_READER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace corvane::host
{
// A PNG file as libpng reads it.
struct PngFile
{
    int rows = 0, columns = 0, bitDepth = 0;
    int channels = 0;              // 1 grey, 3 RGB
    std::vector<uint16_t> samples; // row by row
    uint32_t pixelsPerMetreX = 0, pixelsPerMetreY = 0;
    std::map<std::string, std::string> texts;

    int At(int row, int column, int channel = 0) const
    {
        return samples[(size_t(row) * size_t(columns) + size_t(column)) * size_t(channels) + size_t(channel)];
    }
};

// Throws std::runtime_error for what is no complete PNG.
PngFile ReadPng(const std::string& bytes);
} // namespace corvane::host

#endif
