#pragma once

/// @file
/// Elliptic arc by its centre.

#include "platform/wm4/Wm4Vector2.h"

namespace kt::svg {

/// The arc centre + R(rotation) (radiusX cos t, radiusY sin t) for t from the start angle over the span, made from the
/// end points of a path's arc command as SVG defines it: radii that are too small grow until the ellipse reaches both
/// ends.
class EllipticArc {
public:
    /// @param rotation  of the ellipse's x axis, in degrees.
    /// @param flags     1 large arc + 2 sweep.
    static EllipticArc fromEndPoints(const Wm4::Vector2<float>& start, const Wm4::Vector2<float>& radii, float rotation,
                                     float flags, const Wm4::Vector2<float>& end);

    /// False when the command draws a straight line or nothing.
    bool isCurved() const { return mRadiusX > 0.0 && mRadiusY > 0.0; }
    /// Whether the angle (radians, of the ellipse's parameter) lies on the arc, its ends included.
    bool contains(double angle) const;

    double mCenterX = 0.0;
    double mCenterY = 0.0;
    double mRadiusX = 0.0;
    double mRadiusY = 0.0;
    double mRotation = 0.0;    ///< radians
    double mStartAngle = 0.0;  ///< radians
    double mSpan = 0.0;        ///< radians, signed
    /// The ends lie opposite each other, within rounding, or the radii had to grow until they do.
    bool mIsHalfTurn = false;
};

}  // namespace kt::svg
