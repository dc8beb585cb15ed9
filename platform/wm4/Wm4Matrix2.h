#pragma once

/// @file
/// Two by two matrix.

#include "platform/wm4/Wm4Vector2.h"

namespace Wm4 {

/// A row-major 2 by 2 matrix that acts on column vectors: (M v).x = m00 v.x + m01 v.y. Trivially copyable and tightly
/// packed. A default-constructed matrix is zero.
template <typename Real>
class Matrix2 {
public:
    constexpr Matrix2() = default;
    constexpr Matrix2(Real m00, Real m01, Real m10, Real m11) : mEntry{{m00, m01}, {m10, m11}} {}

    constexpr const Real* operator[](int row) const { return mEntry[row]; }
    constexpr Real* operator[](int row) { return mEntry[row]; }
    constexpr Real operator()(int row, int column) const { return mEntry[row][column]; }
    constexpr Real& operator()(int row, int column) { return mEntry[row][column]; }

    constexpr bool operator==(const Matrix2&) const = default;

    constexpr Vector2<Real> operator*(const Vector2<Real>& v) const {
        return {mEntry[0][0] * v.x + mEntry[0][1] * v.y, mEntry[1][0] * v.x + mEntry[1][1] * v.y};
    }
    constexpr Matrix2 operator*(const Matrix2& m) const {
        return {mEntry[0][0] * m.mEntry[0][0] + mEntry[0][1] * m.mEntry[1][0],
                mEntry[0][0] * m.mEntry[0][1] + mEntry[0][1] * m.mEntry[1][1],
                mEntry[1][0] * m.mEntry[0][0] + mEntry[1][1] * m.mEntry[1][0],
                mEntry[1][0] * m.mEntry[0][1] + mEntry[1][1] * m.mEntry[1][1]};
    }

    static const Matrix2 ZERO;
    static const Matrix2 IDENTITY;

private:
    Real mEntry[2][2]{};
};

template <typename Real>
constexpr Matrix2<Real> Matrix2<Real>::ZERO{};
template <typename Real>
constexpr Matrix2<Real> Matrix2<Real>::IDENTITY{Real(1), Real(0), Real(0), Real(1)};

using Matrix2f = Matrix2<float>;
using Matrix2d = Matrix2<double>;

}  // namespace Wm4
