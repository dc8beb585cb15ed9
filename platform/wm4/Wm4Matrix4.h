#pragma once

/// @file
/// Four by four matrix.

namespace Wm4 {

/// A row-major 4 by 4 matrix, trivially copyable and tightly packed. A default-constructed matrix is zero.
template <typename Real>
class Matrix4 {
public:
    constexpr Matrix4() = default;

    constexpr const Real* operator[](int row) const { return mEntry[row]; }
    constexpr Real* operator[](int row) { return mEntry[row]; }
    constexpr Real operator()(int row, int column) const { return mEntry[row][column]; }
    constexpr Real& operator()(int row, int column) { return mEntry[row][column]; }

    constexpr bool operator==(const Matrix4&) const = default;

    static constexpr Matrix4 makeDiagonal(Real value) {
        Matrix4 matrix;
        for (int index = 0; index < 4; ++index) {
            matrix.mEntry[index][index] = value;
        }
        return matrix;
    }

    static const Matrix4 ZERO;
    static const Matrix4 IDENTITY;

private:
    Real mEntry[4][4]{};
};

template <typename Real>
constexpr Matrix4<Real> Matrix4<Real>::ZERO{};
template <typename Real>
constexpr Matrix4<Real> Matrix4<Real>::IDENTITY = Matrix4<Real>::makeDiagonal(Real(1));

using Matrix4f = Matrix4<float>;
using Matrix4d = Matrix4<double>;

}  // namespace Wm4
