#ifndef CORVANE_APPS_VR_OPTIONS_H
#define CORVANE_APPS_VR_OPTIONS_H

#include <optional>

#include "film_options.h"
#include "host/scene.h"
#include "mpr_planes.h"

namespace corvane::app
{
// The command line as it was typed; an empty text: not given.
struct VrOptions : RenderingOptions
{
    std::string view = "anterior", azimuth = "0", elevation = "0", roll = "0", zoom = "1";
    std::string crop, cropVoxels, planes, center, window, turntable;
    bool letters = false;
};

void AddVrOptions(CLI::App& vr, VrOptions& options);

// Those among them that say where the eye stands, and how large things appear.
//   group  under which the help lists them
void AddViewOptions(CLI::App& command, VrOptions& options, const std::string& group);

// What of the volume is shown.
struct Crop
{
    std::optional<host::PatientBox> box; // patient mm
    host::Corners corners;               // around what is shown; the picture is made to fit them
    std::optional<host::Vec3> middle;    // of what is shown, when it is not the whole volume
};

// Throw Error (Usage) for what cannot be.
std::vector<host::View> ViewsOf(const VrOptions& options);
double ZoomOf(const VrOptions& options);

// One picture for each view, all to the same scale.
std::vector<host::Framing> FramingsOf(const std::vector<host::View>& views, const Crop& crop, const PictureSize& size,
                                      double zoom);

// Cuts what --crop-voxels leaves out away from the volume's labels; --crop becomes a box.
Crop CropOf(const VrOptions& options, host::Volume& volume);

// The planes that --planes asks for; none of them: nothing.
PlaneRequest PlanesOf(const VrOptions& options);
} // namespace corvane::app

#endif
