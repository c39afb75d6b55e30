#include "label_file.h"

#include <algorithm>
#include <cstring>

#include <nifti2_io.h>
#include <zlib.h>

#include "error.h"
#include "numbers.h"

namespace corvane::host
{
namespace
{
bool EndsWith(const std::string& text, const std::string& ending)
{
    return text.size() > ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

std::string VectorText(Vec3 v)
{
    return "(" + ExactNumber(v.x) + "," + ExactNumber(v.y) + "," + ExactNumber(v.z) + ")";
}

// Compresses pieces of bytes into one gzip stream.
class Gzip
{
public:
    Gzip()
    {
        constexpr int kGzipWindow = 15 + 16; // zlib's largest window; 16 asks for a gzip header
        if (deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
            throw Error(ErrorKind::Computation, "out of memory for compressing the labels");
    }
    ~Gzip() { deflateEnd(&stream_); }
    Gzip(const Gzip&) = delete;
    Gzip& operator=(const Gzip&) = delete;

    void Add(const void* bytes, size_t count)
    {
        constexpr size_t kPiece = size_t(1) << 30; // zlib counts in 32 bits
        const Bytef* next = static_cast<const Bytef*>(bytes);
        while (count > 0)
        {
            const size_t piece = std::min(count, kPiece);
            stream_.next_in = const_cast<Bytef*>(next);
            stream_.avail_in = uInt(piece);
            Deflate(Z_NO_FLUSH);
            next += piece;
            count -= piece;
        }
    }

    std::string Finished()
    {
        Deflate(Z_FINISH);
        return std::move(compressed_);
    }

private:
    void Deflate(int flush)
    {
        do
        {
            Bytef buffer[1 << 16];
            stream_.next_out = buffer;
            stream_.avail_out = sizeof buffer;
            deflate(&stream_, flush); // cannot fail: the stream is sound and there is room
            compressed_.append(reinterpret_cast<const char*>(buffer), sizeof buffer - stream_.avail_out);
        } while (stream_.avail_out == 0);
    }

    z_stream stream_ = {};
    std::string compressed_;
};

std::string NrrdFile(const std::vector<uint8_t>& labels, const Grid& grid)
{
    const std::string header =
        "NRRD0005\n"
        "type: uint8\n"
        "dimension: 3\n"
        "space: left-posterior-superior\n"
        "sizes: " +
        std::to_string(grid.sizeX) + " " + std::to_string(grid.sizeY) + " " + std::to_string(grid.sizeZ) +
        "\n"
        "space directions: " +
        VectorText(grid.spacing.x * grid.rowDirection) + " " + VectorText(grid.spacing.y * grid.columnDirection) + " " +
        VectorText(grid.spacing.z * grid.sliceDirection) +
        "\n"
        "kinds: domain domain domain\n"
        "encoding: gzip\n"
        "space origin: " +
        VectorText(grid.origin) + "\n" + kCutMarkName + ":=" + kCutMark + "\n\n";
    Gzip data;
    data.Add(labels.data(), labels.size());
    return header + data.Finished();
}

nifti_1_header NiftiHeader(const Grid& grid)
{
    if (std::max({grid.sizeX, grid.sizeY, grid.sizeZ}) > INT16_MAX)
        throw Error(ErrorKind::Output,
                    "NIfTI holds no axis of more than 32767 voxels; choose a name that ends in .nrrd");
    constexpr int kVoxelOffset = 352; // behind the header and its four bytes about extensions
    nifti_1_header header = {};
    header.sizeof_hdr = sizeof header;
    header.regular = 'r';
    const short sizes[8] = {3, short(grid.sizeX), short(grid.sizeY), short(grid.sizeZ), 1, 1, 1, 1};
    std::memcpy(header.dim, sizes, sizeof sizes);
    const float spacings[8] = {1, float(grid.spacing.x), float(grid.spacing.y), float(grid.spacing.z), 1, 1, 1, 1};
    std::memcpy(header.pixdim, spacings, sizeof spacings);
    header.intent_code = NIFTI_INTENT_LABEL;
    header.datatype = NIFTI_TYPE_UINT8;
    header.bitpix = 8;
    header.vox_offset = kVoxelOffset;
    header.scl_slope = 1;
    header.xyzt_units = NIFTI_UNITS_MM;
    std::strncpy(header.descrip, kCutMark, sizeof header.descrip - 1);
    // A matrix, because the quaternion of the other form knows no tilt. x grows to the right there, y to anterior.
    header.sform_code = NIFTI_XFORM_SCANNER_ANAT;
    const Vec3 columns[4] = {grid.spacing.x * grid.rowDirection, grid.spacing.y * grid.columnDirection,
                             grid.spacing.z * grid.sliceDirection, grid.origin};
    for (int c = 0; c < 4; ++c)
    {
        header.srow_x[c] = float(-columns[c].x);
        header.srow_y[c] = float(-columns[c].y);
        header.srow_z[c] = float(columns[c].z);
    }
    std::memcpy(header.magic, "n+1", 4);
    return header;
}

std::string NiftiFile(const std::vector<uint8_t>& labels, const Grid& grid, bool compressed)
{
    const nifti_1_header header = NiftiHeader(grid);
    const char noExtensions[4] = {};
    if (!compressed)
    {
        std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
        bytes.append(noExtensions, sizeof noExtensions);
        return bytes.append(labels.begin(), labels.end());
    }
    Gzip file;
    file.Add(&header, sizeof header);
    file.Add(noExtensions, sizeof noExtensions);
    file.Add(labels.data(), labels.size());
    return file.Finished();
}
} // namespace

LabelFormat LabelFormatOf(const std::string& path)
{
    if (path == "-" || EndsWith(path, ".nrrd"))
        return LabelFormat::Nrrd;
    if (EndsWith(path, ".nii"))
        return LabelFormat::Nifti;
    if (EndsWith(path, ".nii.gz"))
        return LabelFormat::NiftiGzip;
    throw Error(ErrorKind::Usage,
                "labels are written as .nrrd, .nii or .nii.gz; choose a name that ends so, not '" + path + "'");
}

std::string LabelFileOf(const std::vector<uint8_t>& labels, const Grid& grid, LabelFormat format)
{
    return format == LabelFormat::Nrrd ? NrrdFile(labels, grid)
                                       : NiftiFile(labels, grid, format == LabelFormat::NiftiGzip);
}
} // namespace corvane::host
