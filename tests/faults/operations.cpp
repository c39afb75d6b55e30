#include "operations.h"

#include "record_arguments.h"

#include <tuple>
#include <utility>

namespace corvane::tests
{
namespace
{
Answer AnswerOf(bool done) { return done ? Answer::Done : Answer::Refused; }

// Calls an operation with its arguments, the object among them.
template <class Call, class... Arguments>
class AttemptOf : public Attempt
{
public:
    explicit AttemptOf(const Call& call) : call_(call) {}

    Answer Run() override { return std::apply(call_, arguments_); }

    Seen Outputs() override
    {
        Seen seen;
        std::apply([&](auto&... each) { (each.Append(seen), ...); }, arguments_);
        return seen;
    }

    Seen Objects() override
    {
        Seen seen;
        std::apply([&](auto&... each) { (each.AppendObject(seen), ...); }, arguments_);
        return seen;
    }

    bool IsEmpty() override
    {
        return std::apply([](auto&... each) { return (... || each.IsEmpty()); }, arguments_);
    }

    std::tuple<Arguments...>& Given() { return arguments_; }

private:
    Call call_;
    std::tuple<Arguments...> arguments_;
};

// Two neighbouring ints are the width and the height of an image.
template <class... Types, class Tuple>
void SizeImages([[maybe_unused]] Tuple& arguments)
{
    [&]<size_t... n>(std::index_sequence<n...>)
    {
        [[maybe_unused]] const auto size = [](auto& first, auto& second)
        {
            if constexpr (std::is_same_v<decltype(first), Argument<int>&> &&
                          std::is_same_v<decltype(second), Argument<int>&>)
                first.value = second.value = 16;
        };
        (size(std::get<n>(arguments), std::get<n + 1>(arguments)), ...);
    }
    (std::make_index_sequence<(sizeof...(Types) > 0 ? sizeof...(Types) - 1 : 0)>());
}

// Some functions take a version where others take rows, and a record that nobody has initialised yet.
template <class... Arguments>
void Suit(const std::string& name, std::tuple<Arguments...>& arguments)
{
    const bool takesVersion = name.ends_with("_create") || name == "corvane_check_interface";
    const bool initialises = name == "corvane_palette_init";
    const auto suit = [&](auto& argument)
    {
        if constexpr (std::is_same_v<decltype(argument), Argument<uint32_t>&>)
            argument.value = takesVersion ? CORVANE_C_INTERFACE : argument.value;
        else if constexpr (std::is_same_v<decltype(argument), Argument<KsPalette*>&>)
            if (initialises)
                corvane_palette_free(&argument.palette);
    };
    std::apply([&](auto&... each) { (suit(each), ...); }, arguments);
}

template <class... Arguments, class Call>
std::unique_ptr<Attempt> Make(const Call& call, const std::string& name = {})
{
    auto attempt = std::make_unique<AttemptOf<Call, Arguments...>>(call);
    SizeImages<Arguments...>(attempt->Given());
    Suit(name, attempt->Given());
    return attempt;
}

// The operation of a class among those of one name that has these parameters.
template <class Class, class Parameters>
struct Pick;

template <class Class, class... Types>
struct Pick<Class, void(Types...)>
{
    template <class Result>
    static std::function<std::unique_ptr<Attempt>()> Of(Result (Class::*operation)(Types...))
    {
        return [operation]
        {
            return Make<Argument<Class*>, Argument<Kept<Types>>...>(
                [operation](Argument<Class*>& object, Argument<Kept<Types>>&... arguments)
                {
                    const auto run = [&]() -> Result { return (object.Get()->*operation)(Pass<Types>(arguments)...); };
                    if constexpr (std::is_same_v<Result, bool> || std::is_pointer_v<Result>)
                        return AnswerOf(run());
                    else if constexpr (std::is_same_v<Result, int>)
                        return AnswerOf(run() > 0);
                    else
                    {
                        run();
                        return Answer::Silent;
                    }
                });
        };
    }

    static std::function<std::unique_ptr<Attempt>()> Of(void (*function)(Types...))
    {
        return [function]
        {
            return Make<Argument<Kept<Types>>...>(
                [function](Argument<Kept<Types>>&... arguments)
                {
                    function(Pass<Types>(arguments)...);
                    return Answer::Silent;
                });
        };
    }

