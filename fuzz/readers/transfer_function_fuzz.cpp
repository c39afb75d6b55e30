#include "file_of_bytes.h"
#include "host/palette_file.h"
#include "reader_checks.h"

using namespace corvane;

// Whatever a file holds, reading it as a transfer function ends in one, which becomes the palette of any volume, or in
// an error.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::string path = fuzz::FileOfBytes("palette", bytes, count);
    host::TransferFunction function;
    if (!fuzz::Succeeds([&] { function = host::ReadTransferFunction(path); }))
        return 0;
    fuzz::RequireLine(function.name);
    for (const std::string& warning : function.warnings)
        fuzz::RequireLine(warning);
    fuzz::PreparePalette(function, 1, 0, 0.7);
    fuzz::PreparePalette(function, -0.001, 1e6, 1e-6);
    fuzz::PreparePalette(function, 1e20, -1e30, 1e6);
    return 0;
}
