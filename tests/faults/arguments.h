#ifndef CORVANE_TESTS_FAULTS_ARGUMENTS_H
#define CORVANE_TESTS_FAULTS_ARGUMENTS_H

#include "subjects.h"

#include <algorithm>
#include <iterator>

// Good arguments of every type that an exported operation takes, with memory of their own behind pointers; records
// stand in record_arguments.h.
namespace corvane::tests
{
// How an argument is kept: what is passed by reference or is a record is kept behind a pointer.
template <class Type>
struct KeptAs
{
    using Pointer = std::remove_cv_t<Type>;
};

template <class Type>
requires std::is_reference_v<Type>
struct KeptAs<Type>
{
    using Pointer = std::remove_reference_t<Type>*;
};

template <class Type>
requires std::is_class_v<Type>
struct KeptAs<Type>
{
    using Pointer = const Type*;
};

template <class Type>
using Kept = typename KeptAs<Type>::Pointer;

// What is the same for all: most arguments are no output and no object.
struct PlainArgument
{
    void Append(Seen&) {}
    void AppendObject(Seen&) {}
    bool IsEmpty() { return false; }
};

template <class Type>
struct Argument;

template <class Number>
requires std::is_arithmetic_v<Number> || std::is_enum_v<Number>
struct Argument<Number> : PlainArgument
{
    Number Get() const { return value; }

    Number value = Number(1); // a label, a count, the number of an attached volume, a plane, a flag
};

template <>
struct Argument<float> : PlainArgument
{
    float Get() const { return 9; } // mm, degrees, radians
};

template <>
struct Argument<uint32_t> : PlainArgument
{
    uint32_t Get() const { return value; }

    uint32_t value = 16; // rows or columns
};

template <>
struct Argument<size_t> : PlainArgument
{
    size_t Get() const { return kElements; }
};

template <>
struct Argument<KsRender> : PlainArgument
{
    KsRender Get() const { return KsRenderPerspective; }
};

template <>
struct Argument<KsMPRType> : PlainArgument
{
    KsMPRType Get() const { return KsMPRSagittal; }
};

// Objects and handles.
template <class Object>
requires(kIsClass<std::remove_const_t<Object>> || kIsHandle<Object>) struct Argument<Object*>
{
    Object* Get() { return subject.Get(); }
    void Append(Seen&) {}
    void AppendObject(Seen& seen)
    {
        if (!subject.Get())
            return;
        const Seen look = Look(*subject.Get());
        seen.insert(seen.end(), look.begin(), look.end());
    }
    bool IsEmpty() { return !subject.Get() || tests::IsEmpty(*subject.Get()); }

    Subject<std::remove_const_t<Object>> subject;
};

// Numbers to read: points, boxes, corners of a triangle again and again; labels; stored values.
template <class Real>
requires std::is_floating_point_v<Real>
struct Argument<const Real*> : PlainArgument
{
    Argument() : numbers(2 * kElements)
    {
        const Real repeated[] = {1, 2, 3, 14, 9, 6};
        for (size_t n = 0; n < numbers.size(); ++n)
            numbers[n] = repeated[n % 6];
    }
    const Real* Get() const { return numbers.data(); }

    std::vector<Real> numbers;
};

template <class Element>
requires std::is_integral_v<Element>
struct Argument<const Element*> : PlainArgument
{
    Argument() : elements(kElements)
    {
        for (size_t n = 0; n < kElements; ++n)
            elements[n] = Element(n % 3);
    }
    const Element* Get() const { return elements.data(); }

    std::vector<Element> elements;
};

// Numbers to write.
template <class Element>
requires std::is_arithmetic_v<Element> || std::is_enum_v<Element>
struct Argument<Element*> : PlainArgument
{
    Element* Get() { return elements.data(); }
    void Append(Seen& seen) { tests::Append(seen, elements.data(), elements.size()); }

    std::vector<Element> elements = std::vector<Element>(sizeof(Element) > 4 ? 32 : kElements, Element(0x5A));
};

template <>
struct Argument<float (*)[3]> : PlainArgument
{
    float (*Get())[3] { return corners; }
    void Append(Seen& seen) { tests::Append(seen, corners[0], 24); }

    float corners[8][3] = {};
};

template <>
struct Argument<KsVolumeMark**> : PlainArgument
{
    KsVolumeMark** Get() { return &mark; }
    void Append(Seen& seen) { seen.push_back(mark != nullptr); }

    KsVolumeMark* mark = nullptr;
};

// An argument as an operation's parameter.
template <class Type>
decltype(auto) Pass(Argument<Kept<Type>>& argument)
{
    if constexpr (std::is_reference_v<Type>)
        return static_cast<Type>(*argument.Get());
    else if constexpr (std::is_class_v<Type>)
        return Type(*argument.Get());
    else
        return argument.Get();
}
} // namespace corvane::tests

#endif
