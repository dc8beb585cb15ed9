#pragma once

/// @file
/// Three-component vector.

#include <cmath>

namespace Wm4 {

/// A point, direction or colour of three tightly packed components (12 bytes of float, 3 of unsigned char), trivially
/// copyable, so that an array of vectors is an array of numbers. A default-constructed vector is zero.
template <typename Real>
class Vector3 {
public:
    constexpr Vector3() = default;
    constexpr Vector3(Real xValue, Real yValue, Real zValue) : x(xValue), y(yValue), z(zValue) {}

    constexpr Real X() const { return x; }
    constexpr Real Y() const { return y; }
    constexpr Real Z() const { return z; }

    /// Component 0 (x), 1 (y) or 2 (z); any other index is a programming error.
    constexpr Real operator[](int index) const { return index == 0 ? x : (index == 1 ? y : z); }
    constexpr Real& operator[](int index) { return index == 0 ? x : (index == 1 ? y : z); }

    constexpr bool operator==(const Vector3&) const = default;

    constexpr Vector3 operator+(const Vector3& v) const { return make(x + v.x, y + v.y, z + v.z); }
    constexpr Vector3 operator-(const Vector3& v) const { return make(x - v.x, y - v.y, z - v.z); }
    constexpr Vector3 operator*(Real s) const { return make(x * s, y * s, z * s); }
    constexpr Vector3 operator/(Real s) const { return make(x / s, y / s, z / s); }
    constexpr Vector3 operator-() const { return make(-x, -y, -z); }

    constexpr Vector3& operator+=(const Vector3& v) { return *this = *this + v; }
    constexpr Vector3& operator-=(const Vector3& v) { return *this = *this - v; }
    constexpr Vector3& operator*=(Real s) { return *this = *this * s; }

    constexpr Real Dot(const Vector3& v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr Vector3 Cross(const Vector3& v) const {
        return make(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
    }
    constexpr Real SquaredLength() const { return Dot(*this); }
    Real Length() const { return std::sqrt(SquaredLength()); }

    static const Vector3 ZERO;
    static const Vector3 ONE;
    static const Vector3 UNIT_X;
    static const Vector3 UNIT_Y;
    static const Vector3 UNIT_Z;

    Real x{};
    Real y{};
    Real z{};

private:
    // Arithmetic on small integer types happens in int; this brings the result back.
    template <typename Wide>
    static constexpr Vector3 make(Wide a, Wide b, Wide c) {
        return {static_cast<Real>(a), static_cast<Real>(b), static_cast<Real>(c)};
    }
};

template <typename Real>
constexpr Vector3<Real> Vector3<Real>::ZERO{Real(0), Real(0), Real(0)};
template <typename Real>
constexpr Vector3<Real> Vector3<Real>::ONE{Real(1), Real(1), Real(1)};
template <typename Real>
constexpr Vector3<Real> Vector3<Real>::UNIT_X{Real(1), Real(0), Real(0)};
template <typename Real>
constexpr Vector3<Real> Vector3<Real>::UNIT_Y{Real(0), Real(1), Real(0)};
template <typename Real>
constexpr Vector3<Real> Vector3<Real>::UNIT_Z{Real(0), Real(0), Real(1)};

template <typename Real>
constexpr Vector3<Real> operator*(Real s, const Vector3<Real>& v) {
    return v * s;
}

using Vector3f = Vector3<float>;
using Vector3d = Vector3<double>;

}  // namespace Wm4
