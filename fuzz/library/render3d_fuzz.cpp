#include "corvane/Render3D.h"
#include "palettes.h"
#include "planes.h"
#include "volumes.h"

#include <optional>
#include <utility>

using namespace corvane::fuzz;

namespace
{
class Renderer final : public Render3D
{
};

// The twelve projections. The axes of a camera's image are written by the operation.
bool Project(Render3D& render, Session& session, KsImageVAL* image)
{
    const int kind = session.input.Below(12);
    const KsCamera camera = kind < 6 ? MakeCamera(session) : KsCamera();
    const float fieldSize = kind < 6 ? session.input.Number(1, 60) : 0;
    const float thickness = kind % 2 == 0 ? session.input.Number(0.05f, 30) : 0;
    switch (kind)
    {
    case 0:
        return render.ImagingMIP(camera, fieldSize, thickness, image);
    case 1:
        return render.ImagingMIP(camera, fieldSize, image);
    case 2:
        return render.ImagingAIP(camera, fieldSize, thickness, image);
    case 3:
        return render.ImagingAIP(camera, fieldSize, image);
    case 4:
        return render.ImagingMinIP(camera, fieldSize, thickness, image);
    case 5:
        return render.ImagingMinIP(camera, fieldSize, image);
    case 6:
        return render.ImagingMIP(image, thickness);
    case 7:
        return render.ImagingMIP(image);
    case 8:
        return render.ImagingAIP(image, thickness);
    case 9:
        return render.ImagingAIP(image);
    case 10:
        return render.ImagingMinIP(image, thickness);
    default:
        return render.ImagingMinIP(image);
    }
}

void DrawProjection(Render3D& render, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const Canvas<int16_t> canvas(session, size.Pixels(), size.IsTooLarge() || session.input.OneIn(32));
    KsImageVAL image = {canvas.Pixels(), MakePlane(session, size)};
    const bool done = Project(render, session, &image);
    canvas.Check(done, session.trace, "a projection that is refused is left alone");
}

void DrawVolume(Render3D& render, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const uint8_t fill = std::exchange(session.fill, uint8_t(0)); // what nothing covers is not written
    const Canvas<uint32_t> canvas(session, size.Pixels(), size.IsTooLarge() || session.input.OneIn(32));
    session.fill = fill;
    PnImageRGB image = {canvas.Pixels(), MakePlane(session, size)};
    const bool done = render.ImagingVR(&image, session.input.Integer(0, 2));
    canvas.Check(done, session.trace, "a rendering that is refused is left alone");
}

void DrawEndoscopy(Render3D& render, Session& session)
{
    const Size size = MakeSizeToRefuse(session);
    const Canvas<uint32_t> canvas(session, size.Pixels(), size.IsTooLarge() || session.input.OneIn(32));
    PnImageRGB image = {canvas.Pixels(), MakePlane(session, size)};
    const KsViewPoint view = MakeView(session);
    const bool done = render.ImagingVE(view, session.input.Number(5, 175), &image);
    canvas.Check(done, session.trace, "an endoscopy that is refused is left alone");
}

void Ask(Render3D& render, Session& session)
{
    float box[6] = {}, visible[6] = {};
    session.trace.Add(render.GetBoundingBox(box, box + 3));
    session.trace.Add(render.GetVisibleBox(visible, visible + 3));
    session.trace.Add(box, 6);
    session.trace.Add(visible, 6);
    const bool any = render.ImagingVR(nullptr, 0) || render.ImagingMIP(nullptr) || render.ImagingAIP(nullptr, 1) ||
                     render.ImagingMinIP({}, 1, nullptr) || render.ImagingVE({}, 1, nullptr) ||
                     render.GetBoundingBox(nullptr, nullptr) || render.GetVisibleBox(nullptr, nullptr) ||
                     render.SetVisibleBox(nullptr, nullptr);
    Require(!any, "a null pointer is refused");
}

void Attach(Render3D& render, Session& session)
{
    if (session.input.OneIn(8))
        return render.ClearAttachVolume();
    session.trace.Add(render.AttachVolumeData(MakeVolumeLike(session)));
}

void SetBlends(Render3D& render, Session& session)
{
    const BlendImages blends = MakeBlendImages(session);
    render.SetBlendImage(blends.images, blends.count);
}

bool Load(Render3D& render, Session& session)
{
    const KsVolumeData volume = MakeVolume(session);
    const KsVolumeMark labels = session.input.OneIn(2) ? MakeLabels(session) : KsVolumeMark();
    return render.InitData(volume, labels, MakeTables(session));
}

// Copies take the place of what they were made of: nothing is to be seen of it.
void Copy(std::optional<Renderer>& render, Session& session)
{
    if (session.input.OneIn(2))
    {
        const Renderer copy = *render;
        render.emplace(copy);
        return;
    }
    Renderer other;
    Load(other, session);
    *render = session.input.OneIn(4) ? *render : other;
}

void Play(Session& session)
{
    std::optional<Renderer> render(std::in_place);
    while (!session.IsOver())
        switch (session.input.Below(16))
        {
        case 0:
        case 1:
            session.trace.Add(Load(*render, session));
            break;
        case 2:
            render->SetVolumeMark(MakeLabels(session));
            break;
        case 3:
            session.trace.Add(render->SetPalette(MakeTables(session)));
            break;
        case 4:
            SetBox(*render, session);
            break;
        case 5:
            Ask(*render, session);
            break;
        case 6:
            Attach(*render, session);
            break;
        case 7:
            SetBlends(*render, session);
            break;
        case 8:
            Copy(render, session);
            break;
        case 9:
            if (session.input.OneIn(4))
                render->Clear();
            break;
        case 10:
        case 11:
            DrawVolume(*render, session);
            break;
        case 12:
        case 13:
            DrawEndoscopy(*render, session);
            break;
        default:
            DrawProjection(*render, session);
        }
}
} // namespace

// Any calls on a Render3D.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    PlayInput(bytes, count, Play);
    return 0;
}
