#ifndef CORVANE_APPS_VE_OPTIONS_H
#define CORVANE_APPS_VE_OPTIONS_H

#include "film_options.h"
#include "host/view_path.h"

namespace corvane::app
{
// The command line as it was typed; an empty text: not given.
struct VeOptions : RenderingOptions
{
    std::string eye, eyeVoxel, direction, up, fieldOfView = "90", path, frames = "60";
    std::vector<std::string> points;
};

void AddVeOptions(CLI::App& ve, VeOptions& options);

// How wide the view is from top to bottom, degrees. Throws Error (Usage) as all below.
double FieldOfViewOf(const VeOptions& options);

// How many pictures the options ask for; needs no volume.
int PictureCount(const VeOptions& options);

// The views. Without an eye or a path: the phantom has one of its own, in other volumes a cavity is looked for.
std::vector<host::InsideView> InsideViewsOf(const VeOptions& options, const host::Volume& volume);
} // namespace corvane::app

#endif
