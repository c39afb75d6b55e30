#ifndef CORVANE_APPS_PROJECTION_OPTIONS_H
#define CORVANE_APPS_PROJECTION_OPTIONS_H

#include <optional>
#include <set>

#include "host/projection.h"
#include "mpr_options.h"
#include "vr_options.h"

namespace corvane::app
{
// The command line as it was typed; an empty text: not given. A projection goes through the whole volume, as `view`
// says, or through slabs about planes, as `planes` says. What both know stands in `planes`.
struct ProjectionOptions
{
    ProjectionOptions();

    MprOptions planes;
    VrOptions view;
    std::string thickness, hideMargin;
    std::vector<std::string> hiddenLabels;
};

void AddProjectionOptions(CLI::App& command, ProjectionOptions& options);

// The thickness of the slabs in mm; nothing for a projection through the whole volume.
// Throws Error (Usage) when the options contradict each other; needs no file.
std::optional<double> ThicknessOf(const ProjectionOptions& options);

// What of the whole volume is projected, and from where; as for renderings.
VrOptions ViewOptionsOf(const ProjectionOptions& options);

// These throw Error (Usage) for what cannot be.
std::set<int> HiddenLabelsOf(const ProjectionOptions& options);
int HideMarginOf(const ProjectionOptions& options);
PlaneRequest SlabsOf(const ProjectionOptions& options, double thickness, const host::Grid& grid);

// A window as typed; where none is, the one that suits CT values, or nothing: the projected values shall decide.
std::optional<host::Window> WindowOf(const ProjectionOptions& options, host::Projection projection,
                                     const host::Volume& volume);
} // namespace corvane::app

#endif
