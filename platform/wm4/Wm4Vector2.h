#pragma once

/// @file
/// Two-component vector.

#include <cmath>

namespace Wm4 {

/// A point, size or direction in the plane: two tightly packed components, trivially copyable, so that an array of
/// vectors is an array of numbers. A default-constructed vector is zero.
template <typename Real>
class Vector2 {
public:
    constexpr Vector2() = default;
    constexpr Vector2(Real xValue, Real yValue) : x(xValue), y(yValue) {}

    constexpr Real X() const { return x; }
    constexpr Real Y() const { return y; }

    /// Component 0 (x) or 1 (y); any other index is a programming error.
    constexpr Real operator[](int index) const { return index == 0 ? x : y; }
    constexpr Real& operator[](int index) { return index == 0 ? x : y; }

    constexpr bool operator==(const Vector2&) const = default;

    constexpr Vector2 operator+(const Vector2& v) const {
        return {static_cast<Real>(x + v.x), static_cast<Real>(y + v.y)};
    }
    constexpr Vector2 operator-(const Vector2& v) const {
        return {static_cast<Real>(x - v.x), static_cast<Real>(y - v.y)};
    }
    constexpr Vector2 operator*(Real s) const { return {static_cast<Real>(x * s), static_cast<Real>(y * s)}; }
    constexpr Vector2 operator/(Real s) const { return {static_cast<Real>(x / s), static_cast<Real>(y / s)}; }
    constexpr Vector2 operator-() const { return {static_cast<Real>(-x), static_cast<Real>(-y)}; }

    constexpr Vector2& operator+=(const Vector2& v) { return *this = *this + v; }
    constexpr Vector2& operator-=(const Vector2& v) { return *this = *this - v; }
    constexpr Vector2& operator*=(Real s) { return *this = *this * s; }

    constexpr Real Dot(const Vector2& v) const { return x * v.x + y * v.y; }
    /// The z component of the cross product of the two vectors: Dot with v turned a quarter turn clockwise.
    constexpr Real DotPerp(const Vector2& v) const { return x * v.y - y * v.x; }
    constexpr Real SquaredLength() const { return Dot(*this); }
    Real Length() const { return std::sqrt(SquaredLength()); }

    static const Vector2 ZERO;
    static const Vector2 ONE;
    static const Vector2 UNIT_X;
    static const Vector2 UNIT_Y;

    Real x{};
    Real y{};
};

template <typename Real>
constexpr Vector2<Real> Vector2<Real>::ZERO{Real(0), Real(0)};
template <typename Real>
constexpr Vector2<Real> Vector2<Real>::ONE{Real(1), Real(1)};
template <typename Real>
constexpr Vector2<Real> Vector2<Real>::UNIT_X{Real(1), Real(0)};
template <typename Real>
constexpr Vector2<Real> Vector2<Real>::UNIT_Y{Real(0), Real(1)};

template <typename Real>
constexpr Vector2<Real> operator*(Real s, const Vector2<Real>& v) {
    return v * s;
}

using Vector2f = Vector2<float>;
using Vector2d = Vector2<double>;

}  // namespace Wm4
