#include "corvane/RenderMPR.h"
#include "planes.h"
#include "volumes.h"

using namespace corvane::fuzz;

namespace
{
void Resample(RenderMPR& render, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const Canvas<int16_t> canvas(session, size.Pixels(), size.IsTooLarge() || session.input.OneIn(32));
    KsImageVAL image = {canvas.Pixels(), MakePlane(session, size)};
    const KsVolumeData other = session.input.OneIn(4) ? MakeVolumeLike(session) : session.volume;
    const bool done = session.input.OneIn(2) ? render.Imaging(other, &image) : render.Imaging(&image);
    canvas.Check(done, session.trace, "a plane that is refused is left alone");
    Require(!render.ImagingMIP(1, &image) && !render.ImagingAIP(1, &image) && !render.ImagingMinIP(1, &image),
            "slabs are not offered");
}

void DrawLabels(RenderMPR& render, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const Canvas<uint8_t> canvas(session, size.Pixels(), size.IsTooLarge() || session.input.OneIn(32));
    KsImageMark image = {canvas.Pixels(), MakePlane(session, size)};
    canvas.Check(render.Marking(&image), session.trace, "labels that are refused are left alone");
}

void Ask(RenderMPR& render, Session& session)
{
    float box[6] = {}, vertexes[8][3] = {};
    session.trace.Add(render.GetBoundingBox(box, box + 3));
    session.trace.Add(render.GetBoundingVertexes(vertexes));
    const PnImageParam plane = MakePlane(session);
    double directions[6], origin[3] = {}, rowExtent = 0, columnExtent = 0;
    std::copy_n(plane.rowDirection, 3, directions);
    std::copy_n(plane.columnDirection, 3, directions + 3);
    session.trace.Add(render.GetMPRSize(directions, plane.position, origin, rowExtent, columnExtent));
    session.trace.Add(box, 6);
    session.trace.Add(origin, 3);
}

void AskForNothing(RenderMPR& render)
{
    double extent = 0;
    const bool any = render.Imaging(nullptr) || render.Marking(nullptr) || render.GetBoundingBox(nullptr, nullptr) ||
                     render.GetBoundingVertexes(nullptr) ||
                     render.GetMPRSize(nullptr, nullptr, nullptr, extent, extent);
    Require(!any, "a null pointer is refused");
}

void Play(Session& session)
{
    RenderMPR render;
    while (!session.IsOver())
        switch (session.input.Below(8))
        {
        case 0:
            session.trace.Add(render.InitData(MakeVolume(session, Slices::Vast)));
            break;
        case 1:
            session.trace.Add(render.SetMarkData(MakeLabels(session)));
            break;
        case 2:
        case 3:
            Resample(render, session);
            break;
        case 4:
            DrawLabels(render, session);
            break;
        case 5:
            Ask(render, session);
            break;
        case 6:
            session.input.OneIn(4) ? render.Clear() : AskForNothing(render);
            break;
        default: // the renderer's own record, given back
            session.trace.Add(render.SetMarkData(*render.GetMarkData()));
        }
}
} // namespace

// Any calls on a RenderMPR.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    PlayInput(bytes, count, Play);
    return 0;
}
