#ifndef CORVANE_CORVANE_C_H
#define CORVANE_CORVANE_C_H

// Corvane for C (C99) and for every language that can call C. Link corvane_c.
//
// Two layers, kept apart. Handles of the classes (corvane_c_engine3d.h, corvane_c_render3d.h, corvane_c_mpr.h) offer
// each operation of the C++ classes under a name of its own: what an operation does, and what it refuses, is said at
// the class of the same name. The scene (corvane_c_scene.h) is one volume with all that belongs to it, made from these
// classes, and needs few calls; begin there.
//
// What holds for every function:
//  - Each returns CORVANE_OK or what went wrong, see corvane_error_text; outputs are then left alone unless the comment
//    says otherwise. Null handles, null pointers and handles of another class are answered with an error. Only
//    functions named _create or _clone return a handle, or NULL, and functions named _destroy or _free return nothing
//    and do nothing with NULL.
//  - A handle does one call at a time: calls from several threads on one handle queue up, different handles run side by
//    side. Destroy a handle after the last call on it has returned. There is no other state.
//  - No C++ exception leaves a function.
//  - The caller's memory stays the caller's. Where a function keeps a pointer after it has returned, its comment says
//    how long the memory must live. A caller's buffer is given with the number of elements that it holds; one that is
//    too small is left alone and gives CORVANE_ERROR_BUFFER. Memory that the library allocates has a _free function.
//  - A rendering prints one line with its milliseconds to standard output, as the classes do.
//  - Flags are 0 or not 0. Lengths are mm, angles radians unless they are called degrees, points lie in patient space.
//  - Images are rows * columns elements, row by row, without gaps; volumes and labels x fastest, then y, then z.

#include "corvane_c_common.h"
#include "corvane_c_engine3d.h"
#include "corvane_c_mpr.h"
#include "corvane_c_render3d.h"
#include "corvane_c_scene.h"

#endif
