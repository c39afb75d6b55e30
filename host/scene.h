#ifndef CORVANE_HOST_SCENE_H
#define CORVANE_HOST_SCENE_H

#include "corvane/Engine3D.h"
#include "corvane/Render3D.h"
#include "view.h"

#include <optional>

namespace corvane::host
{
// A picture of the volume along parallel rays.
struct Framing
{
    View view;
    uint32_t rows, columns;
    double pixelSize;           // mm
    std::optional<Vec3> middle; // patient mm; what stands in the picture's middle; else the middle of the volume
};

// A box along the axes of patient space, from one corner to the opposite one, mm.
struct PatientBox
{
    Vec3 from, to;
};

// A volume in the engine. The engine's camera always has the middle of the volume in the middle of the picture, and its
// palette is that of label 0; for everything else there is a renderer beside the engine, made when it is first asked
// for, which draws on the image planes of the same camera. Voxels are those of the volume, which must live as long as
// this does, for both; labels are copied once, into the engine, and read there by both. The renderer costs memory for
// a tree of value ranges, about a byte for each voxel.
class Scene
{
public:
    // Throws Error (Computation) for a volume that the library refuses.
    //   labelBits  which bits of the volume's labels count
    Scene(const VolumeView& volume, uint8_t labelBits);

    Engine3D& Engine() { return engine_; }

    // The renderer beside the engine. Throws Error (Computation) when memory is short.
    //   tables  what it draws with; must live as long as this does, and be the same in each call
    Render3D& RendererBeside(const VolumePalette& tables);

    // Shows, with either, only what lies in the box.
    void SetVisibleBox(const PatientBox& box);

    // Tells both that the labels in the engine have changed.
    void UpdateLabels();

    // Turns and zooms the engine's camera for a picture. The plane is that of the camera, moved to the framing's middle
    // where there is one. The middle stands at pixel (rows / 2, columns / 2), a pixel's centre in even pictures.
    PnImageParam Aim(const Framing& framing);

    // The middle of the volume, patient mm.
    Vec3 Middle();

private:
    const VolumeView& volume_;
    Engine3D engine_;
    Render3D beside_;
    bool besideHolds_ = false; // the volume
    std::optional<PatientBox> visible_;
    double fullSize_ = 0; // mm that the shorter side of a picture shows before any zoom
};
} // namespace corvane::host

#endif
