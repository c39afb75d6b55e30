#include "appearance_state.h"

#include "engine3d/state.h"

#include <gtest/gtest.h>

namespace corvane::tests
{
namespace
{
// Explicit instantiations may name private members: the friend functions hand them out.
template <class Tag, auto Member>
struct HandOut
{
    friend auto MemberOf(Tag) { return Member; }
};

struct State
{
    friend auto MemberOf(State);
};
template struct HandOut<State, &Engine3D::state_>;

struct Update
{
    friend auto MemberOf(Update);
};
template struct HandOut<Update, &Engine3D::UpateVolumePalette>;
} // namespace

bool UpdateTables(Engine3D& engine, const KsPalette& palette, int label)
{
    return (engine.*MemberOf(Update{}))(palette, label);
}

void SetPaletteOf(Engine3D& engine, const KsPalette& palette, int label)
{
    EXPECT_TRUE(UpdateTables(engine, palette, label));
    (engine.*MemberOf(State{}))->ForwardPalette();
}

const VolumePalette& TablesOf(const Engine3D& engine) { return (engine.*MemberOf(State{}))->tables.Records(); }
} // namespace corvane::tests
