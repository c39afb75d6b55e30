#ifndef CORVANE_TESTS_ENGINE3D_APPEARANCE_STATE_H
#define CORVANE_TESTS_ENGINE3D_APPEARANCE_STATE_H

#include "corvane/Engine3D.h"

// What an engine keeps to itself: transfer functions of labels other than 0 are made, and tables are read, inside it.
namespace corvane::tests
{
// The engine's private operation; the renderers are not told.
bool UpdateTables(Engine3D& engine, const KsPalette& palette, int label);

// The same, and the renderers are told.
void SetPaletteOf(Engine3D& engine, const KsPalette& palette, int label);

const VolumePalette& TablesOf(const Engine3D& engine);
} // namespace corvane::tests

#endif
