#ifndef CORVANE_CORE_VEC3_H
#define CORVANE_CORE_VEC3_H

#include <cmath>

namespace corvane::core
{
// A point or a direction.
template <class Real>
struct Vec3
{
    Real x, y, z;
};

using Vec3f = Vec3<float>;
using Vec3d = Vec3<double>;

// Sums run x, y, z from left to right everywhere: the order is part of the result.
template <class Real>
constexpr Vec3<Real> operator+(Vec3<Real> a, Vec3<Real> b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

template <class Real>
constexpr Vec3<Real> operator-(Vec3<Real> a, Vec3<Real> b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

template <class Real>
constexpr Vec3<Real> operator*(Real s, Vec3<Real> a)
{
    return {s * a.x, s * a.y, s * a.z};
}

template <class Real>
constexpr Real Dot(Vec3<Real> a, Vec3<Real> b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <class Real>
constexpr Vec3<Real> Cross(Vec3<Real> a, Vec3<Real> b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

template <class Real>
Real Length(Vec3<Real> a)
{
    return std::sqrt(Dot(a, a));
}

// The zero vector has no direction: its unit vector is not a number.
template <class Real>
Vec3<Real> Unit(Vec3<Real> a)
{
    const Real length = Length(a);
    return {a.x / length, a.y / length, a.z / length};
}

constexpr Vec3d ToDouble(Vec3f a) { return {a.x, a.y, a.z}; }
constexpr Vec3f ToFloat(Vec3d a) { return {float(a.x), float(a.y), float(a.z)}; }

// Three numbers of a record, in either direction.
template <class Real>
constexpr Vec3<Real> VecOf(const Real* numbers)
{
    return {numbers[0], numbers[1], numbers[2]};
}

template <class Real>
constexpr void Store(Vec3<Real> a, Real* numbers)
{
    numbers[0] = a.x;
    numbers[1] = a.y;
    numbers[2] = a.z;
}
} // namespace corvane::core

#endif
