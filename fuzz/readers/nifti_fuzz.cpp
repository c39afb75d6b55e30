#include "file_of_bytes.h"
#include "reader_checks.h"

using namespace corvane;

// One file with header and voxels, or the two files of a pair.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::vector<std::string_view> files = fuzz::FilesOfInput(bytes, count);
    if (files.size() > 1)
        fuzz::FileOfBytes("pair.img", files[1]);
    fuzz::ReadAndPrepare(fuzz::FileOfBytes(files.size() > 1 ? "pair.hdr" : "volume.nii", files[0]));
    return 0;
}
