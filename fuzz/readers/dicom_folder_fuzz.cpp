#include "dicom_checks.h"
#include "file_of_bytes.h"
#include "host/read_volume.h"
#include "reader_checks.h"

#include <filesystem>

using namespace corvane;

// A folder of up to three files. Those that an input does not have are empty, which are no images.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    constexpr size_t kFileCount = 3;
    std::vector<std::string_view> files = fuzz::FilesOfInput(bytes, count);
    files.resize(kFileCount);
    std::string path;
    for (size_t n = 0; n < kFileCount; ++n)
    {
        path = fuzz::FileOfBytes("series/" + std::to_string(n + 1), files[n]);
        if (fuzz::NeedsPackagedDecoder(path))
            return 0;
    }
    const std::string folder = std::filesystem::path(path).parent_path().string();
    fuzz::Succeeds([&] { host::ListSeries(folder); });
    fuzz::ReadAndPrepare(folder);
    return 0;
}
