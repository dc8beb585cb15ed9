#pragma once

/// @file
/// Axis-parallel box around points.

#include "platform/svg/ktSvgExport.h"
#include "platform/wm4/Wm4Math.h"
#include "platform/wm4/Wm4Vector2.h"

#include <algorithm>
#include <cmath>

namespace kt::svg {

/// The smallest axis-parallel box around the points added so far. Starts empty. Coordinates that are not numbers never
/// enter it.
class KT_SVG_API BoundingBox {
public:
    BoundingBox() = default;
    BoundingBox(const Wm4::Vector2<float>& corner0, const Wm4::Vector2<float>& corner1) {
        addPoint(corner0);
        addPoint(corner1);
    }

    /// True when the box holds points, has a width or a height, and both are finite.
    bool isValid() const;
    bool isEmpty() const { return !(mMin.x <= mMax.x && mMin.y <= mMax.y); }

    void addPoint(const Wm4::Vector2<float>& point) {
        if (!std::isnan(point.x) && !std::isnan(point.y)) {
            mMin = {std::min(mMin.x, point.x), std::min(mMin.y, point.y)};
            mMax = {std::max(mMax.x, point.x), std::max(mMax.y, point.y)};
        }
    }
    void addBox(const BoundingBox& box);
    /// Widens the box by the margin's x on its left and right and by its y on its lower and upper side. An empty box
    /// stays empty.
    void addMargin(const Wm4::Vector2<float>& margin);
    void translate(const Wm4::Vector2<float>& offset);

    const Wm4::Vector2<float>& getMinPoint() const { return mMin; }
    const Wm4::Vector2<float>& getMaxPoint() const { return mMax; }
    /// Centre of the box; zero when it is empty.
    Wm4::Vector2<float> getCenter() const;
    /// Width, height and size are 0 when the box is empty.
    float getWidth() const { return isEmpty() ? 0.0F : mMax.x - mMin.x; }
    float getHeight() const { return isEmpty() ? 0.0F : mMax.y - mMin.y; }
    Wm4::Vector2<float> getSize() const { return {getWidth(), getHeight()}; }

private:
    Wm4::Vector2<float> mMin{Wm4::Mathf::MAX_REAL, Wm4::Mathf::MAX_REAL};
    Wm4::Vector2<float> mMax{-Wm4::Mathf::MAX_REAL, -Wm4::Mathf::MAX_REAL};
};

}  // namespace kt::svg
