#ifndef CORVANE_TESTS_FAULTS_SUBJECTS_H
#define CORVANE_TESTS_FAULTS_SUBJECTS_H

#include "corvane/Corvane.h"
#include "tests/capi/c_handles.h"

#include <optional>
#include <type_traits>

// The objects that operations are tried on: loaded, with labels, and as far as they take them with an attached volume
// and a blend image.
namespace corvane::tests
{
constexpr size_t kElements = 4096; // voxels of the volumes, and elements of every buffer

const TestVolume& MainVolume();   // 32 x 16 x 8 voxels: two blocks
const TestVolume& SecondVolume(); // of the same sizes
TestLabels& Labels();             // of three labels, with voxels that are cut away
VolumePalette Tables();
KsBlendImage BlendImage();

// What can be seen of an object, or what an operation has put out: numbers that are compared bit for bit.
using Seen = std::vector<double>;

template <class Number>
void Append(Seen& seen, const Number* numbers, size_t count)
{
    for (size_t n = 0; n < count; ++n) // what is no number equals itself here
        seen.push_back(double(numbers[n]) == double(numbers[n]) ? double(numbers[n]) : -1e300);
}

void Append(Seen& seen, const PnImageParam& param);

// Gives an object its volume, and what belongs to it; false when it has not got it.
bool Load(Engine3D& engine);
bool Load(Render3D& render);
bool Load(EngineMPR& engine);
bool Load(RenderMPR& render);
bool Load(CorvaneEngine3D& engine);
bool Load(CorvaneRender3D& render);
bool Load(CorvaneEngineMPR& engine);
bool Load(CorvaneRenderMPR& render);
bool Load(CorvaneScene& scene);
bool Furnish(Engine3D& engine);
bool Furnish(Render3D& render);
bool Furnish(EngineMPR& engine);
bool Furnish(RenderMPR& render);
bool Furnish(CorvaneEngine3D& engine);
bool Furnish(CorvaneRender3D& render);
bool Furnish(CorvaneEngineMPR& engine);
bool Furnish(CorvaneRenderMPR& render);
bool Furnish(CorvaneScene& scene);

// Everything that can be seen of an object: pictures of every kind, boxes, planes, labels, palettes.
Seen Look(Engine3D& engine);
Seen Look(Render3D& render);
Seen Look(EngineMPR& engine);
Seen Look(RenderMPR& render);
Seen Look(CorvaneEngine3D& engine);
Seen Look(CorvaneRender3D& render);
Seen Look(CorvaneEngineMPR& engine);
Seen Look(CorvaneRenderMPR& render);
Seen Look(CorvaneScene& scene);

// Whether an object is without a volume.
bool IsEmpty(Engine3D& engine);
bool IsEmpty(Render3D& render);
bool IsEmpty(EngineMPR& engine);
bool IsEmpty(RenderMPR& render);
bool IsEmpty(CorvaneEngine3D& engine);
bool IsEmpty(CorvaneRender3D& render);
bool IsEmpty(CorvaneEngineMPR& engine);
bool IsEmpty(CorvaneRenderMPR& render);
bool IsEmpty(CorvaneScene& scene);

inline CorvaneEngine3D* Create(CorvaneEngine3D*) { return corvane_engine3d_create(CORVANE_C_INTERFACE); }
inline CorvaneRender3D* Create(CorvaneRender3D*) { return corvane_render3d_create(CORVANE_C_INTERFACE); }
inline CorvaneEngineMPR* Create(CorvaneEngineMPR*) { return corvane_engine_mpr_create(CORVANE_C_INTERFACE); }
inline CorvaneRenderMPR* Create(CorvaneRenderMPR*) { return corvane_render_mpr_create(CORVANE_C_INTERFACE); }
inline CorvaneScene* Create(CorvaneScene*) { return corvane_scene_create(CORVANE_C_INTERFACE); }

template <class Object>
constexpr bool kIsClass = std::is_same_v<Object, Engine3D> || std::is_same_v<Object, Render3D> ||
                          std::is_same_v<Object, EngineMPR> || std::is_same_v<Object, RenderMPR>;

template <class Object>
constexpr bool kIsHandle = std::is_same_v<Object, CorvaneEngine3D> || std::is_same_v<Object, CorvaneRender3D> ||
                           std::is_same_v<Object, CorvaneEngineMPR> || std::is_same_v<Object, CorvaneRenderMPR> ||
                           std::is_same_v<Object, CorvaneScene>;

// An object as a member: the classes have operations to replace, but no destructor to do so.
template <class Object>
struct Boxed
{
    template <class... Arguments>
    explicit Boxed(Arguments&... arguments) : object(arguments...)
    {
    }

    Object object;
};

// An object of a class, or behind a handle, that can be ended and made anew.
template <class Object>
class Subject
{
public:
    Subject()
    {
        if constexpr (kIsClass<Object>)
            held_.emplace();
        else
            held_.reset(tests::Create(static_cast<Object*>(nullptr)));
        if (Get() && Load(*Get()))
            Furnish(*Get());
    }

    Object* Get()
    {
        if constexpr (kIsClass<Object>)
            return held_ ? &held_->object : nullptr;
        else
            return held_.get();
    }
    void End() { held_.reset(); }
    Object* Let() { return held_.release(); }

    template <class... Arguments>
    void Make(Arguments&... arguments)
    {
        held_.reset();
        held_.emplace(arguments...);
    }

private:
    std::conditional_t<kIsClass<Object>, std::optional<Boxed<Object>>, Owned<Object>> held_;
};
} // namespace corvane::tests

#endif
