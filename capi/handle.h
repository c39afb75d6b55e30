#ifndef CORVANE_CAPI_HANDLE_H
#define CORVANE_CAPI_HANDLE_H

#include "corvane/corvane_c.h"

#include <concepts>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>

namespace corvane::capi
{
// What a handle is a handle of; languages without pointer types mix them up.
enum class Kind : uint32_t
{
    Engine3D = 0x43563344,
    Render3D = 0x43565233,
    EngineMPR = 0x4356454d,
    RenderMPR = 0x4356524d,
    Scene = 0x43565343,
};

// An object of the library behind a C handle. Every handle begins with its kind.
template <Kind kind, class Class>
struct Handle
{
    using Object = Class;
    static constexpr Kind kKind = kind;

    const Kind held = kind;
    std::mutex oneCall;
    bool hasVolume = false; // tells a refusal from a call that comes too early
    Class object;
};

template <class AnyHandle>
bool IsHandle(const AnyHandle* handle)
{
    return handle && handle->held == AnyHandle::kKind;
}

// Runs the body of a function: no exception leaves it.
template <class Body>
CorvaneStatus Guarded(Body&& body) noexcept
{
    try
    {
        return body();
    }
    catch (const std::bad_alloc&)
    {
        return CORVANE_ERROR_MEMORY;
    }
    catch (const std::length_error&)
    {
        return CORVANE_ERROR_MEMORY;
    }
    catch (...)
    {
        return CORVANE_ERROR_REFUSED;
    }
}

// Runs an operation of a handle's object, one at a time. The operation returns a status, nothing, or false where the
// object refuses.
//   arguments  what is wrong with the arguments, or CORVANE_OK
template <class AnyHandle, class Operation>
CorvaneStatus OneCall(AnyHandle* handle, CorvaneStatus arguments, Operation&& operation) noexcept
{
    if (!IsHandle(handle))
        return CORVANE_ERROR_HANDLE;
    if (arguments != CORVANE_OK)
        return arguments;
    return Guarded(
        [&]() -> CorvaneStatus
        {
            const std::lock_guard lock(handle->oneCall);
            using Result = decltype(operation(handle->object));
            if constexpr (std::same_as<Result, void>)
                operation(handle->object);
            else if constexpr (std::same_as<Result, CorvaneStatus>)
                return operation(handle->object);
            else if (!operation(handle->object))
                return handle->hasVolume ? CORVANE_ERROR_REFUSED : CORVANE_ERROR_NO_VOLUME;
            return CORVANE_OK;
        });
}

// Loads a volume; what is said of it was checked before, so that a refusal means memory.
template <class AnyHandle, class Operation>
CorvaneStatus Load(AnyHandle* handle, CorvaneStatus arguments, Operation&& operation) noexcept
{
    return OneCall(handle, arguments,
                   [&](auto& object) -> CorvaneStatus
                   {
                       handle->hasVolume = false;
                       if (!operation(object))
                           return CORVANE_ERROR_MEMORY;
                       handle->hasVolume = true;
                       return CORVANE_OK;
                   });
}

// Makes a handle, or null.
//   isUsable  whether the new object got the memory that it needs
template <class AnyHandle, class IsUsable>
AnyHandle* Create(uint32_t interfaceVersion, IsUsable&& isUsable) noexcept
{
    if (corvane_check_interface(interfaceVersion) != CORVANE_OK)
        return nullptr;
    std::unique_ptr<AnyHandle> handle;
    Guarded(
        [&]() -> CorvaneStatus
        {
            handle = std::make_unique<AnyHandle>();
            if (!isUsable(handle->object))
                handle.reset();
            return CORVANE_OK;
        });
    return handle.release();
}

template <class AnyHandle>
void Destroy(AnyHandle* handle) noexcept
{
    if (IsHandle(handle))
        delete handle;
}
} // namespace corvane::capi

#endif
