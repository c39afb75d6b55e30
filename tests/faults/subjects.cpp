#include "subjects.h"

#include "tests/render3d/scenes.h"

#include <algorithm>
#include <cstring>

namespace corvane::tests
{
namespace
{
constexpr int kSizeX = 32, kSizeY = 16, kSizeZ = 8;

void CopyLabels(const KsVolumeMark& mark)
{
    for (size_t k = 0; k < Labels().labels.size(); ++k)
        std::copy(Labels().labels[k].begin(), Labels().labels[k].end(), mark.slices[k]);
}
} // namespace

const TestVolume& MainVolume()
{
    static const TestVolume volume =
        MakeVolume(kSizeX, kSizeY, kSizeZ,
                   [](int i, int j, int k) { return 40 * i + 9 * j - 5 * k + 31 * ((3 * i + j + k) % 5); });
    return volume;
}

const TestVolume& SecondVolume()
{
    static const TestVolume volume =
        MakeVolume(kSizeX, kSizeY, kSizeZ, [](int i, int j, int k) { return (7 * i + 50 * j + 90 * k) % 1300; });
    return volume;
}

TestLabels& Labels()
{
    static TestLabels labels = MakeLabels(kSizeX, kSizeY, kSizeZ,
                                          [](int i, int j, int k) {
                                              return i % 11 == 5 ? 64 : i > 20 && j > 6 ? 1 : k > 5 ? 2 : 0;
                                          });
    return labels;
}

VolumePalette Tables()
{
    static const TestPalette palette = []
    {
        TestPalette made;
        const auto opacity = [](int value) { return 0.0003f * float(value); };
        const auto colour = [](int value) { return Colour{uint8_t(value), 90, uint8_t(value / 9)}; };
        made.Add(0, 150, 900, opacity, colour, {0.3f, 0.6f, 0.2f});
        made.Add(1, 400, 1200, opacity, colour);
        return made;
    }();
    return palette.palette;
}

KsBlendImage BlendImage()
{
    static std::vector<uint32_t> pixels(kElements, 0x10203000u);
    KsBlendImage image = {};
    const int32_t corners[4][2] = {{2, 2}, {13, 2}, {13, 13}, {2, 13}};
    std::memcpy(image.corners, corners, sizeof corners);
    image.pixels = pixels.data();
    image.rowDirection[0] = image.columnDirection[1] = 1;
    image.position[2] = 4;
    return image;
}

bool Load(Engine3D& engine) { return engine.InitData(MainVolume().data); }

bool Furnish(Engine3D& engine)
{
    CopyLabels(*engine.GetMarkData());
    engine.UpdateMarkData();
    KsBlendImage blend = BlendImage();
    engine.SetBlendImage(&blend, 1);
    return engine.AttachVolumeData(SecondVolume().data) == 1;
}

bool Load(Render3D& render) { return render.InitData(MainVolume().data, Labels().mark, Tables()); }

bool Furnish(Render3D& render)
{
    KsBlendImage blend = BlendImage();
    render.SetBlendImage(&blend, 1);
    return render.AttachVolumeData(SecondVolume().data) == 1;
}

bool Load(EngineMPR& engine) { return engine.InitData(MainVolume().data); }

bool Furnish(EngineMPR& engine) { return engine.SetMarkData(Labels().mark); }

bool Load(RenderMPR& render) { return render.InitData(MainVolume().data); }

bool Furnish(RenderMPR& render) { return render.SetMarkData(Labels().mark); }

bool Load(CorvaneEngine3D& engine) { return corvane_engine3d_init_data(&engine, &MainVolume().data) == CORVANE_OK; }

bool Furnish(CorvaneEngine3D& engine)
{
    KsVolumeMark* mark = nullptr;
    int32_t count = 0;
    corvane_engine3d_get_mark_data(&engine, &mark);
    CopyLabels(*mark);
    corvane_engine3d_update_mark_data(&engine);
    const KsBlendImage blend = BlendImage();
    return corvane_engine3d_set_blend_image(&engine, &blend, 1) == CORVANE_OK &&
           corvane_engine3d_attach_volume_data(&engine, &SecondVolume().data, &count) == CORVANE_OK;
}

bool Load(CorvaneRender3D& render)
{
    const VolumePalette tables = Tables();
    return corvane_render3d_init_data(&render, &MainVolume().data, &Labels().mark, &tables) == CORVANE_OK;
}

bool Furnish(CorvaneRender3D& render)
{
    const KsBlendImage blend = BlendImage();
    int32_t count = 0;
    return corvane_render3d_set_blend_image(&render, &blend, 1) == CORVANE_OK &&
           corvane_render3d_attach_volume_data(&render, &SecondVolume().data, &count) == CORVANE_OK;
}

bool Load(CorvaneEngineMPR& engine) { return corvane_engine_mpr_init_data(&engine, &MainVolume().data) == CORVANE_OK; }

bool Furnish(CorvaneEngineMPR& engine)
{
    return corvane_engine_mpr_set_mark_data(&engine, &Labels().mark) == CORVANE_OK;
}

bool Load(CorvaneRenderMPR& render) { return corvane_render_mpr_init_data(&render, &MainVolume().data) == CORVANE_OK; }

bool Furnish(CorvaneRenderMPR& render)
{
    return corvane_render_mpr_set_mark_data(&render, &Labels().mark) == CORVANE_OK;
}

bool Load(CorvaneScene& scene) { return corvane_scene_set_volume(&scene, &MainVolume().data) == CORVANE_OK; }

// Two cuts of which one is undone, so that there is a step in both directions.
bool Furnish(CorvaneScene& scene)
{
    std::vector<uint8_t> labels(kElements), first(kElements), second(kElements);
    for (size_t n = 0; n < kElements; ++n)
    {
        labels[n] = uint8_t(n % 32 > 20);
        first[n] = uint8_t(n % 32 < 3);
        second[n] = uint8_t(n % 512 < 32);
    }
    KsPalettePoint points[] = {{100, 0x00FF00, 0.1f}, {1200, 0x2020FF, 0.6f}};
    const KsPalette palette = PaletteOf(points);
    return corvane_scene_set_labels(&scene, labels.data(), kElements) == CORVANE_OK &&
           corvane_scene_set_palette(&scene, 1, &palette) == CORVANE_OK &&
           corvane_scene_cut_selection(&scene, first.data(), kElements, nullptr) == CORVANE_OK &&
           corvane_scene_cut_selection(&scene, second.data(), kElements, nullptr) == CORVANE_OK &&
           corvane_scene_undo(&scene) == CORVANE_OK;
}

bool IsEmpty(Engine3D& engine)
{
    KsVolumeData volume;
    float box[6];
    const KsVolumeMark* const mark = engine.GetMarkData();
    return !engine.GetVolumeData(volume) && !engine.GetBoundingBox(box, box + 3) && (!mark || !mark->slices) &&
           engine.AttachVolumeData(MainVolume().data) == 0;
}

bool IsEmpty(Render3D& render)
{
    float box[6];
    return !render.GetBoundingBox(box, box + 3) && render.AttachVolumeData(MainVolume().data) == 0;
}

bool IsEmpty(EngineMPR& engine)
{
    PnImageParam param;
    return !engine.GetImageParam(KsMPRSagittal, param);
}

bool IsEmpty(RenderMPR& render)
{
    float box[6];
    return !render.GetBoundingBox(box, box + 3);
}

bool IsEmpty(CorvaneEngine3D& engine)
{
    KsVolumeData volume;
    return corvane_engine3d_get_volume_data(&engine, &volume) == CORVANE_ERROR_NO_VOLUME;
}

bool IsEmpty(CorvaneRender3D& render)
{
    float box[6];
    return corvane_render3d_get_bounding_box(&render, box, box + 3) == CORVANE_ERROR_NO_VOLUME;
}

bool IsEmpty(CorvaneEngineMPR& engine)
{
    PnImageParam param;
    return corvane_engine_mpr_get_image_param(&engine, KsMPRSagittal, &param) == CORVANE_ERROR_NO_VOLUME;
}

bool IsEmpty(CorvaneRenderMPR& render)
{
    float box[6];
    return corvane_render_mpr_get_bounding_box(&render, box, box + 3) == CORVANE_ERROR_NO_VOLUME;
}

bool IsEmpty(CorvaneScene& scene)
{
    float box[6];
    return corvane_scene_get_bounding_box(&scene, box, box + 3) == CORVANE_ERROR_NO_VOLUME;
}
} // namespace corvane::tests
