#ifndef CORVANE_CAPI_SCENE_HANDLE_H
#define CORVANE_CAPI_SCENE_HANDLE_H

#include "handle.h"
#include "scene.h"

struct CorvaneScene : corvane::capi::Handle<corvane::capi::Kind::Scene, corvane::capi::Scene>
{
};

namespace corvane::capi
{
// An operation that needs a volume.
template <class Operation>
CorvaneStatus OnVolume(CorvaneScene* handle, CorvaneStatus arguments, Operation&& operation)
{
    return OneCall(handle, arguments,
                   [&](Scene& scene) -> CorvaneStatus
                   {
                       using Result = decltype(operation(scene));
                       if (!scene.HasVolume())
                           return CORVANE_ERROR_NO_VOLUME;
                       if constexpr (std::same_as<Result, CorvaneStatus>)
                           return operation(scene);
                       else if constexpr (std::same_as<Result, bool>)
                           return operation(scene) ? CORVANE_OK : CORVANE_ERROR_REFUSED;
                       else
                           operation(scene);
                       return CORVANE_OK;
                   });
}
} // namespace corvane::capi

#endif
