#ifndef CORVANE_HOST_CUT_SELECTION_H
#define CORVANE_HOST_CUT_SELECTION_H

#include "corvane/Engine3D.h"
#include "scene.h"

#include <array>
#include <optional>

namespace corvane::host
{
// What somebody drew on a picture along parallel rays.
struct DrawnRegion
{
    PnImageParam plane;          // of the picture
    std::vector<uint8_t> pixels; // row by row; not 0: drawn
};

// What of a volume may be cut.
struct CutLimits
{
    // From the picture's plane along the direction of sight, mm.
    struct Depth
    {
        double from, to;
    };

    std::array<bool, 64> labels;   // voxels with these labels, unless they are cut away already
    std::optional<PatientBox> box; // voxels whose centres lie in it
    std::optional<Depth> depth;    // voxels whose centres lie so deep
};

enum class CutSide
{
    Inside, // of what was drawn: all voxels that are seen, or would be, through a drawn pixel
    Outside // all others
};

// Selects voxels by what was drawn on a picture, and cuts them away. A voxel belongs to the pixel nearest to where its
// centre is seen; depth along the rays does not matter but for the limits.
//
// The library's own selection places voxels with their two in-plane spacings exchanged. It is used where these are the
// same and the picture's pixels are square; else the voxels' pixels are found here.
class CutSelection
{
public:
    // Copies the volume's labels (one byte per voxel); its voxels must live as long as this does.
    // Throws Error (Computation) for what the library refuses, here and below.
    explicit CutSelection(const Volume& volume);
    CutSelection(const CutSelection&) = delete;
    CutSelection& operator=(const CutSelection&) = delete;

    // Whether the library's own selection is exact for a picture.
    bool LibraryIsExact(const PnImageParam& plane) const;

    // Selects anew, in whichever way is exact; or in a certain way, for comparing them: they differ where a voxel is
    // seen on the border of two pixels, within single precision.
    void Select(const DrawnRegion& region, CutSide side, const CutLimits& limits);
    void SelectByLibrary(const DrawnRegion& region, CutSide side, const CutLimits& limits);
    void SelectByVoxel(const DrawnRegion& region, CutSide side, const CutLimits& limits);

    // One byte for each voxel of the volume; not 0: selected.
    const std::vector<uint8_t>& Selected() const { return selected_; }

    // Cuts away what is selected. Returns the label bytes of the volume, in which all cuts add up.
    std::vector<uint8_t> Cut();

private:
    // 1 for the voxels within the limits, else 0.
    std::vector<uint8_t> Selectable(const DrawnRegion& region, const CutLimits& limits) const;
    void TakeSide(CutSide side, const std::vector<uint8_t>& selectable);
    KsVolumeMark RecordOf(std::vector<uint8_t>& bytes);
    void GiveLabels(const std::vector<uint8_t>& bytes);

    Grid grid_;
    VolumeView view_;
    std::vector<uint8_t> labels_, selected_;
    std::vector<uint8_t*> slices_;
    Engine3D engine_;
};
} // namespace corvane::host

#endif
