#include "platform/svg/BoundingBox.h"

#include <algorithm>
#include <cmath>

namespace kt::svg {

BoundingBox::BoundingBox(const Wm4::Vector2<float>& corner0, const Wm4::Vector2<float>& corner1) {
    addPoint(corner0);
    addPoint(corner1);
}

bool BoundingBox::isValid() const {
    // Width and height overflow to infinity when the corners are finite but too far apart.
    return !isEmpty() && std::isfinite(getWidth()) && std::isfinite(getHeight()) &&
           (getWidth() > 0.0F || getHeight() > 0.0F);
}

void BoundingBox::addPoint(const Wm4::Vector2<float>& point) {
    if (std::isnan(point.x) || std::isnan(point.y)) {
        return;
    }
    mMin = {std::min(mMin.x, point.x), std::min(mMin.y, point.y)};
    mMax = {std::max(mMax.x, point.x), std::max(mMax.y, point.y)};
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
