#include "write_nrrd.h"

#include "numbers.h"
#include "plane.h"

namespace corvane::host
{
namespace
{
std::string VectorText(Vec3 v)
{
    return "(" + ExactNumber(v.x) + "," + ExactNumber(v.y) + "," + ExactNumber(v.z) + ")";
}
} // namespace

std::string NrrdOf(const KsImageData& image, double thickness, double valueSlope, double valueIntercept)
{
    const PnImageParam& plane = image.param;
    const Vec3 row = RowDirection(plane), column = ColumnDirection(plane);
    std::string bytes = "NRRD0004\n"
                        "type: int16\n"
                        "dimension: 3\n"
                        "space: left-posterior-superior\n"
                        "sizes: " +
                        std::to_string(image.columns) + " " + std::to_string(image.rows) +
                        " 1\n"
                        "space directions: " +
                        VectorText(plane.columnSpacing * row) + " " + VectorText(plane.rowSpacing * column) + " " +
                        VectorText(thickness * Unit(Cross(row, column))) +
                        "\n"
                        "kinds: domain domain domain\n"
                        "endian: little\n"
                        "encoding: raw\n"
                        "space origin: " +
                        VectorText(FirstPixel(plane)) + "\n";
    if (valueSlope != 1 || valueIntercept != 0)
        bytes += "value slope:=" + ExactNumber(valueSlope) + "\nvalue intercept:=" + ExactNumber(valueIntercept) + "\n";
    bytes += "\n";
    for (size_t n = 0; n < size_t(image.rows) * image.columns; ++n)
    {
        const auto value = uint16_t(image.values[n]);
        bytes += char(value & 255);
        bytes += char(value >> 8);
    }
    return bytes;
}
} // namespace corvane::host
