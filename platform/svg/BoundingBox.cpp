#include "platform/svg/BoundingBox.h"

#include <cmath>

namespace kt::svg {

bool BoundingBox::isValid() const {
    // Width and height overflow to infinity when the corners are finite but too far apart.
    return !isEmpty() && std::isfinite(getWidth()) && std::isfinite(getHeight()) &&
           (getWidth() > 0.0F || getHeight() > 0.0F);
}

void BoundingBox::addBox(const BoundingBox& box) {
    if (!box.isEmpty()) {
        addPoint(box.mMin);
        addPoint(box.mMax);
    }
}

void BoundingBox::addMargin(const Wm4::Vector2<float>& margin) {
    if (isEmpty() || std::isnan(margin.x) || std::isnan(margin.y)) {
        return;
    }
    mMin -= margin;
    mMax += margin;
}

void BoundingBox::translate(const Wm4::Vector2<float>& offset) {
    if (isEmpty() || std::isnan(offset.x) || std::isnan(offset.y)) {
        return;
    }
    mMin += offset;
    mMax += offset;
}

Wm4::Vector2<float> BoundingBox::getCenter() const {
    return isEmpty() ? Wm4::Vector2<float>::ZERO : (mMin + mMax) * 0.5F;
}

}  // namespace kt::svg
