#include "input_option.h"

namespace corvane::app
{
void AddInput(CLI::App& command, std::string& input)
{
    input = "phantom:";
    command
        .add_option("INPUT", input, "DICOM folder or file, .nii, .nii.gz, .nrrd, .nhdr, .mha, .mhd, phantom: (default)")
        ->type_name("");
}
} // namespace corvane::app
