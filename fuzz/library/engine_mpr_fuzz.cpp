#include "corvane/EngineMPR.h"
#include "planes.h"
#include "sized_image.h"
#include "volumes.h"

using namespace corvane::fuzz;

namespace
{
void Image(EngineMPR& engine, Session& session)
{
    SizedImage image(session);
    const int count = 1 + session.input.Below(3);
    for (int n = 0; n < count; ++n)
        switch (session.input.Below(4))
        {
        case 0:
            image.Trace(engine.Imaging(MakePlane(session, MakeSizeToRefuse(session)), image.Record()));
            break;
        case 1:
            image.Trace(engine.Imaging(MakeSlice(session), image.Record()));
            break;
        case 2:
            image.Trace(engine.Imaging(MakeType(session), MakeVolumeLike(session), image.Record()));
            break;
        default:
            image.Trace(engine.Imaging(MakeType(session), image.Record()));
        }
}

void ImageSlab(EngineMPR& engine, Session& session)
{
    session.workLeft -= int(kMostPixels);
    SizedImage image(session);
    const float thickness = session.input.Number(0, 20);
    const KsSliceParam slice = MakeSlice(session);
    const KsMPRType type = MakeType(session);
    const bool any =
        engine.ImagingMIP(slice, thickness, image.Record()) || engine.ImagingMIP(type, thickness, image.Record()) ||
        engine.ImagingMinIP(slice, thickness, image.Record()) || engine.ImagingMinIP(type, thickness, image.Record()) ||
        engine.ImagingAIP(slice, thickness, image.Record()) || engine.ImagingAIP(type, thickness, image.Record());
    Require(!any, "slabs are not offered");
}

void DrawLabels(EngineMPR& engine, Session& session)
{
    KsMarkData image = {};
    const bool done = engine.Marking(MakeType(session), session.input.OneIn(32) ? nullptr : &image);
    session.trace.Add(done);
    session.workLeft -= int(image.labelCount);
    if (done)
        session.trace.Add(image.labels, image.labelCount);
    if (image.ownsLabels)
        delete[] image.labels;
}

void Turn(EngineMPR& engine, Session& session)
{
    switch (session.input.Below(4))
    {
    case 0:
    {
        const double origin[3] = {double(session.input.Number(-30, 60)), double(session.input.Number(-30, 60)),
                                  double(session.input.Number(-30, 60))};
        session.trace.Add(engine.SetOrigin(origin));
        break;
    }
    case 1:
        session.trace.Add(engine.SetParams(MakeFrames(session)));
        break;
    case 2:
        session.trace.Add(engine.Reset());
        break;
    default:
    {
        const KsMPRType type = MakeType(session);
        session.trace.Add(engine.Rotate(type, session.input.Number(-3, 3)));
    }
    }
}

void Ask(EngineMPR& engine, Session& session)
{
    double origin[3] = {}, normal[3] = {};
    KsMPRParam frames = {};
    PnImageParam plane = {}, first = {};
    const KsMPRType type = MakeType(session);
    session.trace.Add(engine.GetOrigin(origin));
    session.trace.Add(engine.GetDirect(type, normal));
    session.trace.Add(engine.GetParams(frames));
    session.trace.Add(engine.GetImageParam(type, plane));
    session.trace.Add(engine.GetImageCount(type, session.input.Number(0.005f, 3), &first));
    session.trace.Add(engine.GetImageCount(type, session.input.Number(0.005f, 3), nullptr));
    session.trace.Add(&frames, 1);
    session.trace.Add(&plane, 1);
    session.trace.Add(&first, 1);
    Require(!engine.GetOrigin(nullptr) && !engine.SetOrigin(nullptr) && !engine.GetDirect(type, nullptr),
            "a null pointer is refused");
}

void Play(Session& session)
{
    EngineMPR engine;
    while (!session.IsOver())
        switch (session.input.Below(8))
        {
        case 0:
            session.trace.Add(engine.InitData(MakeVolume(session, Slices::Sampled)));
            break;
        case 1:
            session.trace.Add(engine.SetMarkData(MakeLabels(session)));
            break;
        case 2:
        case 3:
            Image(engine, session);
            break;
        case 4:
            DrawLabels(engine, session);
            break;
        case 5:
            Ask(engine, session);
            break;
        case 6:
            session.input.OneIn(8) ? engine.Clear() : ImageSlab(engine, session);
            break;
        default:
            Turn(engine, session);
        }
}
} // namespace

// Any calls on an EngineMPR.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    PlayInput(bytes, count, Play);
    return 0;
}
