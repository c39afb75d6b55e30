#include "dicom_checks.h"

#include "host/read_dicom_decoders.h"
#include "host/read_dicom_elements.h"
#include "host/read_dicom_header.h"
#include "host/read_dicom_picture_size.h"
#include "reader_checks.h"

namespace corvane::fuzz
{
bool NeedsPackagedDecoder(const std::string& path)
{
    std::optional<host::DicomHeader> header;
    Succeeds([&] { header = host::ReadDicomHeader(path); });
    if (!header || !host::NeedsDecoders(*header))
        return false;
    Succeeds(
        [&]
        {
            for (const std::string& fragment : host::ReadDicomFragments(path, header->pixelOffset))
                host::PictureSizeOf(fragment);
        });
    return true;
}
} // namespace corvane::fuzz
