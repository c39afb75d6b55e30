#include "file_of_bytes.h"
#include "host/polygon_file.h"
#include "reader_checks.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::string path = fuzz::FileOfBytes("polygons", bytes, count);
    std::vector<host::GivenPolygon> polygons;
    if (fuzz::Succeeds([&] { polygons = host::ReadPolygons(path); }))
        fuzz::Require(!polygons.empty(), "no polygon, and no error");
    for (const host::GivenPolygon& polygon : polygons)
        fuzz::Succeeds([&] { host::CheckPolygon(polygon); });
    return 0;
}
