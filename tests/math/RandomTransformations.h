#pragma once

/// @file
/// Random transformations and an independent computation of what they do.

#include "math/ktGenericTransformation.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace ktTest {

/// A point of long double, in which the reference for every mapping is computed.
using ReferencePoint = std::array<long double, 3>;

enum class Kind : std::uint8_t { Identity, Translation, Uniform, Mirror, AxisScale, NonUniform, General };

constexpr Kind sKinds[] = {Kind::Identity,  Kind::Translation, Kind::Uniform, Kind::Mirror,
                           Kind::AxisScale, Kind::NonUniform,  Kind::General};

template <typename Real>
ReferencePoint widen(const Wm4::Vector3<Real>& point) {
    return {static_cast<long double>(point.x), static_cast<long double>(point.y), static_cast<long double>(point.z)};
}

/// The image of a point (weight 1) or direction (weight 0) from what the queries of a transformation say.
template <typename Real>
ReferencePoint mapReference(const kt::ktGenericTransformation<Real>& map, const ReferencePoint& in,
                            long double weight) {
    const ReferencePoint scale = map.IsRSMatrix() ? widen(map.GetScale()) : ReferencePoint{1, 1, 1};
    ReferencePoint out = widen(map.GetTranslate());
    for (std::size_t row = 0; row < 3; ++row) {
        const ReferencePoint entries = widen(map.GetMatrix().GetRow(static_cast<int>(row)));
        out.at(row) = out.at(row) * weight + entries[0] * scale[0] * in[0] + entries[1] * scale[1] * in[1] +
                      entries[2] * scale[2] * in[2];
    }
    return out;
}

template <typename Real>
long double measureDistance(const Wm4::Vector3<Real>& point, const ReferencePoint& expected) {
    const auto [x, y, z] = widen(point);
    return std::hypot(x - expected[0], y - expected[1], z - expected[2]);
}

template <typename Real>
class RandomTransformations {
public:
    Real number(Real low, Real high) { return std::uniform_real_distribution<Real>(low, high)(mEngine); }
    Wm4::Vector3<Real> point() { return {number(-10, 10), number(-10, 10), number(-10, 10)}; }
    Wm4::Vector3<Real> unitVector() {
        const Wm4::Vector3<Real> v = point();
        return v / v.Length();
    }
    /// With columns that are a right-handed set of unit vectors.
    Wm4::Matrix3<Real> rotation() {
        const Wm4::Vector3<Real> x = unitVector();
        Wm4::Vector3<Real> y = unitVector().Cross(x);
        y = y / y.Length();
        const Wm4::Vector3<Real> z = x.Cross(y);
        return {x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z};
    }
    /// Invertible, well conditioned and with positive determinant: the diagonal outweighs the rest.
    Wm4::Matrix3<Real> generalMatrix() {
        const auto far = [this] { return number(2, 3); };
        const auto near = [this] { return number(Real(-0.8), Real(0.8)); };
        return {far(), near(), near(), near(), far(), near(), near(), near(), far()};
    }
    kt::ktGenericTransformation<Real> transformation(Kind kind) {
        kt::ktGenericTransformation<Real> result;
        if (kind == Kind::Identity) {
            return result;
        }
        result.SetTranslate(point());
        if (kind == Kind::General) {
            result.SetMatrix(generalMatrix());
        } else if (kind != Kind::AxisScale && kind != Kind::Translation) {
            result.SetRotate(rotation());
        }
        const Real s = number(Real(0.5), 2);
        if (kind == Kind::Uniform) {
            result.SetUniformScale(s);
        } else if (kind == Kind::Mirror) {
            result.SetScale({sign() * s, sign() * s, sign() * s});
        } else if (kind == Kind::AxisScale || kind == Kind::NonUniform) {
            result.SetScale({sign() * s, sign() * number(Real(0.5), 2), number(Real(0.5), 2)});
        }
        return result;
    }

private:
    Real sign() { return number(-1, 1) < 0 ? Real(-1) : Real(1); }

    std::mt19937 mEngine{20251226};
};

}  // namespace ktTest
