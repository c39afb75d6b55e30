#ifndef CORVANE_TESTS_CAPI_HOSTILE_VALUES_H
#define CORVANE_TESTS_CAPI_HOSTILE_VALUES_H

#include "c_handles.h"

#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

// Good arguments for every type that the C interface takes, and hostile ones; hostile_records.h has those that point to
// records. Buffers hold 4096 elements.
namespace corvane::tests
{
constexpr size_t kElements = 4096;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

template <class Element>
Element* Buffer()
{
    static std::vector<Element> elements(kElements);
    return elements.data();
}

// The good value of a type, and its hostile ones. For a pointer these are what it points to.
template <class Type>
struct Values;

template <class Type>
struct Numbers
{
    using Stored = Type;
};

template <>
struct Values<float> : Numbers<float>
{
    static float Good() { return 1; }
    static std::vector<float> Hostile() { return {kNaN, kInfinity, -kInfinity, 0, -1, 0.05f, 3e38f, 1e-40f}; }
};

template <>
struct Values<int32_t> : Numbers<int32_t>
{
    static int32_t Good() { return 1; }
    static std::vector<int32_t> Hostile() { return {INT32_MIN, -1, 0, 4, 64, 100000, INT32_MAX}; }
};

template <>
struct Values<uint32_t> : Numbers<uint32_t> // rows, columns, versions
{
    static uint32_t Good() { return 16; }
    static std::vector<uint32_t> Hostile() { return {0, 1, 100000, INT32_MAX, UINT32_MAX}; }
};

template <>
struct Values<uint8_t> : Numbers<uint8_t>
{
    static uint8_t Good() { return 1; }
    static std::vector<uint8_t> Hostile() { return {0, 64, 255}; }
};

template <>
struct Values<size_t> : Numbers<size_t> // elements
{
    static size_t Good() { return kElements; }
    static std::vector<size_t> Hostile() { return {0, 1, 255, SIZE_MAX, SIZE_MAX / 2 + 1}; }
};

template <>
struct Values<KsRender> : Numbers<KsRender>
{
    static KsRender Good() { return KsRenderPerspective; }
    static std::vector<KsRender> Hostile() { return {KsRender(-1), KsRender(2), KsRender(INT32_MIN)}; }
};

template <>
struct Values<KsMPRType> : Numbers<KsMPRType>
{
    static KsMPRType Good() { return KsMPRCoronal; }
    static std::vector<KsMPRType> Hostile() { return {KsMPRType(0), KsMPRType(4), KsMPRType(INT32_MIN)}; }
};

// Points, boxes and outlines.
template <class Real>
struct RealArray
{
    using Stored = std::vector<Real>;
    static Stored Good() { return Stored(2 * kElements, Real(0.5)); }
    static std::vector<Stored> Hostile()
    {
        std::vector<Stored> arrays;
        for (const float value : {kNaN, kInfinity, -kInfinity, 3e38f, -1e-40f, 0.0f})
            arrays.push_back(Stored(2 * kElements, Real(value)));
        return arrays;
    }
};

template <>
struct Values<const float*> : RealArray<float>
{
};

template <>
struct Values<const double*> : RealArray<double>
{
};

// What is only written to, and bytes: any will do.
template <class Element>
struct Values<Element*>
{
    using Stored = std::vector<std::remove_const_t<Element>>;
    static Stored Good() { return Stored(kElements); }
    static std::vector<Stored> Hostile() { return {}; }
};

template <>
struct Values<const uint8_t*> : Values<uint8_t*>
{
    static std::vector<Stored> Hostile()
    {
        return {Stored(kElements, 63), Stored(kElements, 64), Stored(kElements, 255)};
    }
};

// A stored value as the argument of a function.
template <class Type>
Type ArgumentOf(typename Values<Type>::Stored& stored)
{
    if constexpr (!std::is_pointer_v<Type>)
        return stored;
    else if constexpr (requires { stored.data(); })
        return stored.data();
    else
        return &stored;
}
} // namespace corvane::tests

#endif
