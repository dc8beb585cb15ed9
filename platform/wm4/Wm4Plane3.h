#pragma once

/// @file
/// Plane in space.

#include "platform/wm4/Wm4Vector3.h"

namespace Wm4 {

/// The plane of the points X with Normal . X = Constant. Normal is a unit vector by convention; nothing enforces it.
template <typename Real>
class Plane3 {
public:
    constexpr Plane3() = default;
    constexpr Plane3(const Vector3<Real>& normal, Real constant) : Normal(normal), Constant(constant) {}

    constexpr bool operator==(const Plane3&) const = default;

    Vector3<Real> Normal{};
    Real Constant{};
};

using Plane3f = Plane3<float>;
using Plane3d = Plane3<double>;

}  // namespace Wm4
