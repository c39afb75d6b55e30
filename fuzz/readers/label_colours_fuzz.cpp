#include "file_of_bytes.h"
#include "host/label_colours.h"
#include "reader_checks.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::string path = fuzz::FileOfBytes("colours", bytes, count);
    host::LabelColours colours;
    if (!fuzz::Succeeds([&] { colours = host::ReadLabelColours(path); }))
        return 0;
    for (const host::LabelColour& colour : colours)
    {
        fuzz::Require(colour.opacity >= 0 && colour.opacity <= 1, "an opacity outside 0 to 1");
        fuzz::RequireLine(colour.name);
    }
    return 0;
}
