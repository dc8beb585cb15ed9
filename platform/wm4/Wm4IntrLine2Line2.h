#pragma once

/// @file
/// Intersection of two lines in the plane.

#include "platform/wm4/Wm4Export.h"
#include "platform/wm4/Wm4Line2.h"

namespace Wm4 {

/// Intersects two lines. Lines count as parallel when the absolute perpendicular dot product of their directions is at
/// most Math<Real>::ZERO_TOLERANCE; parallel lines are the same line when the perpendicular distance of their origins,
/// measured the same way, is within that tolerance too. An intersection whose coordinates are not numbers is no point.
template <typename Real>
class WM4_API IntrLine2Line2 {
public:
    enum IntersectionType : int {
        IT_EMPTY = 0,
        IT_POINT = 1,
        IT_LINE = 4,
    };

    /// Copies both lines; nothing is computed before Find().
    IntrLine2Line2(const Line2<Real>& line0, const Line2<Real>& line1);

    /// Computes the intersection; true when there is a point or a common line.
    bool Find();

    /// The kind that the last Find() found: IT_EMPTY before the first.
    int GetIntersectionType() const { return mIntersectionType; }

    /// The intersection point; meaningful only when the type is IT_POINT.
    const Vector2<Real>& GetPoint() const { return mPoint; }

private:
    Line2<Real> mLine0;
    Line2<Real> mLine1;
    int mIntersectionType = IT_EMPTY;
    Vector2<Real> mPoint{};
};

extern template class IntrLine2Line2<float>;
extern template class IntrLine2Line2<double>;

}  // namespace Wm4
