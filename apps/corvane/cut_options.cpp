#include "cut_options.h"

#include <algorithm>
#include <filesystem>

#include "host/error.h"
#include "host/label_file.h"
#include "host/numbers.h"
#include "host/output_file.h"
#include "host/plane.h"
#include "host/polygon_file.h"
#include "input_option.h"

namespace corvane::app
{
namespace
{
namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;
using host::Vec3;

constexpr char kField[] = "{picture}";

std::set<int> OnlyLabels(const CutOptions& options)
{
    std::set<int> labels;
    for (const std::string& text : options.onlyLabels)
        labels.insert(CountOf(text, "--only-label takes a label from 0 to 63", 0, 63));
    return labels;
}

// Millimetres from the middle of what is shown, the smaller number first.
std::optional<host::CutLimits::Depth> DepthOf(const CutOptions& options)
{
    if (options.depth.empty())
        return {};
    const std::vector<double> numbers = host::RequireNumbers(
        options.depth, ',', 2, "--depth takes FROM,TO in mm behind the middle of what is shown, negative before it");
    return host::CutLimits::Depth{std::min(numbers[0], numbers[1]), std::max(numbers[0], numbers[1])};
}

void AddWhatIsCut(CLI::App& cut, CutOptions& options)
{
    const char* group = "What is cut";
    cut.add_option("--polygon", options.polygons,
                   "COLUMN,ROW:COLUMN,ROW:... in pixels of the picture, 0,0 the centre of the first one; or "
                   "X,Y,Z:X,Y,Z:... in patient mm, as seen in the picture; may be repeated")
        ->allow_extra_args(false)
        ->group(group);
    cut.add_option("--polygons", options.polygonFiles,
                   "FILE with polygons: a corner per line and an empty line between polygons, or JSON; may be repeated")
        ->allow_extra_args(false)
        ->group(group);
    cut.add_flag("--inside", options.inside, "cut away what the polygons cover, at every depth (default)")
        ->group(group);
    cut.add_flag("--outside,--keep", options.outside, "cut away everything else and keep what they cover")
        ->group(group);
    cut.add_option("--only-label", options.onlyLabels,
                   "cut only voxels with this label (0: those without one); may be repeated")
        ->allow_extra_args(false)
        ->group(group);
    cut.add_option("--depth", options.depth,
                   "FROM,TO in mm: cut only so far behind the middle of what is shown; negative: before it")
        ->group(group);
    cut.add_option("--crop", options.crop, "X0,Y0,Z0,X1,Y1,Z1 in patient mm: show, and cut, only that box")
        ->group(group);
    cut.add_option("--crop-voxels", options.cropVoxels, "I0,J0,K0,I1,J1,K1: the same in voxels")->group(group);
}

void AddPictureOptions(CLI::App& cut, CutOptions& options)
{
    const char* group = "The picture, as for corvane vr";
    AddViewOptions(cut, options, group);
    cut.add_option("--size", options.size, "COLUMNSxROWS of the picture in pixels, or N for N x N (default 512)")
        ->group(group);
    cut.add_flag("--letters", options.letters, "add orientation letters and a scale bar to the previews")->group(group);
}
} // namespace

void AddCutOptions(CLI::App& cut, CutOptions& options)
{
    AddInput(cut, options.input);
    cut.add_option("--series", options.series, "which series of a DICOM folder, by number or UID");
    cut.add_option("-o,--output", options.output,
                   "the label file: .nrrd, .nii or .nii.gz; - for NRRD on standard output");
    cut.add_option("--preview", options.preview,
                   "pictures before and after, and of the region: a folder, or a pattern with {picture}");
    cut.add_flag("--force", options.force, "replace files that stand there already");
    cut.add_flag("--json", options.json, "print what was cut, and where, as JSON");
    cut.add_flag("--ras", options.ras, "points and directions are given and printed as RAS instead of LPS");
    AddWhatIsCut(cut, options);
    AddPictureOptions(cut, options);
    AddAppearanceOptions(cut, options);
}

void CheckCutOptions(const CutOptions& options)
{
    if (options.output.empty() && options.preview.empty())
        throw Error(ErrorKind::Usage, "say where the labels go with --output, or try the cut with --preview");
    if (!options.output.empty())
        host::LabelFormatOf(options.output);
    if (options.json && options.output == "-")
        throw Error(ErrorKind::Usage, "--json and --output - both want standard output");
    if (options.inside && options.outside)
        throw Error(ErrorKind::Usage, "give --inside or --outside, not both");
    if (options.polygons.empty() && options.polygonFiles.empty())
        throw Error(ErrorKind::Usage, "draw a region with --polygon COLUMN,ROW:COLUMN,ROW:... or --polygons FILE");
    CheckAppearance(options);
    ViewsOf(options);
    ZoomOf(options);
    OnlyLabels(options);
    DepthOf(options);
}

std::vector<host::GivenPolygon> PolygonsOf(const CutOptions& options)
{
    std::vector<host::GivenPolygon> polygons;
    for (const std::string& text : options.polygons)
        polygons.push_back(host::ParsePolygon(text));
    for (const std::string& file : options.polygonFiles)
        for (host::GivenPolygon& polygon : host::ReadPolygons(file))
            polygons.push_back(std::move(polygon));
    return polygons;
}

host::CutSide SideOf(const CutOptions& options)
{
    return options.outside ? host::CutSide::Outside : host::CutSide::Inside;
}

OutputNames PreviewNames(const CutOptions& options)
{
    OutputNames names;
    if (options.preview.empty())
        return names;
    std::string pattern = options.preview;
    std::error_code ignored;
    const bool isFolder = fs::is_directory(pattern, ignored) || pattern.back() == '/';
    if (pattern.find(kField) == std::string::npos)
    {
        if (!isFolder && fs::path(pattern).has_extension())
            throw Error(ErrorKind::Usage, "three pictures need more than one name; give --preview a folder, or put " +
                                              std::string(kField) + " into it");
        if (!fs::is_directory(pattern, ignored))
            names.newFolder = pattern;
        pattern = (fs::path(pattern) / (std::string("cut_") + kField + ".png")).string();
    }
    else if (fs::path(pattern).extension() != ".png")
        throw Error(ErrorKind::Usage, "--preview makes PNG files; choose a name that ends in .png");
    for (const char* picture : {"before", "region", "after"})
    {
        names.files.push_back(pattern);
        for (size_t at = 0; (at = names.files.back().find(kField, at)) != std::string::npos;)
            names.files.back().replace(at, sizeof kField - 1, picture);
    }
    return names;
}

host::CutLimits LimitsOf(const CutOptions& options, const std::array<bool, 64>& shown, const Crop& crop,
                         const PnImageParam& plane)
{
    host::CutLimits limits = {shown, crop.box, DepthOf(options)};
    const std::set<int> only = OnlyLabels(options);
    for (int label = 0; label < 64; ++label)
        limits.labels[size_t(label)] &= only.empty() || only.count(label) > 0;
    if (limits.depth)
    {
        const Vec3 sight = Unit(Cross(host::RowDirection(plane), host::ColumnDirection(plane)));
        const double middle = Dot(host::MiddleOf(crop.corners) - host::FirstPixel(plane), sight);
        limits.depth->from += middle;
        limits.depth->to += middle;
    }
    return limits;
}
} // namespace corvane::app
