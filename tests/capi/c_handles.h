#ifndef CORVANE_TESTS_CAPI_C_HANDLES_H
#define CORVANE_TESTS_CAPI_C_HANDLES_H

#include "corvane/corvane_c.h"
#include "tests/test_volume.h"

#include <cmath>
#include <memory>

namespace corvane::tests
{
inline void Release(CorvaneEngine3D* handle) { corvane_engine3d_destroy(handle); }
inline void Release(CorvaneRender3D* handle) { corvane_render3d_destroy(handle); }
inline void Release(CorvaneEngineMPR* handle) { corvane_engine_mpr_destroy(handle); }
inline void Release(CorvaneRenderMPR* handle) { corvane_render_mpr_destroy(handle); }
inline void Release(CorvaneScene* handle) { corvane_scene_destroy(handle); }

struct ReleaseHandle
{
    template <class AnyHandle>
    void operator()(AnyHandle* handle) const
    {
        Release(handle);
    }
};

template <class AnyHandle>
using Owned = std::unique_ptr<AnyHandle, ReleaseHandle>;

// Records that free what the library allocated for them.
struct ImageData : KsImageData
{
    ImageData() : KsImageData{} {}
    ImageData(const ImageData&) = delete;
    ImageData& operator=(const ImageData&) = delete;
    ~ImageData() { corvane_image_data_free(this); }
};

struct MarkData : KsMarkData
{
    MarkData() : KsMarkData{} {}
    MarkData(const MarkData&) = delete;
    MarkData& operator=(const MarkData&) = delete;
    ~MarkData() { corvane_mark_data_free(this); }
};

// A tilted stack of voxels that are not square, with values that repeat nowhere near: 30 x 26 x 22 voxels of
// 0.9 x 0.7 x 1.3 mm in oblique directions.
inline TestVolume MakeTiltedVolume()
{
    TestVolume volume = MakeVolume(30, 26, 22,
                                   [](int i, int j, int k)
                                   {
                                       const double x = i - 14.5, y = j - 12.5, z = k - 10.5;
                                       const double away = std::sqrt(x * x + 1.3 * y * y + 1.7 * z * z);
                                       return int(900 - 90 * away + 37 * ((7 * i + 5 * j + 3 * k) % 11));
                                   });
    volume.data.spacing[0] = 0.9f;
    volume.data.spacing[1] = 0.7f;
    volume.data.spacing[2] = 1.3f;
    const float origin[3] = {-31.5f, 12.25f, 104.0f};
    const float row[3] = {0.96f, 0.28f, 0.0f}, column[3] = {-0.28f, 0.96f, 0.0f}, slice[3] = {0.0f, 0.28f, 0.96f};
    for (int axis = 0; axis < 3; ++axis)
    {
        volume.data.origin[axis] = origin[axis];
        volume.data.rowDirection[axis] = row[axis];
        volume.data.columnDirection[axis] = column[axis];
        volume.data.sliceDirection[axis] = slice[axis];
    }
    return volume;
}

inline Owned<CorvaneScene> MakeScene(const KsVolumeData& volume)
{
    Owned<CorvaneScene> scene(corvane_scene_create(CORVANE_C_INTERFACE));
    if (corvane_scene_set_volume(scene.get(), &volume) != CORVANE_OK)
        scene.reset();
    return scene;
}

// A palette over points that the caller keeps.
template <size_t count>
KsPalette PaletteOf(KsPalettePoint (&points)[count])
{
    KsPalette palette;
    palette.points = points;
    palette.pointCount = int32_t(count);
    return palette;
}

inline PnImageParam PlaneOf(CorvaneScene* scene, const CorvaneView& view, uint32_t rows, uint32_t columns)
{
    PnImageParam plane = {};
    corvane_scene_view_plane(scene, &view, rows, columns, &plane);
    return plane;
}

inline std::vector<uint32_t> Rendered(CorvaneScene* scene, const PnImageParam& plane)
{
    std::vector<uint32_t> pixels(size_t(plane.rows) * plane.columns, 1u);
    if (corvane_scene_render(scene, &plane, pixels.data(), pixels.size()) != CORVANE_OK)
        pixels.clear();
    return pixels;
}

inline std::vector<uint8_t> LabelsOf(CorvaneScene* scene, const KsVolumeData& volume)
{
    std::vector<uint8_t> labels(size_t(volume.sizeX) * size_t(volume.sizeY) * size_t(volume.sizeZ));
    if (corvane_scene_get_labels(scene, labels.data(), labels.size()) != CORVANE_OK)
        labels.clear();
    return labels;
}
} // namespace corvane::tests

#endif
