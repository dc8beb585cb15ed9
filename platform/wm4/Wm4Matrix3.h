#pragma once

/// @file
/// Three by three matrix.

#include "platform/wm4/Wm4Vector3.h"

namespace Wm4 {

/// A row-major 3 by 3 matrix that acts on column vectors: (M v).x = m00 v.x + m01 v.y + m02 v.z. Trivially copyable and
/// tightly packed. A default-constructed matrix is zero.
template <typename Real>
class Matrix3 {
public:
    constexpr Matrix3() = default;
    constexpr Matrix3(Real m00, Real m01, Real m02, Real m10, Real m11, Real m12, Real m20, Real m21, Real m22)
        : mEntry{{m00, m01, m02}, {m10, m11, m12}, {m20, m21, m22}} {}

    constexpr const Real* operator[](int row) const { return mEntry[row]; }
    constexpr Real* operator[](int row) { return mEntry[row]; }
    constexpr Real operator()(int row, int column) const { return mEntry[row][column]; }
    constexpr Real& operator()(int row, int column) { return mEntry[row][column]; }

    constexpr Vector3<Real> GetRow(int row) const { return {mEntry[row][0], mEntry[row][1], mEntry[row][2]}; }
    constexpr Vector3<Real> GetColumn(int column) const {
        return {mEntry[0][column], mEntry[1][column], mEntry[2][column]};
    }
    constexpr void SetColumn(int column, const Vector3<Real>& v) {
        mEntry[0][column] = v.x;
        mEntry[1][column] = v.y;
        mEntry[2][column] = v.z;
    }

    constexpr bool operator==(const Matrix3&) const = default;

    constexpr Vector3<Real> operator*(const Vector3<Real>& v) const {
        return {mEntry[0][0] * v.x + mEntry[0][1] * v.y + mEntry[0][2] * v.z,
                mEntry[1][0] * v.x + mEntry[1][1] * v.y + mEntry[1][2] * v.z,
                mEntry[2][0] * v.x + mEntry[2][1] * v.y + mEntry[2][2] * v.z};
    }
    constexpr Matrix3 operator*(const Matrix3& m) const {
        Matrix3 product;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                product.mEntry[row][column] = mEntry[row][0] * m.mEntry[0][column] +
                                              mEntry[row][1] * m.mEntry[1][column] +
                                              mEntry[row][2] * m.mEntry[2][column];
            }
        }
        return product;
    }
    constexpr Matrix3 Transpose() const {
        return {mEntry[0][0], mEntry[1][0], mEntry[2][0], mEntry[0][1], mEntry[1][1],
                mEntry[2][1], mEntry[0][2], mEntry[1][2], mEntry[2][2]};
    }

    static const Matrix3 ZERO;
    static const Matrix3 IDENTITY;

private:
    Real mEntry[3][3]{};
};

template <typename Real>
constexpr Matrix3<Real> Matrix3<Real>::ZERO{};
template <typename Real>
constexpr Matrix3<Real> Matrix3<Real>::IDENTITY{Real(1), Real(0), Real(0), Real(0), Real(1),
                                                Real(0), Real(0), Real(0), Real(1)};

using Matrix3f = Matrix3<float>;
using Matrix3d = Matrix3<double>;

}  // namespace Wm4
