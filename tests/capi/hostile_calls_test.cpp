#include "c_handles.h"
#include "hostile_records.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <utility>

// Every exported function, called with null pointers, handles of another class and every hostile value that its types
// have, one at a time, the other arguments being good. The functions come from the list of exports; another test
// compares that list with the library. What is to be seen: no crash, no sanitizer's complaint, an error where one is
// due.

namespace
{
using namespace corvane::tests;

// Pointers that may be null, by the number of the argument.
const std::set<std::pair<std::string, size_t>> kOptional = {
    {"corvane_engine3d_imaging", 5},
    {"corvane_engine3d_imaging_vr", 5},
    {"corvane_engine3d_imaging_ve", 6},
    {"corvane_engine3d_imaging_mip_by_size", 5},
    {"corvane_engine3d_imaging_aip_by_size", 5},
    {"corvane_engine3d_imaging_minip_by_size", 5},
    {"corvane_engine3d_set_blend_image", 1},
    {"corvane_render3d_init_data", 2},
    {"corvane_render3d_set_blend_image", 1},
    {"corvane_engine_mpr_get_image_count", 4},
    {"corvane_scene_endoscopy", 7},
    {"corvane_scene_cut_polygon", 5},
    {"corvane_scene_cut_selection", 3},
    {"corvane_scene_restore", 1},
    {"corvane_scene_get_history", 1},
    {"corvane_scene_get_history", 2},
    {"corvane_scene_get_history", 3},
};

template <class Type>
constexpr bool kIsHandle = std::is_same_v<Type, CorvaneEngine3D*> || std::is_same_v<Type, CorvaneRender3D*> ||
                           std::is_same_v<Type, CorvaneEngineMPR*> || std::is_same_v<Type, CorvaneRenderMPR*> ||
                           std::is_same_v<Type, CorvaneScene*>;

enum class Handles
{
    Loaded,
    Empty,
};

// A handle as a program would have it; every other argument stored for as long as a call takes.
template <class Type>
struct Argument
{
    explicit Argument(Handles) : stored(Values<Type>::Good()) {}
    Type Get() { return ArgumentOf<Type>(stored); }

    typename Values<Type>::Stored stored;
};

template <class Handle, class Create, class Load>
struct HandleArgument
{
    explicit HandleArgument(Handles handles) : handle(Create()(CORVANE_C_INTERFACE))
    {
        EXPECT_TRUE(handles == Handles::Empty || Load()(handle.get()) == CORVANE_OK);
    }
    Handle* Get() { return handle.get(); }

