#pragma once

/// @file
/// Line in the plane.

#include "platform/wm4/Wm4Vector2.h"

namespace Wm4 {

/// The points Origin + t Direction. Direction is a unit vector by convention; nothing enforces it.
template <typename Real>
class Line2 {
public:
    constexpr Line2() = default;
    constexpr Line2(const Vector2<Real>& origin, const Vector2<Real>& direction)
        : Origin(origin), Direction(direction) {}

    Vector2<Real> Origin{};
    Vector2<Real> Direction{};
};

using Line2f = Line2<float>;
using Line2d = Line2<double>;

}  // namespace Wm4
