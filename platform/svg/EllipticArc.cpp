#include "platform/svg/EllipticArc_p.h"
#include "platform/wm4/Wm4Math.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kt::svg {

namespace {

constexpr double sTurn = 2.0 * Wm4::Mathd::PI;
/// An angle this near to an end of the arc counts as on it, so that rounding never loses an extreme point.
constexpr double sAngleTolerance = 1e-9;
/// Rounding of end points, relative to the largest coordinate.
constexpr auto sEndPointRounding = static_cast<double>(std::numeric_limits<float>::epsilon());

}  // namespace

EllipticArc EllipticArc::fromEndPoints(const Wm4::Vector2<float>& start, const Wm4::Vector2<float>& radii,
                                       float rotation, float flags, const Wm4::Vector2<float>& end) {
    EllipticArc arc;
    const bool isLarge = flags == 1.0F || flags == 3.0F;
    const bool isSweep = flags >= 2.0F;
    const auto x0 = static_cast<double>(start.x);
    const auto y0 = static_cast<double>(start.y);
    const auto x1 = static_cast<double>(end.x);
    const auto y1 = static_cast<double>(end.y);
    double radiusX = std::abs(static_cast<double>(radii.x));
    double radiusY = std::abs(static_cast<double>(radii.y));
    const bool isFinite = std::isfinite(x0 + y0 + x1 + y1 + radiusX + radiusY + static_cast<double>(rotation));
    if (!isFinite || start == end || radiusX == 0.0 || radiusY == 0.0) {
        return arc;
    }
    arc.mRotation = static_cast<double>(rotation) * (Wm4::Mathd::PI / 180.0);
    const double cosine = std::cos(arc.mRotation);
    const double sine = std::sin(arc.mRotation);

    // Half the chord, in the ellipse's axes and in units of its radii: a unit circle through +-(u, v) is looked for.
    const double halfX = (x0 - x1) * 0.5;
    const double halfY = (y0 - y1) * 0.5;
    double u = (cosine * halfX + sine * halfY) / radiusX;
    double v = (cosine * halfY - sine * halfX) / radiusY;
    double length = std::hypot(u, v);
    // Near half a turn the centre hangs on the last digits of the end points; half a turn is what is meant then.
    const double largest = std::max({std::abs(x0), std::abs(y0), std::abs(x1), std::abs(y1)});
    arc.mIsHalfTurn = length >= 1.0 - sEndPointRounding * largest / std::min(radiusX, radiusY);
    if (arc.mIsHalfTurn) {
        radiusX *= length;
        radiusY *= length;
        u /= length;
        v /= length;
        length = 1.0;
    }
    // The centre lies across the chord, on the side that the flags choose.
    const double height = std::sqrt(std::max(0.0, (1.0 - length) * (1.0 + length)));
    const double side = (isLarge == isSweep ? -1.0 : 1.0) * height / length;
    const double centerU = side * v;
    const double centerV = -side * u;

    arc.mRadiusX = radiusX;
    arc.mRadiusY = radiusY;
    arc.mCenterX = cosine * centerU * radiusX - sine * centerV * radiusY + (x0 + x1) * 0.5;
    arc.mCenterY = sine * centerU * radiusX + cosine * centerV * radiusY + (y0 + y1) * 0.5;
    arc.mStartAngle = std::atan2(v - centerV, u - centerU);
    const double endAngle = std::atan2(-v - centerV, -u - centerU);
    arc.mSpan = endAngle - arc.mStartAngle;
    if (isSweep && arc.mSpan < 0.0) {
        arc.mSpan += sTurn;
    } else if (!isSweep && arc.mSpan > 0.0) {
        arc.mSpan -= sTurn;
    }
    return arc;
}

bool EllipticArc::contains(double angle) const {
    // Measured in the arc's own direction, brought into one turn.
    double delta = std::fmod(mSpan >= 0.0 ? angle - mStartAngle : mStartAngle - angle, sTurn);
    if (delta < 0.0) {
        delta += sTurn;
    }
    return delta <= std::abs(mSpan) + sAngleTolerance || delta >= sTurn - sAngleTolerance;
}

}  // namespace kt::svg
