#include "window.h"

#include <algorithm>
#include <cmath>

#include "error.h"
#include "numbers.h"

namespace corvane::host
{
namespace
{
// The smallest stored value that at least `percent` of all voxels do not exceed.
double Percentile(const std::vector<size_t>& histogram, size_t total, double percent)
{
    const double wanted = percent / 100 * double(total);
    size_t sum = 0;
    for (size_t bin = 0; bin < histogram.size(); ++bin)
    {
        sum += histogram[bin];
        if (sum > 0 && double(sum) >= wanted)
            return double(bin) - 32768;
    }
    return 0;
}
std::vector<size_t> Histogram(const Volume& volume)
{
    std::vector<size_t> histogram(65536);
    for (int16_t value : volume.voxels)
        ++histogram[size_t(value + 32768)];
    return histogram;
}
} // namespace

uint8_t GreyOf(const Window& window, double realValue)
{
    const double grey = ((realValue - window.centre) / window.width + 0.5) * 255;
    return uint8_t(std::clamp(grey, 0.0, 255.0) + 0.5);
}

Window PercentileWindow(const Volume& volume, double lowPercent, double highPercent)
{
    const std::vector<size_t> histogram = Histogram(volume);
    const auto real = [&](double percent)
    { return volume.valueSlope * Percentile(histogram, volume.voxels.size(), percent) + volume.valueIntercept; };
    const double a = real(lowPercent), b = real(highPercent);
    if (a == b)
        return {a, 1};
    return {0.5 * (a + b), std::fabs(b - a)};
}

const std::vector<NamedWindow>& NamedWindows()
{
    static const std::vector<NamedWindow> windows = {
        {"bone", {400, 1800}},  {"lung", {-600, 1500}},     {"brain", {40, 80}},
        {"abdomen", {50, 400}}, {"mediastinum", {40, 350}},
    };
    return windows;
}

bool HoldsHounsfieldUnits(const Volume& volume)
{
    if (!volume.modality.empty() || volume.valueSlope != 1 || volume.valueIntercept != 0)
        return volume.modality == "CT";
    const double low = Percentile(Histogram(volume), volume.voxels.size(), 1);
    return low >= -3100 && low <= -900;
}

Window ParseWindow(const std::string& text, const Volume& volume)
{
    const std::string name = !text.empty() ? text : HoldsHounsfieldUnits(volume) ? "abdomen" : "auto";
    for (const NamedWindow& named : NamedWindows())
        if (name == named.name)
            return named.window;
    if (name == "auto")
        return PercentileWindow(volume, 1, 99);
    const std::string what = "a window is CENTRE,WIDTH or one of bone, lung, brain, abdomen, mediastinum, auto";
    const std::vector<double> numbers = RequireNumbers(name, ',', 2, what);
    if (numbers[1] <= 0)
        throw Error(ErrorKind::Usage, what + ", with a width above 0, not '" + text + "'");
    return {numbers[0], numbers[1]};
}
} // namespace corvane::host
