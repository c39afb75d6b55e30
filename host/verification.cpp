#include "verification.h"

#include "corvane/Corvane.h"
#include "error.h"
#include "picture_hash.h"
#include "verification_scene.h"

#include <algorithm>
#include <cstring>

namespace corvane::host
{
namespace
{
constexpr int kWidth = 120, kHeight = 150; // rows and columns of most pictures: not square

// Makes pictures of one scene and passes their hashes on.
class Album
{
public:
    Album(const std::string& name, const std::function<void(const PictureHash&)>& take)
        : prefix_(name + "/"), take_(take)
    {
    }

    // Buffers of a picture of `rows` rows and `columns` columns, with a pattern that tells what is left alone.
    std::vector<uint32_t>& Colours(int rows, int columns)
    {
        return colours_ = std::vector<uint32_t>(size_t(rows * columns), 7u);
    }
    std::vector<int16_t>& Values(int rows, int columns)
    {
        return values_ = std::vector<int16_t>(size_t(rows * columns), 7);
    }

    void Add(const std::string& name, bool done, const PnImageRGB& image)
    {
        Hash hash = Begin(name, done, image.param);
        hash.Add(image.pixels, size_t(image.param.rows) * image.param.columns);
        take_({prefix_ + name, hash.Value()});
    }

    void Add(const std::string& name, bool done, const KsImageVAL& image)
    {
        Hash hash = Begin(name, done, image.param);
        hash.Add(image.values, size_t(image.param.rows) * image.param.columns);
        take_({prefix_ + name, hash.Value()});
    }

    void Add(const std::string& name, bool done, const KsImageData& image)
    {
        Add(name, done, KsImageVAL{image.values, image.param});
    }

    void Add(const std::string& name, bool done, const KsMarkData& image)
    {
        Hash hash = Begin(name, done, image.param);
        hash.Add(image.labels, image.labelCount);
        take_({prefix_ + name, hash.Value()});
    }

    void Add(const std::string& name, bool done, const std::vector<uint8_t>& voxels)
    {
        Hash hash = Begin(name, done, {});
        hash.Add(voxels.data(), voxels.size());
        take_({prefix_ + name, hash.Value()});
    }

private:
    Hash Begin(const std::string& name, bool done, const PnImageParam& param) const
    {
        if (!done)
            throw Error(ErrorKind::Computation, "the library refuses " + prefix_ + name + "; memory may be short");
        Hash hash;
        hash.Add(param);
        return hash;
    }

    std::string prefix_;
    const std::function<void(const PictureHash&)>& take_;
    std::vector<uint32_t> colours_;
    std::vector<int16_t> values_;
};

// Frees what the library has sized.
struct OwnedImage
{
    OwnedImage() = default;
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;
    ~OwnedImage()
    {
        if (record.ownsValues)
            delete[] record.values;
    }

