#include "dicom_checks.h"
#include "file_of_bytes.h"
#include "reader_checks.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    const std::string path = fuzz::FileOfBytes("image.dcm", bytes, count);
    if (!fuzz::NeedsPackagedDecoder(path))
        fuzz::ReadAndPrepare(path);
    return 0;
}
