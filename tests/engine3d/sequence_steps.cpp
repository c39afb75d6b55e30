#include "sequence_steps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::tests
{
namespace
{
enum Kind
{
    kLoad,
    kClear,
    kPalette,
    kAdjustColor,
    kShading,
    kOpacity,
    kVisible,
    kLabels,
    kUpdateLabels,
    kCut,
    kRotate,
    kStandardView,
    kZoom,
    kViewAngle,
    kOrigin,
    kStepForward,
    kRenderType,
    kVisibleBox,
    kAttach,
    kClearAttached,
    kBlends,
    kSwitchGpu,
    kVolumeRendering,
    kEndoscopy,
    kImaging,
    kProjectBySize,
    kProjectSlab,
    kLook,
    kKinds
};

constexpr int kWeights[kKinds] = {5, 1, 5, 4, 2, 2, 3, 4, 1, 3, 5, 3, 3, 2, 3, 2, 3, 3, 4, 1, 4, 3, 10, 5, 6, 6, 6, 2};

// One of thirty is a number that nobody should give.
float NumberOf(Random& random, double low, double high)
{
    constexpr float kHostile[] = {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e-38f, 0.0f, -1.0f};
    return random.Below(30) == 0 ? kHostile[random.Below(8)] : float(random.Real(low, high));
}

int LabelOf(Random& random)
{
    constexpr int kLabels[] = {0, 0, 0, 0, 1, 17, 63, 64, -1, std::numeric_limits<int>::max()};
    return kLabels[random.Below(10)];
}

void Turn(Engine3D& engine, Random& random)
{
    const int which = random.Below(3);
    const float angle = NumberOf(random, -3, 3);
    which == 0 ? engine.RotateScreen(angle) : which == 1 ? engine.RotateH(angle) : engine.RotateV(angle);
}

void SetPalette(Engine3D& engine, Random& random)
{
    std::vector<KsPalettePoint> points(size_t(random.Below(9)));
    const bool wide = random.Below(4) == 0;
    for (KsPalettePoint& point : points)
    {
        const int value = wide ? random.Between(INT16_MIN, INT16_MAX) : random.Between(-400, 1400);
        point = {int16_t(value), uint32_t(random.Below(1 << 24)), NumberOf(random, 0, 0.4)};
    }
    KsPalette palette;
    palette.points = points.empty() ? nullptr : points.data();
    palette.pointCount = points.empty() ? random.Between(-1, 3) : int(points.size());
    palette.visible = random.Below(6) != 0;
    palette.opacity = NumberOf(random, 0, 1);
    engine.SetPalette(palette);
}

void EditLabels(Engine3D& engine, Random& random)
{
    constexpr uint8_t kBytes[] = {0, 0, 1, 17, 63, 64, 65, 128, 255};
    const KsVolumeMark& mark = *engine.GetMarkData();
    const uint8_t byte = kBytes[random.Below(9)];
    const uint32_t seed = uint32_t(random.Below(1 << 20));
    for (uint32_t k = 0; mark.slices && k < mark.sizeZ; ++k)
        for (uint32_t n = 0; n < mark.sizeX * mark.sizeY; ++n)
            if ((n * 7919 + k * 104729 + seed) % 97 < 20)
                mark.slices[k][n] = byte;
    engine.UpdateMarkData();
}

void Cut(Engine3D& engine, Random& random)
{
    KsVolumeMark sizes = *engine.GetMarkData();
    if (!sizes.slices || random.Below(8) == 0)
        sizes = {nullptr, 4, 3, 2};
    TestLabels selection = MakeLabels(int(sizes.sizeX), int(sizes.sizeY), int(sizes.sizeZ),
                                      [&](int i, int j, int k) { return (i + j + k) % 5 == 0; });
    std::vector<uint8_t> pixels(size_t(8) * 6);
    for (uint8_t& pixel : pixels)
        pixel = uint8_t(random.Below(2));
    const core::Vec3d row = random.UnitVector(), column = random.UnitVector(), place = random.Vector(-40, 20);
    KsImageMark region = {pixels.data(), {8, 6, NumberOf(random, 1, 9), NumberOf(random, 1, 9), {}, {}, {}}};
    core::Store(row, region.param.rowDirection);
    core::Store(column, region.param.columnDirection);
    core::Store(place, region.param.position);
    engine.CutFill(region, selection.mark, uint8_t(random.Below(256)));
    engine.CutAppend(selection.mark);
    engine.CutSubtract(selection.mark);
    engine.CutClear();
}

void Draw(Engine3D& engine, Random& random, int kind)
{
    int width = random.Between(0, kLongestSide), height = random.Between(0, kLongestSide);
    if (random.Below(20) == 0)
        width = random.Below(2) ? -width : 70000, height = 70000; // more than can be counted, or less than nothing
    constexpr size_t kMost = size_t(kLongestSide) * kLongestSide;
    std::vector<uint32_t> pixels(kMost);
    std::vector<int16_t> values(kMost);
    PnImageRGB image;
    KsImageVAL projection;
    PnImageRGB* const record = random.Below(2) ? &image : nullptr;
    const int volumeIndex = random.Between(-1, 3);
    if (kind == kVolumeRendering)
        engine.ImagingVR(width, height, pixels.data(), false, record, volumeIndex);
    else if (kind == kEndoscopy)
        engine.ImagingVE(width, height, pixels.data(), NumberOf(random, -10, 200), false, record);
    else if (kind == kImaging)
        engine.Imaging(width, height, pixels.data(), true, record, volumeIndex);
    else if (volumeIndex < 1)
        engine.ImagingMIP(width, height, values.data(), false, record ? &projection : nullptr);
    else if (volumeIndex < 2)
        engine.ImagingAIP(width, height, values.data(), false, record ? &projection : nullptr);
    else
        engine.ImagingMinIP(width, height, values.data(), false, record ? &projection : nullptr);
}

void DrawSlab(Engine3D& engine, Random& random)
{
    PnImageParam plane = {uint32_t(random.Below(kLongestSide)),
                          uint32_t(random.Below(kLongestSide)),
                          NumberOf(random, 0.1, 2),
                          NumberOf(random, 0.1, 2),
                          {},
                          {},
                          {}};
    if (random.Below(20) == 0)
        plane.rows = plane.columns = 70000;
    KsSliceParam slice = {};
    slice.sideLength = random.Below(10) ? random.Real(-1, 12) : std::numeric_limits<double>::quiet_NaN();
    core::Store(random.UnitVector(), plane.rowDirection);
    core::Store(random.UnitVector(), plane.columnDirection);
    core::Store(random.Vector(-40, 20), plane.position);
    std::copy_n(plane.rowDirection, 3, slice.rowDirection);
    std::copy_n(plane.columnDirection, 3, slice.columnDirection);
    std::copy_n(plane.position, 3, slice.position);
    KsImageData image = {};
    KsImageData* const record = random.Below(20) ? &image : nullptr;
    const float thickness = NumberOf(random, 0, 20);
    engine.ImagingMIP(plane, thickness, record);
    engine.ImagingAIP(slice, thickness, record);
    random.Below(2) ? engine.ImagingMinIP(plane, thickness, record) : engine.ImagingMinIP(slice, thickness, record);
    if (image.ownsValues)
        delete[] image.values;
}
} // namespace

SequenceWorld::SequenceWorld() : blendPixels_(size_t(kLongestSide) * kLongestSide)
{
    const auto waves = [](int i, int j, int k) { return 400 * std::sin(0.5 * i) + 300 * std::cos(0.7 * j - 0.3 * k); };
    volumes_.push_back(MakeVolume(20, 18, 16, waves));
    volumes_.push_back(MakeVolume(20, 18, 16, [](int i, int j, int k) { return (i * j * k) % 1500 - 200; }));
    volumes_.push_back(MakeVolume(20, 18, 16, [](int i, int, int) { return i > 8 ? 900 : -1000; }));
    volumes_.push_back(MakeVolume(33, 17, 19, waves));
    volumes_.push_back(MakeVolume(5, 6, 7, [](int, int, int) { return INT16_MAX; }));
    volumes_.push_back(MakeVolume(1, 1, 1, [](int, int, int) { return 500; }));
    volumes_.push_back(MakeVolume(3, 40, 2, waves));
    KsVolumeData& tilted = volumes_[3].data;
    tilted.spacing[0] = 0.6f, tilted.spacing[1] = 0.9f, tilted.spacing[2] = 1.7f;
    tilted.sliceDirection[1] = 0.28f, tilted.sliceDirection[2] = 0.96f;
    volumes_[1].data.origin[0] = -12.5f;
    for (const TestVolume& volume : volumes_)
        records_.push_back(volume.data);
    slicesWithAHole_ = volumes_[0].slices;
    slicesWithAHole_[9] = nullptr;
    for (int wrong = 0; wrong < 7; ++wrong)
    {
        KsVolumeData& record = records_.emplace_back(volumes_[0].data);
        switch (wrong)
        {
        case 0:
            record.slices = nullptr;
            break;
        case 1:
            record.slices = slicesWithAHole_.data();
            break;
        case 2:
            record.sizeX = 0;
            break;
        case 3:
            record.sizeZ = std::numeric_limits<int32_t>::max();
            break;
        case 4:
            record.spacing[1] = 0;
            break; // taken: shows nothing
        case 5:
            record.spacing[0] = NAN;
            break;
        default:
            record.origin[2] = INFINITY;
            break;
        }
    }
    for (size_t n = 0; n < blendPixels_.size(); ++n)
        blendPixels_[n] = uint32_t(n) * 2654435761u;
}

Step SequenceWorld::Draw(Random& random)
{
    int total = 0;
    for (const int weight : kWeights)
        total += weight;
    int place = random.Below(total), kind = 0;
    while (place >= kWeights[kind])
        place -= kWeights[kind++];
    return {kind, uint32_t(random.Below(1 << 30))};
}

bool SequenceWorld::OnlyLooks(const Step& step) { return step.kind >= kVolumeRendering; }

bool SequenceWorld::SwitchesGpu(const Step& step) { return step.kind == kSwitchGpu; }

void SequenceWorld::Play(Engine3D& engine, const Step& step) const
{
    using View = void (Engine3D::*)();
    constexpr View kViews[] = {&Engine3D::RotateToSagittal, &Engine3D::RotateToCoronal, &Engine3D::RotateToAxial,
                               &Engine3D::RotateToX,        &Engine3D::RotateToY,       &Engine3D::RotateToZ,
                               &Engine3D::RotateToBack};
    constexpr int kShifts[] = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 40000, -70000};
    Random random(step.seed);
    switch (step.kind)
    {
    case kLoad:
        Load(engine, random);
        break;
    case kClear:
        engine.Clear();
        break;
    case kPalette:
        SetPalette(engine, random);
        break;
    case kAdjustColor:
        engine.AdjustColor(random.Below(12) == 0 ? kShifts[random.Below(4)] : random.Between(-200, 200));
        break;
    case kShading:
    {
        const float ambient = NumberOf(random, 0, 1), diffuse = NumberOf(random, 0, 1);
        engine.SetShading(ambient, diffuse, NumberOf(random, 0, 1), LabelOf(random));
        break;
    }
    case kOpacity:
        engine.SetOpacity(NumberOf(random, 0, 1), LabelOf(random));
        break;
    case kVisible:
        engine.SetVisible(random.Below(4) != 0, LabelOf(random));
        break;
    case kLabels:
        EditLabels(engine, random);
        break;
    case kUpdateLabels:
        engine.UpdateMarkData();
        break;
    case kCut:
        Cut(engine, random);
        break;
    case kRotate:
        Turn(engine, random);
        break;
    case kStandardView:
        (engine.*kViews[random.Below(7)])();
        break;
    case kZoom:
        engine.Zoom(NumberOf(random, 0.2, 2));
        break;
    case kViewAngle:
        engine.SetViewAngle(NumberOf(random, 0, 200));
        break;
    case kOrigin:
    {
        double origin[3];
        for (double& coordinate : origin)
            coordinate = NumberOf(random, -10, 25);
        engine.SetOrigin(origin);
        break;
    }
    case kStepForward:
        random.Below(2) ? engine.Step(NumberOf(random, -5, 5)) : engine.StepOrigin(NumberOf(random, -5, 5));
        break;
    case kRenderType:
        engine.SetRenderType(static_cast<KsRender>(random.Between(-1, 2)));
        break;
    case kVisibleBox:
    {
        float corners[6];
        for (int n = 0; n < 6; ++n)
            corners[n] = n < 3 ? NumberOf(random, -15, 8) : NumberOf(random, 8, 30);
        engine.SetVisibleBox(corners, random.Below(10) ? corners + 3 : nullptr);
        break;
    }
    case kAttach:
        engine.AttachVolumeData(records_[size_t(random.Below(int(records_.size())))]);
        break;
    case kClearAttached:
        engine.ClearAttachVolume();
        break;
    case kBlends:
        SetBlends(engine, random);
        break;
    case kSwitchGpu:
        engine.SetGPUEnabled(random.Below(3) != 0);
        break;
    case kVolumeRendering:
    case kEndoscopy:
    case kImaging:
    case kProjectBySize:
        tests::Draw(engine, random, step.kind);
        break;
    case kProjectSlab:
        DrawSlab(engine, random);
        break;
    default:
        Look(engine, random);
        break;
    }
}

