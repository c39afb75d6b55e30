#include "file_of_bytes.h"
#include "reader_checks.h"

using namespace corvane;

// One file with header and voxels; or a header and the file "data" beside it, which holds the voxels.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::vector<std::string_view> files = fuzz::FilesOfInput(bytes, count);
    if (files.size() > 1)
        fuzz::FileOfBytes("data", files[1]);
    fuzz::ReadAndPrepare(fuzz::FileOfBytes(files.size() > 1 ? "volume.mhd" : "volume.mha", files[0]));
    return 0;
}
