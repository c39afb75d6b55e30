#include "input_option.h"

#include "host/error.h"

namespace corvane::app
{
void AddInput(CLI::App& command, std::string& input)
{
    input = "phantom:";
    command
        .add_option("INPUT", input, "DICOM folder or file, .nii, .nii.gz, .nrrd, .nhdr, .mha, .mhd, phantom: (default)")
        ->type_name("");
}

host::Padding PaddingOf(const std::string& pad, const host::Grid& grid)
{
    if (pad == "auto")
        return host::PaddingOfThinAxes(grid);
    if (pad == "all")
        return {true, true, true};
    if (pad == "none")
        return {};
    throw host::Error(host::ErrorKind::Usage, "--pad is auto, all or none, not '" + pad + "'");
}
} // namespace corvane::app
