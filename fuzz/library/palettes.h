#ifndef CORVANE_FUZZ_LIBRARY_PALETTES_H
#define CORVANE_FUZZ_LIBRARY_PALETTES_H

#include "session.h"

namespace corvane::fuzz
{
// A transfer function: points in any order, none, or fewer than it says where that is less than nothing.
KsPalette MakePalette(Session& session);

// Lookup tables of some labels as a host may give them: anywhere, without tables, of a size below 0.
VolumePalette MakeTables(Session& session);

// One that has a table often, or any other number.
int MakeLabel(Session& session);
} // namespace corvane::fuzz

#endif