    KsImageData record = {};
};

void AddView(Album& album, Engine3D& engine, const std::string& name, int volumeIndex = 0)
{
    PnImageRGB image;
    const bool done =
        engine.Imaging(kWidth, kHeight, album.Colours(kWidth, kHeight).data(), false, &image, volumeIndex);
    album.Add(name, done, image);
}

void AddStandardViews(Album& album, Engine3D& engine, const std::string& prefix)
{
    constexpr struct
    {
        const char* name;
        void (Engine3D::*rotate)();
    } kViews[] = {{"sagittal", &Engine3D::RotateToSagittal},
                  {"coronal", &Engine3D::RotateToCoronal},
                  {"axial", &Engine3D::RotateToAxial},
                  {"z", &Engine3D::RotateToZ},
                  {"x", &Engine3D::RotateToX},
                  {"y", &Engine3D::RotateToY}};
    for (const auto& view : kViews)
    {
        (engine.*view.rotate)();
        AddView(album, engine, prefix + view.name);
        engine.RotateToBack();
        AddView(album, engine, prefix + view.name + " from behind");
    }
}

// Three points from air to bone, to look at soft walls from inside.
void SetWallPalette(Engine3D& engine)
{
    KsPalettePoint points[] = {{-700, 0x804020, 0.0f}, {-200, 0xE0A080, 0.5f}, {1500, 0xFFFFFF, 0.75f}};
    KsPalette palette;
    palette.pointCount = 3;
    palette.points = points;
    engine.SetPalette(palette);
}

void AddProjections(Album& album, Engine3D& engine, const PnImageParam& plane)
{
    using BySize = bool (Engine3D::*)(int, int, int16_t*, bool, KsImageVAL*);
    using ByPlane = bool (Engine3D::*)(const PnImageParam&, float, KsImageData*);
    using BySlice = bool (Engine3D::*)(KsSliceParam, float, KsImageData*);
    constexpr struct
    {
        const char* name;
        BySize bySize;
        ByPlane byPlane;
        BySlice bySlice;
    } kKinds[] = {{"maximum", &Engine3D::ImagingMIP, &Engine3D::ImagingMIP, &Engine3D::ImagingMIP},
                  {"mean", &Engine3D::ImagingAIP, &Engine3D::ImagingAIP, &Engine3D::ImagingAIP},
                  {"minimum", &Engine3D::ImagingMinIP, &Engine3D::ImagingMinIP, &Engine3D::ImagingMinIP}};
    KsSliceParam slice = {};
    std::copy_n(plane.position, 3, slice.position);
    std::copy_n(plane.rowDirection, 3, slice.rowDirection);
    std::copy_n(plane.columnDirection, 3, slice.columnDirection);
    slice.sideLength = 180;
    for (const auto& kind : kKinds)
    {
        KsImageVAL image;
        const bool whole = (engine.*kind.bySize)(kWidth, kHeight, album.Values(kWidth, kHeight).data(), false, &image);
        album.Add(std::string(kind.name) + " of the volume", whole, image);
        OwnedImage slab;
        album.Add(std::string(kind.name) + " of a slab", (engine.*kind.byPlane)(plane, 20.0f, &slab.record),
                  slab.record);
        album.Add(std::string(kind.name) + " of a slice", (engine.*kind.bySlice)(slice, 12.5f, &slab.record),
                  slab.record);
    }
}

// What lies behind a triangle in the picture, then a volume rendering without it.
void AddCut(Album& album, Engine3D& engine, VerificationScene& scene)
{
    KsImageMark region = {};
    engine.GetImageParams(kWidth, kHeight, region.param);
    std::vector<uint8_t> drawn(size_t(kWidth) * kHeight);
    for (int row = 0; row < kWidth; ++row)
        for (int column = 0; column < kHeight; ++column)
            drawn[size_t(row) * kHeight + size_t(column)] = row > 30 && column > 60 && row + column < 170;
    region.labels = drawn.data();
    album.Add("selection of a cut", engine.CutFill(region, scene.Selection(), 1), scene.SelectedVoxels());
    if (!engine.CutAppend(scene.Selection()))
        throw Error(ErrorKind::Computation, "the library refuses a cut");
    AddView(album, engine, "cut");
}

KsBlendImage BlendedPlane(const PnImageParam& plane, std::vector<uint32_t>& pixels)
{
    pixels.resize(size_t(kWidth) * kHeight);
    for (size_t n = 0; n < pixels.size(); ++n)
        pixels[n] = uint32_t(n * 2654435761u) | 255u;
    KsBlendImage blend = {};
    const int corners[4][2] = {{30, 20}, {120, 30}, {110, 90}, {40, 100}};
    std::memcpy(blend.corners, corners, sizeof corners);
    blend.pixels = pixels.data();
    std::copy_n(plane.rowDirection, 3, blend.rowDirection);
    std::copy_n(plane.columnDirection, 3, blend.columnDirection);
    for (int axis = 0; axis < 3; ++axis) // somewhere behind the picture, inside the volume
        blend.position[axis] = plane.position[axis] + (axis == 1 ? 400 : 0);
    return blend;
}

void AddEngine3D(Album& album, VerificationScene& scene)
{
    Engine3D engine;
    if (!engine.InitData(scene.Data()))
        throw Error(ErrorKind::Computation, "the library refuses a phantom");
    AddView(album, engine, "first view");
    AddStandardViews(album, engine, "volume rendering ");
    engine.RotateToCoronal();
    engine.RotateH(0.5f);
    engine.RotateV(0.375f);
    engine.RotateScreen(0.25f);
    engine.Zoom(0.625f);
    AddView(album, engine, "turned and nearer");
    PnImageParam plane;
    engine.GetImageParams(kWidth, kHeight, plane);

    std::vector<uint32_t> pixels;
    KsBlendImage blend = BlendedPlane(plane, pixels);
    engine.SetBlendImage(&blend, 1);
    AddView(album, engine, "with a blend image");
    engine.SetBlendImage(nullptr, 0);
    if (engine.AttachVolumeData(scene.Inverted()) != 1)
        throw Error(ErrorKind::Computation, "the library refuses an attached volume");
    AddView(album, engine, "attached volume", 1);
    engine.ClearAttachVolume();
    engine.AdjustColor(-40);
    engine.SetShading(0.25f, 0.5f, 0.5f, 0);
    AddView(album, engine, "other colours");

    float low[3], high[3];
    engine.GetBoundingBox(low, high);
    PnImageParam slab = plane; // moved into the middle of the volume
    for (int axis = 0; axis < 3; ++axis)
        slab.position[axis] = (double(low[axis]) + double(high[axis])) / 2 -
                              plane.rowDirection[axis] * plane.columnSpacing * (kHeight / 2.0) -
                              plane.columnDirection[axis] * plane.rowSpacing * (kWidth / 2.0);
    AddProjections(album, engine, slab);
    for (int axis = 0; axis < 3; ++axis)
        high[axis] = (low[axis] + 3 * high[axis]) / 4;
    engine.SetVisibleBox(low, high);
    AddView(album, engine, "visible box");
    AddCut(album, engine, scene);

    engine.SetRenderType(KsRenderPerspective);
    SetWallPalette(engine);
    engine.SetViewAngle(90);
    AddStandardViews(album, engine, "endoscopy ");
    engine.StepOrigin(30);
    engine.RotateH(0.75f);
    AddView(album, engine, "endoscopy further on");
}

// With lookup tables for several labels, which only the renderer itself takes.
void AddRender3D(Album& album, const VerificationScene& scene)
{
    Render3D renderer;
    Engine3D engine; // for the geometry
    if (!engine.InitData(scene.Data()) || !renderer.InitData(scene.Data(), scene.Labels(), scene.Tables()))
        throw Error(ErrorKind::Computation, "the library refuses a phantom");
    engine.RotateH(-0.25f);
    PnImageRGB image = {album.Colours(kWidth, kHeight).data(), {}};
    engine.GetImageParams(kWidth, kHeight, image.param);
    album.Add("tables of labels", renderer.ImagingVR(&image, 0), image);

    float low[3], high[3];
    renderer.GetBoundingBox(low, high);
    KsCamera camera = {};
    for (int axis = 0; axis < 3; ++axis)
        camera.center[axis] = (low[axis] + high[axis]) / 2;
    camera.direction[1] = camera.up[2] = 1;
    KsImageVAL values = {album.Values(kWidth, kHeight).data(), {}};
    values.param.rows = kWidth;
    values.param.columns = kHeight;
    album.Add("maximum of labels by a camera", renderer.ImagingMIP(camera, 250.0f, &values), values);
    album.Add("mean of labels by a camera", renderer.ImagingAIP(camera, 250.0f, 30.0f, &values), values);
    album.Add("minimum of labels by a camera", renderer.ImagingMinIP(camera, 250.0f, &values), values);
}

void AddPlanes(Album& album, const VerificationScene& scene)
{
    EngineMPR engine;
    if (!engine.InitData(scene.Data()) || !engine.SetMarkData(scene.Labels()))
        throw Error(ErrorKind::Computation, "the library refuses a phantom");
    engine.Rotate(KsMPRTransverse, 0.5f);
    engine.Rotate(KsMPRSagittal, -0.3125f);
    OwnedImage image;
    KsMarkData labels = {};
    for (const KsMPRType plane : {KsMPRTransverse, KsMPRSagittal, KsMPRCoronal})
    {
        const std::string name = "plane " + std::to_string(int(plane));
        album.Add(name, engine.Imaging(plane, &image.record), image.record);
        album.Add(name + " of another volume", engine.Imaging(plane, scene.Inverted(), &image.record), image.record);
        album.Add(name + " labels", engine.Marking(plane, &labels), labels);
    }
    if (labels.ownsLabels)
        delete[] labels.labels;
    PnImageParam param;
    engine.GetImageParam(KsMPRCoronal, param);
    param.rowSpacing *= 0.75;
    album.Add("plane as it is given", engine.Imaging(param, &image.record), image.record);
}
} // namespace

void MakeVerificationPictures(const std::function<void(const PictureHash&)>& take)
{
    constexpr struct
    {
        const char *name, *phantom;
    } kScenes[] = {{"straight", "phantom:size=96x96x80,spacing=3.2x3.2x4"},
                   {"tilted", "phantom:size=75x90x37,spacing=4.25x3.5x8.5,tilt=18"}};
    for (const auto& one : kScenes)
    {
        VerificationScene scene(one.phantom);
        Album album(one.name, take);
        AddEngine3D(album, scene);
        AddRender3D(album, scene);
        AddPlanes(album, scene);
    }
}

std::string HashText(uint64_t hash)
{
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += "0123456789abcdef"[hash >> shift & 15];
    return text;
}

int VerifyPictures(const std::function<void(const std::string&)>& print)
{
    const std::vector<PictureHash>& expected = ExpectedPictureHashes();
    size_t made = 0;
    int wrong = 0;
    MakeVerificationPictures(
        [&](const PictureHash& picture)
        {
            const bool known = made < expected.size() && expected[made].name == picture.name;
            const bool same = known && expected[made].hash == picture.hash;
            print((same    ? "ok       "
                   : known ? "DIFFERS  "
                           : "NEW      ") +
                  HashText(picture.hash) + "  " + picture.name);
            wrong += !same;
            ++made;
        });
    return wrong + (made < expected.size() ? int(expected.size() - made) : 0);
}
} // namespace corvane::host
