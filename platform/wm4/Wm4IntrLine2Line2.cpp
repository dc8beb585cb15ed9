#include "platform/wm4/Wm4IntrLine2Line2.h"

#include "platform/wm4/Wm4Math.h"

namespace Wm4 {

template <typename Real>
IntrLine2Line2<Real>::IntrLine2Line2(const Line2<Real>& line0, const Line2<Real>& line1)
    : mLine0(line0), mLine1(line1) {}

template <typename Real>
bool IntrLine2Line2<Real>::Find() {
    mIntersectionType = IT_EMPTY;
    const Vector2<Real> difference = mLine1.Origin - mLine0.Origin;
    const Real dotPerp = mLine0.Direction.DotPerp(mLine1.Direction);

    if (std::abs(dotPerp) > Math<Real>::ZERO_TOLERANCE) {
        const Real parameter = difference.DotPerp(mLine1.Direction) / dotPerp;
        mPoint = mLine0.Origin + mLine0.Direction * parameter;
        // Infinite or undefined input yields coordinates that are not numbers: no point.
        if (!std::isnan(mPoint.x) && !std::isnan(mPoint.y)) {
            mIntersectionType = IT_POINT;
        }
    } else if (std::abs(difference.DotPerp(mLine1.Direction)) <= Math<Real>::ZERO_TOLERANCE) {
        mIntersectionType = IT_LINE;
    }
    return mIntersectionType != IT_EMPTY;
}

template class IntrLine2Line2<float>;
template class IntrLine2Line2<double>;

}  // namespace Wm4
