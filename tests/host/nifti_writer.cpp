#include "nifti_writer.h"

#include "read_testing.h"

namespace corvane::host
{
namespace
{
// A header of zeros in which fields are put at their places.
struct Fields
{
    std::string bytes;
    bool turned;

    template <typename T>
    void Put(size_t offset, T value)
    {
        bytes.replace(offset, sizeof value, BytesOf(value, turned));
    }
    // A real number: single in version 1, double in version 2.
    void PutReal(int version, size_t offset, size_t index, double value)
    {
        if (version == 1)
            Put(offset + 4 * index, float(value));
        else
            Put(offset + 8 * index, value);
    }
};
} // namespace

void NiftiFile::SetSform(const Grid& grid)
{
    sizes = {grid.sizeX, grid.sizeY, grid.sizeZ};
    spacing = {grid.spacing.x, grid.spacing.y, grid.spacing.z};
    const Vec3 x = grid.spacing.x * grid.rowDirection, y = grid.spacing.y * grid.columnDirection,
               z = grid.spacing.z * grid.sliceDirection, o = grid.origin;
    // Right and anterior are the negatives of left and posterior.
    sform = {{{-x.x, -y.x, -z.x, -o.x}, {-x.y, -y.y, -z.y, -o.y}, {x.z, y.z, z.z, o.z}}};
}

std::string NiftiFile::Header() const
{
    const bool one = version == 1;
    const size_t size = one ? 348 : 540;
    Fields fields = {std::string(size + 4, '\0'), bigEndian}; // 4 bytes behind it say that there are no extensions
    fields.Put(0, int32_t(size));
    for (size_t i = 0; i <= 7; ++i)
    {
        const int64_t dim = i == 0 ? int64_t(sizes.size()) : i <= sizes.size() ? sizes[i - 1] : 1;
        if (one)
            fields.Put(40 + 2 * i, int16_t(dim));
        else
            fields.Put(16 + 8 * i, dim);
        const double pixdim = i == 0 ? (qform ? (*qform)[6] : 1) : i <= 3 ? spacing[i - 1] : 1;
        fields.PutReal(version, one ? 76 : 104, i, pixdim);
    }
    fields.Put(one ? 70 : 12, datatype);
    fields.Put(one ? 72 : 14, bitsPerVoxel);
    const int64_t voxelsAt = twoFiles ? 0 : int64_t(size + 4);
    if (one)
        fields.Put(108, float(voxelsAt));
    else
        fields.Put(168, voxelsAt);
    fields.PutReal(version, one ? 112 : 176, 0, slope);
    fields.PutReal(version, one ? 116 : 184, 0, intercept);
    if (one)
        fields.Put(123, int8_t(units));
    else
        fields.Put(500, int32_t(units));
    if (qform)
    {
        if (one)
            fields.Put(252, int16_t(1));
        else
            fields.Put(344, int32_t(1));
        for (size_t i = 0; i < 6; ++i)
            fields.PutReal(version, one ? 256 : 352, i, (*qform)[i]);
    }
    if (sform)
    {
        if (one)
            fields.Put(254, int16_t(2));
        else
            fields.Put(348, int32_t(2));
        for (size_t row = 0; row < 3; ++row)
            for (size_t column = 0; column < 4; ++column)
                fields.PutReal(version, one ? 280 : 400, 4 * row + column, (*sform)[row][column]);
    }
    const std::string magic = std::string(twoFiles ? "ni" : "n+") + std::to_string(version);
    fields.bytes.replace(one ? 344 : 4, 3, magic);
    if (!one)
        fields.bytes.replace(8, 4, "\r\n\x1a\n");
    return fields.bytes;
}
} // namespace corvane::host
