#pragma once

/// @file
/// Affine map of the plane.

#include "platform/wm4/Wm4Matrix2.h"
#include "platform/wm4/Wm4Vector2.h"

#include <cmath>

namespace kt::svg {

/// The affine map p -> mMatrix p + mTranslation on column vectors. Default: the identity.
struct Transform {
    Wm4::Matrix2<float> mMatrix = Wm4::Matrix2<float>::IDENTITY;
    Wm4::Vector2<float> mTranslation{};

    static constexpr Transform makeTranslation(const Wm4::Vector2<float>& offset) {
        return {Wm4::Matrix2<float>::IDENTITY, offset};
    }
    /// Rotation by angle (radians, counter-clockwise where y points up), then uniform scale, then translation.
    static Transform makeTranslationRotationScale(const Wm4::Vector2<float>& offset, float angle, float scale) {
        const float sine = std::sin(angle) * scale;
        const float cosine = std::cos(angle) * scale;
        return {Wm4::Matrix2<float>(cosine, -sine, sine, cosine), offset};
    }

    constexpr Wm4::Vector2<float> operator*(const Wm4::Vector2<float>& point) const {
        return mMatrix * point + mTranslation;
    }
    /// The map that applies inner first and this map last.
    constexpr Transform operator*(const Transform& inner) const {
        return {mMatrix * inner.mMatrix, *this * inner.mTranslation};
    }

    constexpr bool operator==(const Transform&) const = default;
};

}  // namespace kt::svg