    // Makes the object anew: loads it, or sees whether it became a copy.
    static std::function<std::unique_ptr<Attempt>()> Constructor()
    {
        return []
        {
            return Make<Argument<Class*>, Argument<Kept<Types>>...>(
                [](Argument<Class*>& object, Argument<Kept<Types>>&... arguments)
                {
                    object.subject.Make(Pass<Types>(arguments)...);
                    if constexpr (sizeof...(Types) == 0)
                        return AnswerOf(Load(*object.Get()));
                    else
                        return AnswerOf(!object.IsEmpty());
                });
        };
    }
};

template <class Class>
std::function<std::unique_ptr<Attempt>()> Destructor()
{
    return []
    {
        return Make<Argument<Class*>>(
            [](Argument<Class*>& object)
            {
                object.subject.End();
                return Answer::Silent;
            });
    };
}

// The handle that a function makes.
template <class Handle>
struct Made : PlainArgument
{
    void AppendObject(Seen& seen)
    {
        const Seen look = handle ? Look(*handle) : Seen();
        seen.insert(seen.end(), look.begin(), look.end());
    }

    Owned<Handle> handle;
};

// The handle that a function has ended is not ended again.
template <class... Arguments>
void Forget(Arguments&... arguments)
{
    [[maybe_unused]] const auto forget = [](auto& argument)
    {
        if constexpr (requires { argument.subject; })
            argument.subject.Let();
    };
    (forget(arguments), ...);
}

template <class Result, class... Types>
std::function<std::unique_ptr<Attempt>()> Function(const std::string& name, Result (*function)(Types...))
{
    if constexpr (std::is_pointer_v<Result> && !std::is_same_v<Result, const char*>)
    {
        using Handle = std::remove_pointer_t<Result>;
        const auto call = [function](Made<Handle>& made, Argument<Kept<Types>>&... arguments)
        {
            made.handle.reset(function(Pass<Types>(arguments)...));
            return AnswerOf(made.handle != nullptr);
        };
        return [name, call] { return Make<Made<Handle>, Argument<Kept<Types>>...>(call, name); };
    }
    else
    {
        const auto call = [function](Argument<Kept<Types>>&... arguments)
        {
            const auto run = [&]() -> Result { return function(Pass<Types>(arguments)...); };
            if constexpr (std::is_same_v<Result, CorvaneStatus>)
                return AnswerOf(run() == CORVANE_OK);
            else if constexpr (std::is_same_v<Result, const char*>)
                return AnswerOf(run());
            else
            {
                run();
                Forget(arguments...);
                return Answer::Silent;
            }
        };
        return [name, call] { return Make<Argument<Kept<Types>>...>(call, name); };
    }
}

std::string GroupOf(const std::string& name)
{
    if (const size_t end = name.find("::"); end != std::string::npos)
        return name.substr(0, end);
    for (const char* group :
         {"corvane_engine3d", "corvane_engine_mpr", "corvane_render3d", "corvane_render_mpr", "corvane_scene"})
        if (name.starts_with(std::string(group) + "_"))
            return group;
    return "corvane_c";
}
} // namespace

const std::vector<Operation>& AllOperations()
{
    static const std::vector<Operation> operations = []
    {
        std::vector<Operation> all;
        const auto add = [&](const std::string& name, std::function<std::unique_ptr<Attempt>()> prepare) {
            all.push_back({name, GroupOf(name), std::move(prepare)});
        };
#define CORVANE_OPERATION(Class, name, parameters)                                                                     \
    add(#Class "::" #name #parameters, Pick<Class, void parameters>::Of(&Class::name));
#define CORVANE_CONSTRUCTOR(Class, parameters)                                                                         \
    add(#Class "::" #Class #parameters, Pick<Class, void parameters>::Constructor());
#define CORVANE_DESTRUCTOR(Class) add(#Class "::~" #Class "()", Destructor<Class>());
#define CORVANE_FUNCTION(name) add(#name, Function(#name, &name));
#include "exported_operations.inc"
        return all;
    }();
    return operations;
}
} // namespace corvane::tests
