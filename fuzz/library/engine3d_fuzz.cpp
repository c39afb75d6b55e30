#include "corvane/Engine3D.h"
#include "palettes.h"
#include "planes.h"
#include "sized_image.h"
#include "volumes.h"

#include <utility>

using namespace corvane::fuzz;

namespace
{
void Turn(Engine3D& engine, Session& session)
{
    Input& input = session.input;
    const float number = input.Number(-3, 3);
    switch (input.Below(16))
    {
    case 0:
        return engine.RotateScreen(number);
    case 1:
        return engine.RotateH(number);
    case 2:
        return engine.RotateV(number);
    case 3:
        return engine.RotateToSagittal();
    case 4:
        return engine.RotateToCoronal();
    case 5:
        return engine.RotateToAxial();
    case 6:
        return engine.RotateToZ();
    case 7:
        return engine.RotateToX();
    case 8:
        return engine.RotateToY();
    case 9:
        return engine.RotateToBack();
    case 10:
        return engine.Zoom(number);
    case 11:
        return engine.SetViewAngle(60 * number);
    case 12:
        return engine.Step(number);
    case 13:
        return engine.StepOrigin(10 * number);
    case 14:
        return engine.SetRenderType(KsRender(input.Integer(0, 1)));
    default:
    {
        const double origin[3] = {double(number), double(input.Number(-30, 60)), double(input.Number(-30, 60))};
        session.trace.Add(engine.SetOrigin(origin));
    }
    }
}

void SetAppearance(Engine3D& engine, Session& session)
{
    Input& input = session.input;
    const int label = MakeLabel(session);
    switch (input.Below(8))
    {
    case 0:
        session.trace.Add(engine.SetOpacity(input.Number(0, 1), label));
        break;
    case 1:
        session.trace.Add(engine.SetVisible(!input.OneIn(2), label));
        break;
    case 2:
    {
        const float ambient = input.Number(0, 1), diffuse = input.Number(0, 1);
        session.trace.Add(engine.SetShading(ambient, diffuse, input.Number(0, 1), label));
        break;
    }
    case 3:
        session.trace.Add(engine.AdjustColor(input.Integer(-100, 90)));
        break;
    default:
        session.trace.Add(engine.SetPalette(MakePalette(session)));
    }
}

// Edits the engine's own labels in place, their slice table included.
void EditLabels(Engine3D& engine, Session& session)
{
    Input& input = session.input;
    KsVolumeMark& labels = *engine.GetMarkData();
    const int byte = input.Integer(0, 64), every = 1 + input.Below(16);
    for (uint32_t k = 0; labels.slices && k < labels.sizeZ; ++k)
        for (size_t n = 0; labels.slices[k] && n < size_t(labels.sizeX) * labels.sizeY; ++n)
            if ((n + k) % size_t(every) == 0)
                labels.slices[k][n] = uint8_t(byte);
    if (labels.slices && input.OneIn(16))
        labels.slices[input.Byte() % labels.sizeZ] = nullptr;
    if (input.OneIn(4))
        session.trace.Add(engine.CutAppend(labels)); // what is selected is what is cut
    engine.UpdateMarkData();
}

void Cut(Engine3D& engine, Session& session)
{
    Input& input = session.input;
    KsVolumeMark selection = MakeLabels(session);
    const Size size = MakeSizeToRefuse(session);
    uint8_t* const pixels = session.memory.Of<uint8_t>(size.Pixels());
    for (size_t n = 0; n < size.Pixels(); ++n)
        pixels[n] = n % 3 != 0;
    const KsImageMark region = {size.IsTooLarge() || input.OneIn(16) ? nullptr : pixels, MakePlane(session, size)};
    session.trace.Add(engine.CutFill(region, selection, input.Byte()));
    session.trace.Add(engine.CutAppend(selection));
    Require(!engine.CutSubtract(selection), "cuts are not undone");
    engine.CutClear();
}

void Draw(Engine3D& engine, Session& session)
{
    Input& input = session.input;
    const Size size = MakeSizeToRefuse(session);
    const int kind = input.Below(4), volumeIndex = input.Integer(0, 2);
    const uint8_t fill = std::exchange(session.fill, uint8_t(0)); // an endoscopy of nothing writes nothing
    const Canvas<uint32_t> canvas(session, size.Pixels(), input.OneIn(32));
    session.fill = fill;
    PnImageRGB image = {};
    PnImageRGB* const record = input.OneIn(4) ? nullptr : &image;
    bool done = false;
    if (kind == 0)
        done = engine.Imaging(size.rows, size.columns, canvas.Pixels(), true, record, volumeIndex);
    else if (kind == 1)
        done = engine.ImagingVE(size.rows, size.columns, canvas.Pixels(), input.Number(5, 175), false, record);
    else
        done = engine.ImagingVR(size.rows, size.columns, canvas.Pixels(), false, record, volumeIndex);
    canvas.Check(done, session.trace, "a picture that is refused is empty");
    session.trace.Add(&image.param, 1);
}

void ProjectBySize(Engine3D& engine, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const int kind = session.input.Below(3);
    const Canvas<int16_t> canvas(session, size.Pixels(), session.input.OneIn(32));
    int16_t* const values = canvas.Pixels();
    KsImageVAL image = {};
    KsImageVAL* const record = session.input.OneIn(4) ? nullptr : &image;
    const bool done = kind == 0   ? engine.ImagingMIP(size.rows, size.columns, values, false, record)
                      : kind == 1 ? engine.ImagingAIP(size.rows, size.columns, values, true, record)
                                  : engine.ImagingMinIP(size.rows, size.columns, values, false, record);
    session.trace.Add(done);
    Require(!done || size.Pixels() > 0, "a projection has pixels");
    if (values)
        canvas.AddTo(session.trace); // filled before anything else
    session.trace.Add(&image.param, 1);
}

void ProjectSlab(Engine3D& engine, Session& session)
{
    SizedImage image(session);
    const float thickness = session.input.Number(0.05f, 30);
    const int kind = session.input.Below(6);
    const PnImageParam plane = kind < 3 ? MakePlane(session, MakeSizeToRefuse(session)) : PnImageParam();
    const KsSliceParam slice = kind < 3 ? KsSliceParam() : MakeSlice(session);
    session.workLeft -= int(kMostPixels);
    switch (kind)
    {
    case 0:
        return image.Trace(engine.ImagingMIP(plane, thickness, image.Record()));
    case 1:
        return image.Trace(engine.ImagingAIP(plane, thickness, image.Record()));
    case 2:
        return image.Trace(engine.ImagingMinIP(plane, thickness, image.Record()));
    case 3:
        return image.Trace(engine.ImagingMIP(slice, thickness, image.Record()));
    case 4:
        return image.Trace(engine.ImagingAIP(slice, thickness, image.Record()));
    default:
        return image.Trace(engine.ImagingMinIP(slice, thickness, image.Record()));
    }
}

void Ask(Engine3D& engine, Session& session)
{
    float box[6] = {}, visible[6] = {};
    double origin[3] = {};
    KsVolumeData volume = {};
    KsPalette palette;
    PnImageParam plane = {}, same = {};
    const Size size = MakeSizeToRefuse(session);
    session.trace.Add(engine.GetBoundingBox(box, box + 3));
    session.trace.Add(engine.GetVisibleBox(visible, visible + 3));
    session.trace.Add(engine.GetOrigin(origin));
    session.trace.Add(engine.GetRenderType());
    session.trace.Add(engine.GetVolumeData(volume));
    session.trace.Add(engine.GetPalette(palette));
    session.trace.Add(palette.points, palette.ownsPoints ? size_t(palette.pointCount) : 0);
    session.trace.Add(engine.GetPalette(palette)); // frees its points first
    if (palette.ownsPoints)
        delete[] palette.points;
    const bool placed = engine.GetParamsOfVR(size.rows, size.columns, plane);
    Require(engine.GetImageParams(size.rows, size.columns, same) == placed && !std::memcmp(&plane, &same, sizeof(same)),
            "two names, one operation");
    session.trace.Add(box, 6);
    session.trace.Add(visible, 6);
    session.trace.Add(origin, 3);
    session.trace.Add(&plane, 1);
    Require(!engine.GetOrigin(nullptr) && !engine.SetOrigin(nullptr) && !engine.GetBoundingBox(box, nullptr) &&
                !engine.GetVisibleBox(nullptr, box) && !engine.SetVisibleBox(box, nullptr),
            "a null pointer is refused");
    Require(engine.SetGPUEnabled(session.input.OneIn(2)) || !engine.SupportGPU(), "what is there can be switched");
    Require(!engine.IsGPUEnabled() || engine.SupportGPU(), "what is not there is off");
}

void Attach(Engine3D& engine, Session& session)
{
    switch (session.input.Below(4))
    {
    case 0:
    case 1:
        session.trace.Add(engine.AttachVolumeData(MakeVolumeLike(session)));
        break;
    case 2:
    {
        const BlendImages blends = MakeBlendImages(session);
        engine.SetBlendImage(blends.images, blends.count);
        break;
    }
    default:
        engine.ClearAttachVolume();
    }
}

void Load(Engine3D& engine, Session& session)
{
    KsVolumeData volume = {};
    if (session.input.OneIn(8) && engine.GetVolumeData(volume))
        session.trace.Add(engine.InitData(volume)); // the one that it has
    else
        session.trace.Add(engine.InitData(MakeVolume(session)));
}

void Play(Session& session)
{
    Engine3D engine;
    while (!session.IsOver())
        switch (session.input.Below(16))
        {
        case 0:
        case 1:
            Load(engine, session);
            break;
        case 2:
        case 3:
            SetAppearance(engine, session);
            break;
        case 4:
        case 5:
            Turn(engine, session);
            break;
        case 6:
            EditLabels(engine, session);
            break;
        case 7:
            Cut(engine, session);
            break;
        case 8:
            Attach(engine, session);
            break;
        case 9:
            SetBox(engine, session);
            break;
        case 10:
            if (session.input.OneIn(4))
                engine.Clear();
            else
                Ask(engine, session);
            break;
        case 11:
        case 12:
            ProjectBySize(engine, session);
            break;
        case 13:
            ProjectSlab(engine, session);
            break;
        default:
            Draw(engine, session);
        }
}
} // namespace

// Any calls on an Engine3D.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    PlayInput(bytes, count, Play);
    return 0;
}
