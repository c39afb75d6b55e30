#ifndef CORVANE_CAPI_ENGINE3D_HANDLE_H
#define CORVANE_CAPI_ENGINE3D_HANDLE_H

#include "corvane/Engine3D.h"
#include "handle.h"

struct CorvaneEngine3D : corvane::capi::Handle<corvane::capi::Kind::Engine3D, Engine3D>
{
};

#endif
