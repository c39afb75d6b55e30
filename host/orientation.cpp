#include "orientation.h"

#include <algorithm>

namespace corvane::host
{
std::string DirectionLetters(Vec3 direction)
{
    constexpr double kShownFrom = 0.25882; // sine of 15 degrees
    struct Part
    {
        double size;
        char letter;
    };
    const double length = Length(direction);
    if (!(length > 0))
        return "";
    Part parts[3] = {{direction.x / length, direction.x < 0 ? 'R' : 'L'},
                     {direction.y / length, direction.y < 0 ? 'A' : 'P'},
                     {direction.z / length, direction.z < 0 ? 'I' : 'S'}};
    for (Part& part : parts)
        part.size = std::fabs(part.size);
    // Equal shares keep the order x, y, z, also when rounding makes them differ in the last digits.
    std::stable_sort(parts, parts + 3, [](const Part& a, const Part& b) { return a.size > b.size + 1e-6; });
    std::string letters(1, parts[0].letter);
    for (int n = 1; n < 3; ++n)
        if (parts[n].size > kShownFrom)
            letters += parts[n].letter;
    return letters;
}
} // namespace corvane::host
