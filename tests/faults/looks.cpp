#include "subjects.h"

#include "tests/engine3d/sequence_steps.h"
#include "tests/render3d/scenes.h"

// What can be seen of each object.
namespace corvane::tests
{
namespace
{
constexpr PnImageParam kFront = {20, 20, 1, 1.5, {1, 0, 0}, {0, 1, 0}, {0, -1, -10}};
constexpr KsViewPoint kInside = {{9, 2, 4}, {0, 1, 0}, {0, 0, 1}};
constexpr float kWide = 90; // degrees

void AppendValues(Seen& seen, bool drawn, const std::vector<int16_t>& values)
{
    seen.push_back(drawn);
    Append(seen, values.data(), values.size());
}

void AppendPixels(Seen& seen, bool drawn, const std::vector<uint32_t>& pixels)
{
    seen.push_back(drawn);
    Append(seen, pixels.data(), pixels.size());
}

// Pictures of a renderer: volume(image, index), endoscopy(image) and projection(image) draw.
template <class Volume, class Endoscopy, class Projection>
Seen LookAtRenderer(const Volume& volume, const Endoscopy& endoscopy, const Projection& projection)
{
    Seen seen;
    for (const int index : {0, 1})
    {
        TestImage image(kFront);
        AppendPixels(seen, volume(image.image, index), image.pixels);
    }
    TestImage image(kFront);
    AppendPixels(seen, endoscopy(image.image), image.pixels);
    std::vector<int16_t> values(size_t(kFront.rows) * kFront.columns);
    KsImageVAL val = {values.data(), kFront};
    AppendValues(seen, projection(val), values);
    return seen;
}

// Pictures of the three planes: geometry(type, param), image(type, image) and labels(type, image) give them.
template <class Geometry, class Image, class Marks>
Seen LookAtPlanes(const Geometry& geometry, const Image& image, const Marks& labels)
{
    Seen seen;
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        PnImageParam param = {};
        seen.push_back(geometry(type, param));
        Append(seen, param);
        ImageData values;
        seen.push_back(image(type, values));
        Append(seen, values.values, values.valueCount);
        MarkData marks;
        seen.push_back(labels(type, marks));
        Append(seen, marks.labels, marks.labelCount);
    }
    return seen;
}

// Pictures of one plane: image(val) and labels(mark) draw.
template <class Image, class Marks>
Seen LookAtPlane(const Image& image, const Marks& labels)
{
    Seen seen;
    PnImageParam plane = kFront;
    plane.position[2] = 4;
    std::vector<int16_t> values(size_t(plane.rows) * plane.columns);
    KsImageVAL val = {values.data(), plane};
    AppendValues(seen, image(val), values);
    std::vector<uint8_t> bytes(values.size());
    KsImageMark mark = {bytes.data(), plane};
    seen.push_back(labels(mark));
    Append(seen, bytes.data(), bytes.size());
    return seen;
}
} // namespace

void Append(Seen& seen, const PnImageParam& param)
{
    seen.push_back(param.rows);
    seen.push_back(param.columns);
    Append(seen, &param.rowSpacing, sizeof(PnImageParam) / sizeof(double) - 1);
}

Seen Look(Engine3D& engine) { return engine.GetMarkData() ? Everything(engine) : Seen(); }

Seen Look(Render3D& render)
{
    Seen seen = LookAtRenderer([&](PnImageRGB& image, int index) { return render.ImagingVR(&image, index); },
                               [&](PnImageRGB& image) { return render.ImagingVE(kInside, kWide, &image); },
                               [&](KsImageVAL& image) { return render.ImagingMIP(&image); });
    float box[6] = {};
    seen.push_back(render.GetVisibleBox(box, box + 3));
    Append(seen, box, 6);
    return seen;
}