    Owned<Handle> handle;
};

template <auto function>
struct Call
{
    template <class... Arguments>
    auto operator()(Arguments... arguments) const
    {
        return function(arguments...);
    }
};

template <auto function>
struct LoadVolume
{
    template <class Handle>
    CorvaneStatus operator()(Handle* handle) const
    {
        return function(handle, &GoodVolume().data);
    }
};

struct LoadRender3D
{
    CorvaneStatus operator()(CorvaneRender3D* render) const
    {
        const VolumePalette tables = GoodTables();
        return corvane_render3d_init_data(render, &GoodVolume().data, &GoodLabels().mark, &tables);
    }
};

template <>
struct Argument<CorvaneEngine3D*>
    : HandleArgument<CorvaneEngine3D, Call<corvane_engine3d_create>, LoadVolume<corvane_engine3d_init_data>>
{
    using HandleArgument::HandleArgument;
};

template <>
struct Argument<CorvaneRender3D*> : HandleArgument<CorvaneRender3D, Call<corvane_render3d_create>, LoadRender3D>
{
    using HandleArgument::HandleArgument;
};

template <>
struct Argument<CorvaneEngineMPR*>
    : HandleArgument<CorvaneEngineMPR, Call<corvane_engine_mpr_create>, LoadVolume<corvane_engine_mpr_init_data>>
{
    using HandleArgument::HandleArgument;
};

template <>
struct Argument<CorvaneRenderMPR*>
    : HandleArgument<CorvaneRenderMPR, Call<corvane_render_mpr_create>, LoadVolume<corvane_render_mpr_init_data>>
{
    using HandleArgument::HandleArgument;
};

template <>
struct Argument<CorvaneScene*>
    : HandleArgument<CorvaneScene, Call<corvane_scene_create>, LoadVolume<corvane_scene_set_volume>>
{
    using HandleArgument::HandleArgument;
};

// After a call: what the library put into records is freed, a handle that was destroyed is forgotten.
template <class Type>
void Finish(Argument<Type>& argument, Type passed, bool isDestroyed)
{
    if constexpr (kIsHandle<Type>)
    {
        if (isDestroyed && passed == argument.Get())
            argument.handle.release();
    }
    else if constexpr (std::is_same_v<Type, KsImageData*>)
        corvane_image_data_free(passed);
    else if constexpr (std::is_same_v<Type, KsMarkData*>)
        corvane_mark_data_free(passed);
    else if constexpr (std::is_same_v<Type, KsPalette*>)
        corvane_palette_free(passed);
}

// Calls a function with good arguments, changed by change(tuple).
//   returns  the status, or nothing from a function that has none
template <class Result, class... Types, class Change>
std::optional<CorvaneStatus> Run(Result (*function)(Types...), [[maybe_unused]] Handles handles, const Change& change)
{
    std::tuple<Argument<Types>...> good = {Argument<Types>(handles)...};
    std::tuple<Types...> arguments =
        std::apply([](auto&... each) { return std::tuple<Types...>(each.Get()...); }, good);
    change(arguments);
    std::optional<CorvaneStatus> status;
    if constexpr (std::is_same_v<Result, CorvaneStatus>)
    {
        status = std::apply(function, arguments);
        EXPECT_GE(*status, CORVANE_OK);
        EXPECT_LE(*status, CORVANE_ERROR_NO_STEP);
    }
    else if constexpr (std::is_same_v<Result, const char*>)
        EXPECT_NE(std::apply(function, arguments), nullptr);
    else if constexpr (std::is_void_v<Result>)
        std::apply(function, arguments);
    else
        Release(std::apply(function, arguments));
    [&]<size_t... n>(std::index_sequence<n...>)
    {
        (Finish<Types>(std::get<n>(good), std::get<n>(arguments), std::is_void_v<Result>), ...);
    }
    (std::index_sequence_for<Types...>());
    return status;
}

void ExpectError(std::optional<CorvaneStatus> status, CorvaneStatus expected)
{
    EXPECT_EQ(status.value_or(expected), expected);
}

// Drives one argument of a function.
template <size_t index, class Type, class Function>
void DriveArgument(const std::string& name, Function* function)
{
    SCOPED_TRACE("argument " + std::to_string(index));
    const auto put = [](Type value) { return [value](auto& arguments) { std::get<index>(arguments) = value; }; };
    if constexpr (kIsHandle<Type>)
    {
        ExpectError(Run(function, Handles::Loaded, put(nullptr)), CORVANE_ERROR_HANDLE);
        const Owned<CorvaneScene> scene(corvane_scene_create(CORVANE_C_INTERFACE));
        const Owned<CorvaneRenderMPR> other(corvane_render_mpr_create(CORVANE_C_INTERFACE));
        void* const wrong = std::is_same_v<Type, CorvaneScene*> ? static_cast<void*>(other.get()) : scene.get();
        ExpectError(Run(function, Handles::Loaded, put(static_cast<Type>(wrong))), CORVANE_ERROR_HANDLE);
    }
    else
    {
        if constexpr (std::is_pointer_v<Type>)
        {
            const std::optional<CorvaneStatus> status = Run(function, Handles::Loaded, put(nullptr));
            if (!kOptional.count({name, index}))
                ExpectError(status, CORVANE_ERROR_ARGUMENT);
            else
                EXPECT_EQ(*status, CORVANE_OK);
        }
        for (const Handles handles : {Handles::Loaded, Handles::Empty})
            for (auto& value : Values<Type>::Hostile())
            {
                auto stored = value;
                Run(function, handles, put(ArgumentOf<Type>(stored)));
            }
    }
}

template <class Result, class... Types>
void Drive(const std::string& name, Result (*function)(Types...))
{
    SCOPED_TRACE(name);
    Run(function, Handles::Loaded, [](auto&) {});
    Run(function, Handles::Empty, [](auto&) {});
    [&]<size_t... n>(std::index_sequence<n...>) { (DriveArgument<n, Types>(name, function), ...); }
    (std::index_sequence_for<Types...>());
}

struct Function
{
    const char* name;
    void (*drive)();
};

void PrintTo(const Function& function, std::ostream* stream) { *stream << function.name; }

#define CORVANE_FUNCTION(name) {#name, [] { Drive(#name, &name); }},
const Function kFunctions[] = {
#include "exported_functions.inc"
};

class EveryFunction : public testing::TestWithParam<Function>
{
};

TEST_P(EveryFunction, AnswersNullAndHostileArgumentsWithAnError) { GetParam().drive(); }

INSTANTIATE_TEST_SUITE_P(CInterface, EveryFunction, testing::ValuesIn(kFunctions),
                         [](const auto& info) { return std::string(info.param.name); });
} // namespace
