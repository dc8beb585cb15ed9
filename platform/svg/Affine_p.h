#pragma once

/// @file
/// Affine maps in double precision, for products of many transforms.

#include "platform/svg/Transform.h"
#include "platform/wm4/Wm4Vector2.h"

#include <algorithm>
#include <cmath>

namespace kt::svg {

/// The map (x, y) -> (mXx x + mXy y + mX, mYx x + mYy y + mY). Default: the identity.
struct Affine {
    constexpr Affine() = default;
    constexpr Affine(double xx, double xy, double yx, double yy, double x, double y)
        : mXx(xx), mXy(xy), mYx(yx), mYy(yy), mX(x), mY(y) {}
    constexpr explicit Affine(const Transform& t)
        : mXx(static_cast<double>(t.mMatrix(0, 0))),
          mXy(static_cast<double>(t.mMatrix(0, 1))),
          mYx(static_cast<double>(t.mMatrix(1, 0))),
          mYy(static_cast<double>(t.mMatrix(1, 1))),
          mX(static_cast<double>(t.mTranslation.x)),
          mY(static_cast<double>(t.mTranslation.y)) {}

    constexpr double mapX(double x, double y) const { return mXx * x + mXy * y + mX; }
    constexpr double mapY(double x, double y) const { return mYx * x + mYy * y + mY; }

    /// The map that applies inner first.
    constexpr Affine operator*(const Affine& inner) const {
        return {mXx * inner.mXx + mXy * inner.mYx, mXx * inner.mXy + mXy * inner.mYy, mYx * inner.mXx + mYy * inner.mYx,
                mYx * inner.mXy + mYy * inner.mYy, mapX(inner.mX, inner.mY),          mapY(inner.mX, inner.mY)};
    }

    constexpr bool isTranslation() const { return mXx == 1.0 && mXy == 0.0 && mYx == 0.0 && mYy == 1.0; }
    bool isFinite() const {
        // Not-finite terms survive a sum of products with zero: 0 * inf is not a number.
        const double sum = 0.0 * mXx + 0.0 * mXy + 0.0 * mYx + 0.0 * mYy + 0.0 * mX + 0.0 * mY;
        return sum == 0.0;
    }
    /// How much longer a vector gets at most: the larger singular value.
    double getScale() const {
        const double sum = mXx * mXx + mXy * mXy + mYx * mYx + mYy * mYy;
        const double determinant = mXx * mYy - mXy * mYx;
        return std::sqrt(0.5 * (sum + std::sqrt(std::max(0.0, (sum - 2.0 * determinant) * (sum + 2.0 * determinant)))));
    }

    double mXx = 1.0;
    double mXy = 0.0;
    double mYx = 0.0;
    double mYy = 1.0;
    double mX = 0.0;
    double mY = 0.0;
};

}  // namespace kt::svg
