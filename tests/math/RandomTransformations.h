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

/// Four by four matrix of long double for column vectors, the reference for every mapping.
using Reference = std::array<std::array<long double, 4>, 4>;
using ReferencePoint = std::array<long double, 3>;

enum class Kind : std::uint8_t { Identity, Translation, Uniform, Mirror, AxisScale, NonUniform, General };

constexpr Kind sKinds[] = {Kind::Identity,  Kind::Translation, Kind::Uniform, Kind::Mirror,
                           Kind::AxisScale, Kind::NonUniform,  Kind::General};

/// The map of a transformation from what its queries say.
template <typename Real>
Reference makeReference(const kt::ktGenericTransformation<Real>& transformation) {
    Reference reference{};
    for (int row = 0; row < 3; ++row) {
        auto& entries = reference.at(static_cast<std::size_t>(row));
        for (int column = 0; column < 3; ++column) {
            const auto scale =
                static_cast<long double>(transformation.IsRSMatrix() ? transformation.GetScale()[column] : 1);
            entries.at(static_cast<std::size_t>(column)) =
                scale * static_cast<long double>(transformation.GetMatrix()[row][column]);
        }
        entries[3] = static_cast<long double>(transformation.GetTranslate()[row]);
    }
    reference[3][3] = 1;
    return reference;
}

inline Reference multiply(const Reference& a, const Reference& b) {
    Reference product{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t index = 0; index < 4; ++index) {
                product.at(row).at(column) += a.at(row).at(index) * b.at(index).at(column);
            }
        }
    }
    return product;
}

template <typename Real>
ReferencePoint widen(const Wm4::Vector3<Real>& point) {
    return {static_cast<long double>(point.x), static_cast<long double>(point.y), static_cast<long double>(point.z)};
}

/// The weight is 1 for points and 0 for directions.
template <typename Real>
ReferencePoint applyReference(const Reference& reference, const Wm4::Vector3<Real>& point, long double weight = 1) {
    const auto [x, y, z] = widen(point);
    ReferencePoint result{};
    for (std::size_t row = 0; row < 3; ++row) {
        const auto& entries = reference.at(row);
        result.at(row) = entries[0] * x + entries[1] * y + entries[2] * z + entries[3] * weight;
    }
    return result;
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

    std::vector<Wm4::Vector3<Real>> points(std::size_t count) {
        std::vector<Wm4::Vector3<Real>> result(count);
        for (auto& entry : result) {
            entry = point();
        }
        return result;
    }

    /// From a random unit quaternion.
    Wm4::Matrix3<Real> rotation() {
        Real q[4];
        Real squared = 0;
        for (Real& entry : q) {
            entry = number(-1, 1);
            squared += entry * entry;
        }
        for (Real& entry : q) {
            entry /= std::sqrt(squared);
        }
        const auto [w, x, y, z] = q;
        return {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
                2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
                2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y)};
    }

    /// Invertible, well conditioned and with positive determinant: the diagonal outweighs the rest.
    Wm4::Matrix3<Real> generalMatrix() {
        Wm4::Matrix3<Real> matrix;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                matrix[row][column] = row == column ? number(2, 3) : number(Real(-0.8), Real(0.8));
            }
        }
        return matrix;
    }

    kt::ktGenericTransformation<Real> transformation(Kind kind) {
        kt::ktGenericTransformation<Real> result;
        if (kind == Kind::Identity) {
            return result;
        }
        result.SetTranslate(point());
        if (kind == Kind::Translation) {
            return result;
        }
        if (kind == Kind::General) {
            result.SetMatrix(generalMatrix());
            return result;
        }
        if (kind != Kind::AxisScale) {
            result.SetRotate(rotation());
        }
        const Real s = number(Real(0.5), 2);
        if (kind == Kind::Uniform) {
            result.SetUniformScale(s);
        } else if (kind == Kind::Mirror) {
            result.SetScale({sign() * s, sign() * s, sign() * s});
        } else {
            result.SetScale({sign() * s, sign() * number(Real(0.5), 2), number(Real(0.5), 2)});
        }
        return result;
    }

private:
    Real sign() { return number(-1, 1) < 0 ? Real(-1) : Real(1); }

    std::mt19937 mEngine{20251226};
};

/// Rounding allowance of a few chained operations on numbers up to a few thousand.
template <typename Real>
constexpr double sAllowance = sizeof(Real) == sizeof(float) ? 2e-3 : 1e-11;

}  // namespace ktTest
