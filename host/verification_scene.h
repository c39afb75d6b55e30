#ifndef CORVANE_HOST_VERIFICATION_SCENE_H
#define CORVANE_HOST_VERIFICATION_SCENE_H

#include "volume.h"

#include <array>
#include <memory>

namespace corvane::host
{
// A phantom as a host hands it to the library, with lookup tables for some of its labels and room for a selection.
// Everything is whole numbers and fractions that are exact in binary.
class VerificationScene
{
public:
    explicit VerificationScene(const std::string& phantom);
    VerificationScene(const VerificationScene&) = delete;
    VerificationScene& operator=(const VerificationScene&) = delete;

    const KsVolumeData& Data() const { return view_->Data(); }
    const KsVolumeMark& Labels() const { return view_->Labels(); }
    const VolumePalette& Tables() const { return tables_; }

    // Another volume on the same grid: the values upside down.
    KsVolumeData Inverted() const;

    // Labels on the same grid, all 0, to be written by the library.
    KsVolumeMark& Selection() { return selection_; }
    const std::vector<uint8_t>& SelectedVoxels() const { return selected_; }

private:
    void FillTables();

    Volume volume_;
    std::unique_ptr<VolumeView> view_;
    std::vector<int16_t> inverted_;
    std::vector<const int16_t*> invertedSlices_;
    std::vector<uint8_t> selected_;
    std::vector<uint8_t*> selectedSlices_;
    KsVolumeMark selection_ = {};
    std::array<VolumePaletteEntry, 64> entries_ = {};
    std::vector<uint8_t> colours_;
    std::vector<float> opacities_, sums_;
    VolumePalette tables_ = {};
};
} // namespace corvane::host

#endif
