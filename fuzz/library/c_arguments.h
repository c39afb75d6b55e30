#ifndef CORVANE_FUZZ_LIBRARY_C_ARGUMENTS_H
#define CORVANE_FUZZ_LIBRARY_C_ARGUMENTS_H

#include "corvane/corvane_c.h"
#include "palettes.h"
#include "planes.h"
#include "volumes.h"

#include <type_traits>

namespace corvane::fuzz
{
// The handles of a session of the C interface, and how many elements the buffers of the current call hold.
struct CSession : Session
{
    CorvaneEngine3D* engines3d[2] = {}; // two of each, so that one can be copied to the other
    CorvaneRender3D* renders3d[2] = {};
    CorvaneEngineMPR* enginesMpr[2] = {};
    CorvaneRenderMPR* rendersMpr[2] = {};
    CorvaneScene* scenes[2] = {};
    size_t capacity = 0;

    CorvaneEngine3D** HandlesOf(CorvaneEngine3D*) { return engines3d; }
    CorvaneRender3D** HandlesOf(CorvaneRender3D*) { return renders3d; }
    CorvaneEngineMPR** HandlesOf(CorvaneEngineMPR*) { return enginesMpr; }
    CorvaneRenderMPR** HandlesOf(CorvaneRenderMPR*) { return rendersMpr; }
    CorvaneScene** HandlesOf(CorvaneScene*) { return scenes; }
};

inline void Release(CorvaneEngine3D* handle) { corvane_engine3d_destroy(handle); }
inline void Release(CorvaneRender3D* handle) { corvane_render3d_destroy(handle); }
inline void Release(CorvaneEngineMPR* handle) { corvane_engine_mpr_destroy(handle); }
inline void Release(CorvaneRenderMPR* handle) { corvane_render_mpr_destroy(handle); }
inline void Release(CorvaneScene* handle) { corvane_scene_destroy(handle); }

template <class Type>
constexpr bool kIsHandle = requires(CSession session, Type handle)
{
    session.HandlesOf(handle);
};

template <class Element>
constexpr bool kIsPixel =
    std::is_same_v<Element, uint32_t> || std::is_same_v<Element, int16_t> || std::is_same_v<Element, uint8_t>;

// Elements of the buffers of one call: those of an image, or one for each voxel.
size_t MakeCapacity(CSession& session);

// What a parameter of a function is given. Records lie where the session's memory does.
template <class Type>
struct Argument;

template <class Record, Record (*make)(CSession& session)>
struct RecordArgument
{
    static Record* Make(CSession& session) { return session.memory.Of<Record>(1, make(session)); }
};

template <>
struct Argument<float>
{
    static float Make(CSession& session) { return session.input.Number(0, 4); }
};

template <>
struct Argument<int32_t> // sizes of images, labels, kinds, counts of blend images
{
    static int32_t Make(CSession& session) { return session.input.Integer(0, 32); }
};

template <>
struct Argument<uint32_t> // the same
{
    static uint32_t Make(CSession& session) { return uint32_t(session.input.Integer(0, 32)); }
};

template <>
struct Argument<KsRender>
{
    static KsRender Make(CSession& session) { return KsRender(session.input.Integer(0, 1)); }
};

template <>
struct Argument<KsMPRType>
{
    static KsMPRType Make(CSession& session) { return MakeType(session); }
};

template <>
struct Argument<uint8_t>
{
    static uint8_t Make(CSession& session) { return session.input.Byte(); }
};

template <>
struct Argument<size_t>
{
    static size_t Make(CSession& session) { return session.capacity; }
};

// What is written to, or copied from. The longest list of numbers that no capacity is given for has 24.
template <class Element>
struct Argument<Element*>
{
    static Element* Make(CSession& session)
    {
        using Stored = std::remove_const_t<Element>;
        if constexpr (kIsPixel<Stored>)
            return session.memory.Of<Stored>(session.capacity, Stored(session.input.Byte() & 65));
        else if constexpr (std::is_same_v<Element, const float>)
            return Numbers<Stored>(session, 3);
        else if constexpr (std::is_same_v<Element, const double>)
            return Numbers<Stored>(session, std::max<size_t>(6, 2 * session.capacity));
        else
            return session.memory.Of<Stored>(24);
    }

private:
    template <class Real>
    static Real* Numbers(CSession& session, size_t count)
    {
        Real* const numbers = session.memory.Of<Real>(count);
        for (size_t n = 0; n < std::min<size_t>(count, 16); ++n)
            numbers[n] = Real(session.input.Number(-10, 40));
        return numbers;
    }
};

KsVolumeData MakeCVolume(CSession& session);
KsVolumeMark MakeCLabels(CSession& session);
VolumePalette MakeCTables(CSession& session);
KsPalette MakeCPalette(CSession& session);
PnImageParam MakeCPlane(CSession& session);
KsSliceParam MakeCSlice(CSession& session);
KsCamera MakeCCamera(CSession& session);
KsViewPoint MakeCView(CSession& session);
KsMPRParam MakeCFrames(CSession& session);
CorvaneView MakeCSceneView(CSession& session);

// An image in a buffer of the session's capacity.
template <class Image, class Element, Element* Image::*elements>
Image MakeCImage(CSession& session)
{
    Image image = {};
    image.*elements = Argument<Element*>::Make(session);
    image.param = MakeCPlane(session);
    return image;
}

template <>
struct Argument<const KsVolumeData*> : RecordArgument<KsVolumeData, MakeCVolume>
{
};
template <>
struct Argument<const KsVolumeMark*> : RecordArgument<KsVolumeMark, MakeCLabels>
{
};
template <>
struct Argument<KsVolumeMark*> : RecordArgument<KsVolumeMark, MakeCLabels>
{
};
template <>
struct Argument<const VolumePalette*> : RecordArgument<VolumePalette, MakeCTables>
{
};
template <>
struct Argument<const KsPalette*> : RecordArgument<KsPalette, MakeCPalette>
{
};
template <>
struct Argument<const PnImageParam*> : RecordArgument<PnImageParam, MakeCPlane>
{
};
template <>
struct Argument<const KsSliceParam*> : RecordArgument<KsSliceParam, MakeCSlice>
{
};
template <>
struct Argument<const KsCamera*> : RecordArgument<KsCamera, MakeCCamera>
{
};
template <>
struct Argument<const KsViewPoint*> : RecordArgument<KsViewPoint, MakeCView>
{
};
template <>
struct Argument<const KsMPRParam*> : RecordArgument<KsMPRParam, MakeCFrames>
{
};
template <>
struct Argument<const CorvaneView*> : RecordArgument<CorvaneView, MakeCSceneView>
{
};
template <>
struct Argument<KsImageVAL*> : RecordArgument<KsImageVAL, MakeCImage<KsImageVAL, int16_t, &KsImageVAL::values>>
{
};
template <>
struct Argument<PnImageRGB*> : RecordArgument<PnImageRGB, MakeCImage<PnImageRGB, uint32_t, &PnImageRGB::pixels>>
{
};
template <>
struct Argument<KsImageMark*> : RecordArgument<KsImageMark, MakeCImage<KsImageMark, uint8_t, &KsImageMark::labels>>
{
};
template <>
struct Argument<const KsBlendImage*>
{
    static KsBlendImage* Make(CSession& session) { return MakeBlendImages(session).images; }
};

// A region is read as far as its rows and columns say.
template <>
struct Argument<const KsImageMark*>
{
    static KsImageMark* Make(CSession& session)
    {
        session.capacity = kMostPixels;
        KsImageMark* const region = Argument<KsImageMark*>::Make(session);
        if (uint64_t(region->param.rows) * region->param.columns > kMostPixels)
            region->labels = nullptr;
        return region;
    }
};
} // namespace corvane::fuzz

#endif
