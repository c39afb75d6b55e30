#include "c_arguments.h"

#include <tuple>

using namespace corvane::fuzz;

namespace
{
CorvaneEngine3D* Create(CorvaneEngine3D*) { return corvane_engine3d_create(CORVANE_C_INTERFACE); }
CorvaneRender3D* Create(CorvaneRender3D*) { return corvane_render3d_create(CORVANE_C_INTERFACE); }
CorvaneEngineMPR* Create(CorvaneEngineMPR*) { return corvane_engine_mpr_create(CORVANE_C_INTERFACE); }
CorvaneRenderMPR* Create(CorvaneRenderMPR*) { return corvane_render_mpr_create(CORVANE_C_INTERFACE); }
CorvaneScene* Create(CorvaneScene*) { return corvane_scene_create(CORVANE_C_INTERFACE); }

template <class Type>
Type Make(CSession& session)
{
    if constexpr (kIsHandle<Type>)
    {
        const int choice = session.input.Below(32);
        if (choice == 31)
            return nullptr;
        if (choice == 30) // of another class
        {
            void* const scene = session.scenes[0];
            return static_cast<Type>(scene);
        }
        Type& handle = session.HandlesOf(Type())[choice % 8 == 7];
        return handle = handle ? handle : Create(Type());
    }
    else if constexpr (std::is_pointer_v<Type>)
        return session.input.OneIn(64) ? nullptr : Argument<Type>::Make(session);
    else
        return Argument<Type>::Make(session);
}

// After a call: what was made is kept, what the library put into records is freed.
template <class Type>
void Finish(Type passed, CSession& session)
{
    if constexpr (std::is_same_v<Type, KsImageData*>)
        corvane_image_data_free(passed);
    else if constexpr (std::is_same_v<Type, KsMarkData*>)
        corvane_mark_data_free(passed);
    else if constexpr (std::is_same_v<Type, KsPalette*>)
        corvane_palette_free(passed);
    else if constexpr (std::is_pointer_v<Type>)
        if constexpr (kIsPixel<std::remove_pointer_t<Type>>)
            session.trace.Add(passed, passed ? session.capacity : 0);
}

template <class AnyHandle>
void Forget(AnyHandle* destroyed, CSession& session)
{
    if constexpr (kIsHandle<AnyHandle*>)
        for (int n = 0; n < 2; ++n)
            if (session.HandlesOf(destroyed)[n] == destroyed)
                session.HandlesOf(destroyed)[n] = nullptr;
}

template <class AnyHandle>
void Keep(AnyHandle* made, CSession& session)
{
    Release(session.HandlesOf(made)[1]);
    session.HandlesOf(made)[1] = made;
}

template <class Result, class... Types>
void Call(Result (*function)(Types...), CSession& session)
{
    session.capacity = MakeCapacity(session);
    session.workLeft -= int(session.capacity) + 500;
    const std::tuple<Types...> arguments{Make<Types>(session)...};
    if constexpr (std::is_same_v<Result, CorvaneStatus>)
    {
        const CorvaneStatus status = std::apply(function, arguments);
        Require(status >= CORVANE_OK && status <= CORVANE_ERROR_NO_STEP, "every status is one of those listed");
        session.trace.Add(status);
    }
    else if constexpr (std::is_same_v<Result, const char*>)
        Require(std::apply(function, arguments), "a text is a text");
    else if constexpr (std::is_void_v<Result>)
    {
        // A handle of another class is not destroyed.
        std::apply(function, arguments);
        std::apply([&](auto... each) { (Forget(each, session), ...); }, arguments);
    }
    else
        Keep(std::apply(function, arguments), session);
    std::apply([&](auto... each) { (Finish(each, session), ...); }, arguments);
}

#define CORVANE_FUNCTION(name) [](CSession& session) { Call(name, session); },
void (*const kFunctions[])(CSession& session) = {
#include "exported_functions.inc"
};
static_assert(std::size(kFunctions) <= 256, "a byte numbers a function");

void Play(Session& session)
{
    CSession calls = {session};
    while (!calls.IsOver())
        kFunctions[calls.input.Below(int(std::size(kFunctions)))](calls);
    const auto releaseBoth = [](const auto& handles) { Release(handles[0]), Release(handles[1]); };
    releaseBoth(calls.engines3d);
    releaseBoth(calls.renders3d);
    releaseBoth(calls.enginesMpr);
    releaseBoth(calls.rendersMpr);
    releaseBoth(calls.scenes);
    session.trace = calls.trace;
}
} // namespace

// Any calls of the C interface.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t count)
{
    PlayInput(bytes, count, Play);
    return 0;
}
