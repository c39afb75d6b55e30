#ifndef CORVANE_CAPI_SCENE_H
#define CORVANE_CAPI_SCENE_H

#include "corvane/Engine3D.h"
#include "corvane/EngineMPR.h"
#include "corvane/Render3D.h"
#include "corvane/RenderMPR.h"
#include "corvane/corvane_c_scene.h"
#include "cut_history.h"
#include "label_palettes.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

namespace corvane::capi
{
constexpr uint8_t kCutAway = 64; // added to a label

// What the functions of a scene do; corvane_c_scene.h says it. Arguments have been checked, one caller at a time, and
// exceptions leave the scene as it was. Everything but Load and Clear needs a volume.
class Scene
{
public:
    // Whether the objects of a new scene got the memory that they need.
    bool IsUsable();

    // What was loaded before is forgotten first.
    //   voxels  of all slices in one piece; null: where the volume's slices are
    CorvaneStatus Load(const KsVolumeData& volume, const int16_t* voxels);
    void Clear();
    bool HasVolume() const { return volume_.slices; }
    uint64_t VoxelCount() const;

    bool GetBoundingBox(float* min3, float* max3) { return render_.GetBoundingBox(min3, max3); }
    bool SetVisibleBox(const float* a3, const float* b3) { return render_.SetVisibleBox(a3, b3); }
    bool GetVisibleBox(float* min3, float* max3) { return render_.GetVisibleBox(min3, max3); }

    void SetLabels(const uint8_t* labels);
    void GetLabels(uint8_t* labels) const;
    CorvaneStatus SetPalette(int label, const KsPalette& palette);
    CorvaneStatus GetPalette(int label, KsPalette& palette) const;
    void RemovePalette(int label);

    bool ViewPlane(const CorvaneView& view, uint32_t rows, uint32_t columns, PnImageParam& plane);
    bool Render(const PnImageParam& plane, uint32_t* pixels);
    bool Endoscopy(const KsViewPoint& view, float viewAngle, uint32_t rows, uint32_t columns, uint32_t* pixels,
                   PnImageParam* plane);
    bool Project(int32_t kind, const PnImageParam& plane, int16_t* values);
    bool Slab(int32_t kind, const PnImageParam& plane, float thickness, int16_t* values);
    bool Reslice(const PnImageParam& plane, int16_t* values);
    bool ResliceLabels(const PnImageParam& plane, uint8_t* labels);
    EngineMPR& Planes() { return planes_; }

    uint64_t CutPolygon(const PnImageParam& plane, const double* points, size_t pointCount, int32_t side);
    uint64_t CutSelection(const uint8_t* selection);
    uint64_t Restore();
    CorvaneStatus Undo();
    CorvaneStatus Redo();
    CutHistory& History() { return history_; }

private:
    struct Free
    {
        void operator()(uint8_t* memory) const { std::free(memory); }
    };

    // How visible voxels are recognised by their label byte: cut ones never are.
    using VisibleBytes = std::array<bool, 256>;
    VisibleBytes VisibleLabels() const;

    bool LoadRenderers(const KsVolumeData& volume);
    KsVolumeMark Mark();
    void ForwardPalettes() { render_.SetPalette(palettes_.Records()); }
    void ForwardLabels() { render_.SetVolumeMark(Mark()); }
    uint64_t Do(VoxelRuns&& step);
    void TurnOver(const VoxelRuns& step) noexcept;

    KsVolumeData volume_ = {}; // the slice table tells whether there is a volume
    std::vector<const int16_t*> slices_;
    std::unique_ptr<uint8_t, Free> labels_; // of all voxels, in one piece
    std::vector<uint8_t*> labelSlices_;
    LabelPalettes palettes_;
    CutHistory history_;

    float wholeLow_[3] = {}, wholeHigh_[3] = {}; // the visible box of the whole volume
    Engine3D camera_;                            // its cameras only: it is emptied once it has aimed them
    Render3D render_;
    EngineMPR planes_;
    RenderMPR reslice_;
};

} // namespace corvane::capi

#endif
