#ifndef CORVANE_RENDER3D_MARK_DUMP_H
#define CORVANE_RENDER3D_MARK_DUMP_H

#include "corvane/Records.h"

namespace corvane::render3d
{
// Writes the first four labels of every slice, zeros where there are fewer, to the diagnostic file "D:\mark.data".
// Support asks for it. Failures are silent.
void DumpMark(const KsVolumeMark& mark) noexcept;
} // namespace corvane::render3d

#endif