Seen Look(EngineMPR& engine)
{
    return LookAtPlanes([&](KsMPRType type, PnImageParam& param) { return engine.GetImageParam(type, param); },
                        [&](KsMPRType type, KsImageData& image) { return engine.Imaging(type, &image); },
                        [&](KsMPRType type, KsMarkData& image) { return engine.Marking(type, &image); });
}

Seen Look(RenderMPR& render)
{
    return LookAtPlane([&](KsImageVAL& image) { return render.Imaging(&image); },
                       [&](KsImageMark& image) { return render.Marking(&image); });
}

Seen Look(CorvaneEngine3D& engine)
{
    Seen seen;
    std::vector<uint32_t> pixels(24 * 24, kUntouched);
    for (const int32_t index : {0, 1})
    {
        PnImageRGB image = {};
        seen.push_back(corvane_engine3d_imaging_vr(&engine, 24, 24, pixels.data(), pixels.size(), &image, index));
        Append(seen, pixels.data(), pixels.size());
        Append(seen, image.param);
    }
    seen.push_back(corvane_engine3d_imaging_ve(&engine, 24, 24, pixels.data(), pixels.size(), kWide, nullptr));
    Append(seen, pixels.data(), pixels.size());
    float box[6] = {};
    corvane_engine3d_get_visible_box(&engine, box, box + 3);
    Append(seen, box, 6);
    KsVolumeMark* mark = nullptr;
    corvane_engine3d_get_mark_data(&engine, &mark);
    for (uint32_t k = 0; mark && mark->slices && k < mark->sizeZ; ++k)
        Append(seen, mark->slices[k], size_t(mark->sizeX) * mark->sizeY);
    return seen;
}

Seen Look(CorvaneRender3D& render)
{
    Seen seen = LookAtRenderer(
        [&](PnImageRGB& image, int index) { return corvane_render3d_imaging_vr(&render, &image, kElements, index); },
        [&](PnImageRGB& image) { return corvane_render3d_imaging_ve(&render, &kInside, kWide, &image, kElements); },
        [&](KsImageVAL& image) { return corvane_render3d_imaging_mip(&render, &image, kElements); });
    float box[6] = {};
    seen.push_back(corvane_render3d_get_visible_box(&render, box, box + 3));
    Append(seen, box, 6);
    return seen;
}

Seen Look(CorvaneEngineMPR& engine)
{
    return LookAtPlanes(
        [&](KsMPRType type, PnImageParam& param) { return corvane_engine_mpr_get_image_param(&engine, type, &param); },
        [&](KsMPRType type, KsImageData& image) { return corvane_engine_mpr_imaging_by_type(&engine, type, &image); },
        [&](KsMPRType type, KsMarkData& image) { return corvane_engine_mpr_marking(&engine, type, &image); });
}

Seen Look(CorvaneRenderMPR& render)
{
    return LookAtPlane([&](KsImageVAL& image) { return corvane_render_mpr_imaging(&render, &image, kElements); },
                       [&](KsImageMark& image) { return corvane_render_mpr_marking(&render, &image, kElements); });
}

Seen Look(CorvaneScene& scene)
{
    Seen seen;
    const std::vector<uint32_t> pixels = Rendered(&scene, kFront);
    Append(seen, pixels.data(), pixels.size());
    std::vector<int16_t> values(size_t(kFront.rows) * kFront.columns);
    AppendValues(seen, corvane_scene_project(&scene, CORVANE_MEAN, &kFront, values.data(), values.size()), values);
    const std::vector<uint8_t> labels = LabelsOf(&scene, MainVolume().data);
    Append(seen, labels.data(), labels.size());
    size_t history[3] = {};
    corvane_scene_get_history(&scene, history, history + 1, history + 2);
    Append(seen, history, 3);
    float box[6] = {};
    corvane_scene_get_visible_box(&scene, box, box + 3);
    Append(seen, box, 6);
    for (const KsMPRType type : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        PnImageParam plane = {};
        corvane_scene_mpr_plane(&scene, type, &plane);
        Append(seen, plane);
    }
    return seen;
}
} // namespace corvane::tests
