#include "file_of_bytes.h"
#include "host/view_path.h"
#include "reader_checks.h"

#include <cmath>

using namespace corvane;

// The points of a file, and a flight along them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::string path = fuzz::FileOfBytes("points", bytes, count);
    std::vector<host::Vec3> points;
    std::vector<host::InsideView> views;
    if (!fuzz::Succeeds([&] { points = host::ReadPoints(path); }))
        return 0;
    if (!fuzz::Succeeds([&] { views = host::FlyThrough(points, 7); }))
        return 0;
    fuzz::Require(views.size() == 7, "another count of views than was asked for");
    for (const host::InsideView& view : views)
    {
        fuzz::Require(std::isfinite(Length(view.eye)), "an eye that is nowhere");
        fuzz::Require(std::abs(Length(view.direction) - 1) < 1e-6, "a direction that is no unit vector");
        fuzz::Require(std::abs(Length(view.up) - 1) < 1e-6, "an upward direction that is no unit vector");
    }
    return 0;
}
