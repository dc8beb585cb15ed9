#pragma once

/// @file
/// Numeric constants shared by the geometry types.

#include <limits>

namespace Wm4 {

/// Constants of one floating-point type. All are compile-time constants, so they may be used while other
/// libraries initialise their own static objects.
template <typename Real>
struct Math;

template <>
struct Math<float> {
    /// Below this, lengths and determinants count as zero.
    static constexpr float ZERO_TOLERANCE = 1e-6F;
    static constexpr float MAX_REAL = std::numeric_limits<float>::max();
    static constexpr float PI = 3.14159265358979323846F;
    static constexpr float WM4_PI = PI;
};

template <>
struct Math<double> {
    /// Below this, lengths and determinants count as zero.
    static constexpr double ZERO_TOLERANCE = 1e-8;
    static constexpr double MAX_REAL = std::numeric_limits<double>::max();
    static constexpr double PI = 3.14159265358979323846;
    static constexpr double WM4_PI = PI;
};

using Mathf = Math<float>;
using Mathd = Math<double>;

}  // namespace Wm4
