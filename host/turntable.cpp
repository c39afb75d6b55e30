#include "turntable.h"

namespace corvane::host
{
std::vector<View> TurntableViews(const View& start, double azimuth, double elevation, double roll, int count)
{
    std::vector<View> views;
    views.reserve(size_t(count));
    for (int n = 0; n < count; ++n)
        views.push_back(Turned(start, azimuth + 360.0 * n / count, elevation, roll));
    return views;
}
} // namespace corvane::host
