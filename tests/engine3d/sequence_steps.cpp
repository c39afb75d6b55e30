#include "sequence_steps.h"

#include "sequence_calls.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane::tests
{
using namespace calls;

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
    kVolumeRendering, // from here in the order of PictureKind
    kEndoscopy,
    kImaging,
    kProjectBySize,
    kProjectSlab,
    kLook,
    kKinds
};

constexpr int kWeights[kKinds] = {5, 1, 5, 4, 2, 2, 3, 4, 1, 3, 5, 3, 3, 2, 3, 2, 3, 3, 4, 1, 4, 3, 10, 5, 6, 6, 6, 2};
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
        calls::Draw(engine, random, PictureKind(step.kind - kVolumeRendering));
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
