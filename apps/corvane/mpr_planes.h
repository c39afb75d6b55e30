#ifndef CORVANE_APPS_MPR_PLANES_H
#define CORVANE_APPS_MPR_PLANES_H

#include <optional>
#include <string>
#include <vector>

#include "corvane/EngineMPR.h"
#include "host/volume.h"
#include "report.h"

namespace corvane::app
{
// Which planes are wanted.
struct PlaneRequest
{
    struct Rotation
    {
        KsMPRType about; // the two other planes turn about this one's normal
        double degrees;
    };

    std::vector<KsMPRType> planes;
    std::vector<Rotation> rotations;   // in this order
    std::optional<host::Vec3> center;  // patient mm; else the volume's
    std::optional<PnImageParam> given; // a plane of the caller's own instead
    double shift = 0;                  // mm along the plane's normal
    std::optional<double> pixelSize;   // mm; else the smallest voxel spacing
    double zoom = 1;                   // divides the pixel size
    std::optional<int> count;          // a stack of so many slices; 0: as many as fit
    std::optional<double> step;        // mm between them; else the size of a pixel
};

// One picture to be made.
struct PlannedPicture
{
    std::string plane; // axial, sagittal, coronal or plane
    int index, count;  // of its stack, from 1; a single picture is 1 of 1
    double offset;     // mm along the normal from the center
    double thickness;  // mm to the next slice
    host::Vec3 normal;
    PnImageParam param;
};

std::string PlaneName(KsMPRType type);

// Turns the engine's planes as requested and lists the pictures. The engine has its volume.
//   grid  the grid that the engine samples
// Throws Error for what cannot be.
std::vector<PlannedPicture> PlanPictures(EngineMPR& engine, const host::Grid& grid, const PlaneRequest& request);

// Where a picture lies in the patient, for people's programs; in RAS instead of LPS if asked for.
Json JsonOf(const PlannedPicture& planned, const std::string& file, bool ras);
} // namespace corvane::app

#endif