void SequenceWorld::Load(Engine3D& engine, Random& random) const
{
    engine.InitData(records_[size_t(random.Below(3) ? random.Below(4) : random.Below(int(records_.size())))]);
}

void SequenceWorld::Look(Engine3D& engine, Random& random) const
{
    KsPalette palette;
    for (int times = random.Between(1, 2); times > 0; --times)
        engine.GetPalette(palette);
    if (palette.ownsPoints)
        delete[] palette.points;
    KsVolumeData volume;
    engine.GetVolumeData(volume);
    float box[6];
    engine.GetBoundingBox(box, box + 3);
    engine.GetVisibleBox(box, box + 3);
    double origin[3];
    engine.GetOrigin(origin);
    engine.GetRenderType();
    PnImageParam param;
    engine.GetParamsOfVR(random.Between(-1, 5), random.Between(-1, 5), param);
    engine.GetImageParams(random.Between(-1, 5), random.Between(-1, 5), param);
    engine.SupportGPU();
}

void SequenceWorld::SetBlends(Engine3D& engine, Random& random) const
{
    std::vector<KsBlendImage> images(size_t(random.Below(6)));
    for (KsBlendImage& image : images)
    {
        image = {};
        for (int32_t(&corner)[2] : image.corners)
            for (int32_t& coordinate : corner)
                coordinate = random.Below(20) ? random.Between(-5, kLongestSide + 5) : random.Between(-2000000000, 0);
        image.pixels = random.Below(10) ? blendPixels_.data() : nullptr;
        core::Store(random.UnitVector(), image.rowDirection);
        core::Store(random.UnitVector(), image.columnDirection);
        core::Store(random.Vector(-5, 25), image.position);
    }
    engine.SetBlendImage(images.empty() ? nullptr : images.data(), images.empty() ? 3 : int(images.size()));
}
} // namespace corvane::tests
