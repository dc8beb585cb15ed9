#include "math/ktGenericTransformation.h"

#include "math/ktPointArrayMapping_p.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace kt {

namespace {

using Wm4::Math;
using Wm4::Matrix3;
using Wm4::Matrix4;
using Wm4::Plane3;
using Wm4::Vector3;

/// Tolerance of comparisons and decompositions, in double for both element types.
constexpr double sTolerance = 1e-6;
/// The bound of what counts as finite, for both element types.
constexpr double sLargest = std::numeric_limits<double>::max();

template <typename Real>
bool haveSameBits(const Matrix3<Real>& a, const Matrix3<Real>& b) {
    using Bits = std::conditional_t<sizeof(Real) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    using Entries = std::array<Bits, 9>;
    return std::bit_cast<Entries>(a) == std::bit_cast<Entries>(b);
}

template <typename Real>
bool isIdentityMatrix(const Matrix3<Real>& matrix) {
    return haveSameBits(matrix, Matrix3<Real>::IDENTITY);
}

template <typename Real>
bool haveEqualComponents(const Vector3<Real>& v) {
    return v.x == v.y && v.x == v.z;
}

template <typename Real>
bool areClose(Real a, Real b) {
    return std::abs(static_cast<double>(a) - static_cast<double>(b)) < sTolerance;
}

template <typename Real>
bool areClose(const Matrix3<Real>& a, const Matrix3<Real>& b) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            if (!areClose(a[row][column], b[row][column])) {
                return false;
            }
        }
    }
    return true;
}

/// Whether the squared distance is within the tolerance. Widened before subtracting: in single precision the square of
/// 0.001 would fall below the tolerance.
template <typename Real>
bool areClose(const Vector3<Real>& a, const Vector3<Real>& b) {
    const Vector3<double> difference(static_cast<double>(a.x) - static_cast<double>(b.x),
                                     static_cast<double>(a.y) - static_cast<double>(b.y),
                                     static_cast<double>(a.z) - static_cast<double>(b.z));
    return difference.SquaredLength() < sTolerance;
}

/// Coordinates x, y and z, each one number or a vector of them, mapped in place by a matrix; in the order of operations
/// of the product of matrix and vector.
template <typename Real, typename Value>
[[gnu::always_inline]] inline void multiply(const Matrix3<Real>& matrix, Value& x, Value& y, Value& z) {
    const Value mappedX = matrix(0, 0) * x + matrix(0, 1) * y + matrix(0, 2) * z;
    const Value mappedY = matrix(1, 0) * x + matrix(1, 1) * y + matrix(1, 2) * z;
    const Value mappedZ = matrix(2, 0) * x + matrix(2, 1) * y + matrix(2, 2) * z;
    x = mappedX;
    y = mappedY;
    z = mappedZ;
}

/// matrix (scale * X) + translate.
template <typename Real>
struct ForwardStep {
    Matrix3<Real> mMatrix;
    Vector3<Real> mScale;
    Vector3<Real> mTranslate;

    template <typename Value>
    [[gnu::always_inline]] inline void operator()(Value& x, Value& y, Value& z) const {
        x = mScale.x * x;
        y = mScale.y * y;
        z = mScale.z * z;
        multiply(mMatrix, x, y, z);
        x = x + mTranslate.x;
        y = y + mTranslate.y;
        z = z + mTranslate.z;
    }
};

/// matrix (Y - translate), each component then multiplied by three factors, one after the other.
template <typename Real>
struct BackwardStep {
    Vector3<Real> mTranslate;
    Matrix3<Real> mMatrix;
    Vector3<Real> mFactors[3];

    template <typename Value>
    [[gnu::always_inline]] inline void operator()(Value& x, Value& y, Value& z) const {
        x = x - mTranslate.x;
        y = y - mTranslate.y;
        z = z - mTranslate.z;
        multiply(mMatrix, x, y, z);
        for (const Vector3<Real>& factor : mFactors) {
            x = x * factor.x;
            y = y * factor.y;
            z = z * factor.z;
        }
    }
};

template <typename Real>
Vector3<Real> multiplyComponents(const Vector3<Real>& a, const Vector3<Real>& b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

/// matrix diag(scale).
template <typename Real>
Matrix3<Real> scaleColumns(Matrix3<Real> matrix, const Vector3<Real>& scale) {
    for (int column = 0; column < 3; ++column) {
        matrix.SetColumn(column, matrix.GetColumn(column) * scale[column]);
    }
    return matrix;
}

/// diag(scale) matrix.
template <typename Real>
Matrix3<Real> scaleRows(const Vector3<Real>& scale, const Matrix3<Real>& matrix) {
    return scaleColumns(matrix.Transpose(), scale).Transpose();
}

/// Whether diag(scale) matrix = matrix diag(scale).
template <typename Real>
bool commutes(const Vector3<Real>& scale, const Matrix3<Real>& matrix) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            if (row != column && matrix[row][column] != Real(0) && scale[row] != scale[column]) {
                return false;
            }
        }
    }
    return true;
}

/// Cofactors of the first row, from which the determinant and the inverse start.
template <typename Real>
Vector3<Real> computeFirstCofactors(const Matrix3<Real>& m) {
    return {m[1][1] * m[2][2] - m[1][2] * m[2][1], m[1][2] * m[2][0] - m[1][0] * m[2][2],
            m[1][0] * m[2][1] - m[1][1] * m[2][0]};
}

template <typename Real>
Real computeDeterminant(const Matrix3<Real>& m) {
    return m.GetRow(0).Dot(computeFirstCofactors(m));
}

/// The inverse, or the zero matrix when the determinant is too small. Intended: the determinant itself is tested, not
/// its absolute value, so that a mirror is inverted only when its determinant is close to minus 1. Scenes were placed
/// with that result, and a mirror of another size has never been undone.
template <typename Real>
Matrix3<Real> invert(const Matrix3<Real>& m) {
    const Vector3<Real> cofactors = computeFirstCofactors(m);
    const Real determinant = m.GetRow(0).Dot(cofactors);
    if (determinant == Real(0)) {
        return Matrix3<Real>::ZERO;
    }
    const Real inverse = Real(1) / determinant;
    if (determinant < Math<Real>::ZERO_TOLERANCE &&
        !(std::abs(Real(1) / inverse - inverse) <= Math<Real>::ZERO_TOLERANCE)) {
        return Matrix3<Real>::ZERO;
    }
    return {cofactors.x * inverse,
            (m[0][2] * m[2][1] - m[0][1] * m[2][2]) * inverse,
            (m[0][1] * m[1][2] - m[0][2] * m[1][1]) * inverse,
            cofactors.y * inverse,
            (m[0][0] * m[2][2] - m[0][2] * m[2][0]) * inverse,
            (m[0][2] * m[1][0] - m[0][0] * m[1][2]) * inverse,
            cofactors.z * inverse,
            (m[0][1] * m[2][0] - m[0][0] * m[2][1]) * inverse,
            (m[0][0] * m[1][1] - m[0][1] * m[1][0]) * inverse};
}

/// v at unit length; zero when it has no length or so little that its reciprocal is not finite.
template <typename Real>
Vector3<Real> normalizeOrZero(const Vector3<Real>& v) {
    const Real length = v.Length();
    if (length == Real(0) || static_cast<double>(Real(1) / length) > sLargest) {
        return Vector3<Real>::ZERO;
    }
    return v / length;
}

/// Stands for the point that an all-zero scale cannot give.
template <typename Real>
constexpr Vector3<Real> sLargestPoint{Math<Real>::MAX_REAL, Math<Real>::MAX_REAL, Math<Real>::MAX_REAL};

template <typename Real>
bool isFinite(const Vector3<Real>& v) {
    const auto inRange = [](Real value) {
        return static_cast<double>(value) >= -sLargest && static_cast<double>(value) <= sLargest;
    };
    return inRange(v.x) && inRange(v.y) && inRange(v.z);
}

/// The linear part of a 4 by 4 matrix as rotation times scale, as far as it is one.
template <typename Real>
struct RotationAndScale {
    Matrix3<Real> rotation;
    Vector3<Real> scale = Vector3<Real>::ONE;
    bool isRS = false;
    bool isUniform = true;
};

template <typename Real>
bool isOrthonormal(const Matrix3<Real>& matrix) {
    const Matrix3<Real> inverse = invert(matrix);
    for (int index = 0; index < 3; ++index) {
        if (!areClose(matrix.GetColumn(index), inverse.GetRow(index))) {
            return false;
        }
    }
    return true;
}

/// Intended: the products are compared without taking their absolute value, so strongly negative ones pass. Matrices of
/// old scenes whose axes open a little count as rotations by it.
template <typename Real>
bool haveSmallDotProducts(const Matrix3<Real>& matrix) {
    const auto isSmall = [&matrix](int first, int second) {
        return sTolerance > static_cast<double>(matrix.GetColumn(first).Dot(matrix.GetColumn(second)));
    };
    return isSmall(0, 1) && isSmall(0, 2) && isSmall(1, 2);
}

template <typename Real>
RotationAndScale<Real> decompose(const Matrix3<Real>& linear) {
    RotationAndScale<Real> parts;
    for (int column = 0; column < 3; ++column) {
        parts.rotation.SetColumn(column, normalizeOrZero(linear.GetColumn(column)));
    }
    if (!isOrthonormal(parts.rotation)) {
        return parts;
    }
    if (computeDeterminant(parts.rotation) < Real(0)) {
        // A negative x scale carries the mirror.
        parts.rotation.SetColumn(0, -parts.rotation.GetColumn(0));
    }
    for (int column = 0; column < 3; ++column) {
        parts.scale[column] = parts.rotation.GetColumn(column).Dot(linear.GetColumn(column));
    }
    parts.isRS = haveSmallDotProducts(parts.rotation);
    parts.isUniform = areClose(parts.scale.y, parts.scale.x) && areClose(parts.scale.z, parts.scale.y);
    return parts;
}

}  // namespace

template <typename Real>
void ktGenericTransformation<Real>::MakeUnitScale() {
    mScale = Vector3<Real>::ONE;
    mIsUniformScale = true;
}

template <typename Real>
void ktGenericTransformation<Real>::SetRotate(const Matrix3<Real>& rotate) {
    mMatrix = rotate;
    mIsRSMatrix = true;
    recomputeIsIdentity();
}

template <typename Real>
void ktGenericTransformation<Real>::SetMatrix(const Matrix3<Real>& matrix) {
    mMatrix = matrix;
    mIsRSMatrix = false;
    mIsUniformScale = false;
    recomputeIsIdentity();
}

template <typename Real>
void ktGenericTransformation<Real>::SetTranslate(const Vector3<Real>& translate) {
    mTranslate = translate;
    recomputeIsIdentity();
}

template <typename Real>
void ktGenericTransformation<Real>::SetScale(const Vector3<Real>& scale) {
    mScale = scale;
    mIsUniformScale = haveEqualComponents(mScale);
    recomputeIsIdentity();
}

template <typename Real>
void ktGenericTransformation<Real>::SetUniformScale(Real scale) {
    mScale = Vector3<Real>(scale, scale, scale);
    mIsUniformScale = true;
    recomputeIsIdentity();
}

template <typename Real>
void ktGenericTransformation<Real>::recomputeIsIdentity() {
    mIsIdentity = mTranslate == Vector3<Real>::ZERO && mScale == Vector3<Real>::ONE && isIdentityMatrix(mMatrix);
}

template <typename Real>
bool ktGenericTransformation<Real>::IsFinite() const {
    return isFinite(mTranslate) && isFinite(mScale) && isFinite(mMatrix.GetRow(0)) && isFinite(mMatrix.GetRow(1)) &&
           isFinite(mMatrix.GetRow(2));
}

template <typename Real>
Real ktGenericTransformation<Real>::GetNorm() const {
    if (mIsRSMatrix) {
        const auto [smallest, largest] = std::minmax({std::abs(mScale.x), std::abs(mScale.y), std::abs(mScale.z)});
        if (largest != Real(1) || smallest != Real(1)) {
            return largest;
        }
    }
    const auto sumRow = [this](int row) {
        return std::abs(mMatrix[row][0]) + std::abs(mMatrix[row][1]) + std::abs(mMatrix[row][2]);
    };
    return std::max({sumRow(0), sumRow(1), sumRow(2)});
}

template <typename Real>
void ktGenericTransformation<Real>::ApplyForward(int count, const Vector3<Real>* in, Vector3<Real>* out,
                                                 bool applyTranslation) const {
    if (count <= 0) {
        return;
    }
    const auto size = static_cast<std::size_t>(count);
    if (mIsIdentity) {
        std::memmove(out, in, size * sizeof(*in));
        return;
    }
    // Multiplying by 1 and adding -0.0 changes no bit of any number; +0.0 would change -0.0.
    const Vector3<Real> nothing(-Real(0), -Real(0), -Real(0));
    impl::mapPoints(
        ForwardStep<Real>{mMatrix, mIsRSMatrix ? mScale : Vector3<Real>::ONE, applyTranslation ? mTranslate : nothing},
        size, in, out);
}

template <typename Real>
Vector3<Real> ktGenericTransformation<Real>::divideByScale(const Vector3<Real>& v) const {
    const Real inverse = Real(1) / (mScale.x * mScale.y * mScale.z);
    return {v.x * mScale.y * mScale.z * inverse, v.y * mScale.x * mScale.z * inverse,
            v.z * mScale.x * mScale.y * inverse};
}

template <typename Real>
Vector3<Real> ktGenericTransformation<Real>::applyInverseLinear(const Vector3<Real>& difference) const {
    if (!mIsRSMatrix) {
        return invert(mMatrix) * difference;
    }
    if (!mIsUniformScale) {
        return divideByScale(mMatrix.Transpose() * difference);
    }
    if (mScale.x == Real(0)) {
        return sLargestPoint<Real>;
    }
    return (mMatrix.Transpose() * difference) * (Real(1) / mScale.x);
}

template <typename Real>
void ktGenericTransformation<Real>::ApplyInverse(int count, const Vector3<Real>* in, Vector3<Real>* out) const {
    if (count <= 0) {
        return;
    }
    const auto size = static_cast<std::size_t>(count);
    if (mIsIdentity) {
        std::memmove(out, in, size * sizeof(*in));
        return;
    }
    if (IsUniformScale() && mScale.x == Real(0)) {
        std::fill_n(out, size, sLargestPoint<Real>);
        return;
    }
    const auto& one = Vector3<Real>::ONE;
    BackwardStep<Real> step{mTranslate, mIsRSMatrix ? mMatrix.Transpose() : invert(mMatrix), {one, one, one}};
    if (IsUniformScale()) {
        step.mFactors[0] = one * (Real(1) / mScale.x);
    } else if (mIsRSMatrix) {
        // The factors of divideByScale().
        step.mFactors[0] = {mScale.y, mScale.x, mScale.x};
        step.mFactors[1] = {mScale.z, mScale.z, mScale.y};
        step.mFactors[2] = one * (Real(1) / (mScale.x * mScale.y * mScale.z));
    }
    impl::mapPoints(step, size, in, out);
}

template <typename Real>
Plane3<Real> ktGenericTransformation<Real>::ApplyForward(const Plane3<Real>& plane) const {
    if (mIsIdentity) {
        return plane;
    }
    if (IsUniformScale()) {
        const Vector3<Real> normal = mMatrix * plane.Normal;
        return {normal, mScale.x * plane.Constant + normal.Dot(mTranslate)};
    }
    const Vector3<Real> direction =
        mIsRSMatrix ? mMatrix * divideByScale(plane.Normal) : invert(mMatrix).Transpose() * plane.Normal;
    const Real factor = Real(1) / direction.Length();
    const Vector3<Real> normal = direction * factor;
    return {normal, factor * plane.Constant + normal.Dot(mTranslate)};
}

template <typename Real>
Vector3<Real> ktGenericTransformation<Real>::ApplyNormal(const Vector3<Real>& normal) const {
    ktGenericTransformation inverse;
    Inverse(inverse);
    return normalizeOrZero(inverse.linearPart().Transpose() * normal);
}

template <typename Real>
void ktGenericTransformation<Real>::Inverse(ktGenericTransformation& out) const {
    if (mIsIdentity) {
        out = *this;
        return;
    }
    ktGenericTransformation result;
    if (IsUniformScale()) {
        const Real inverse = Real(1) / mScale.x;
        result.mMatrix = mMatrix.Transpose();
        result.mScale = {inverse, inverse, inverse};
        result.mTranslate = (result.mMatrix * mTranslate) * -inverse;
    } else if (mIsRSMatrix &&
               haveEqualComponents(Vector3<Real>(std::abs(mScale.x), std::abs(mScale.y), std::abs(mScale.z)))) {
        // A mirror: with the product of the signs in the scale, what is left in the matrix stays a rotation.
        const Vector3<Real> signs(std::copysign(Real(1), mScale.x), std::copysign(Real(1), mScale.y),
                                  std::copysign(Real(1), mScale.z));
        const Real sign = signs.x * signs.y * signs.z;
        const Real inverse = sign / std::abs(mScale.x);
        result.mMatrix = scaleRows(signs * sign, mMatrix.Transpose());
        result.mScale = {inverse, inverse, inverse};
        result.mTranslate = (result.mMatrix * mTranslate) * -inverse;
    } else {
        result.mMatrix = invert(mMatrix);
        for (int column = 0; mIsRSMatrix && column < 3; ++column) {
            result.mMatrix.SetColumn(column, divideByScale(mMatrix.GetRow(column)));
        }
        result.mTranslate = -(result.mMatrix * mTranslate);
        result.mIsRSMatrix = false;
        result.mIsUniformScale = false;
    }
    result.recomputeIsIdentity();
    out = result;
}

template <typename Real>
void ktGenericTransformation<Real>::Product(const ktGenericTransformation& a, const ktGenericTransformation& b) {
    if (a.mIsIdentity) {
        *this = b;
        return;
    }
    if (b.mIsIdentity) {
        *this = a;
        return;
    }
    ktGenericTransformation result;
    result.mTranslate = a.ApplyForward(b.mTranslate);
    const bool areRS = a.mIsRSMatrix && b.mIsRSMatrix;
    const bool isRotated = !isIdentityMatrix(a.mMatrix);
    if (areRS && (a.mIsUniformScale || (!isRotated && commutes(a.mScale, b.mMatrix)))) {
        result.mMatrix = isRotated ? a.mMatrix * b.mMatrix : b.mMatrix;
        result.mScale = multiplyComponents(a.mScale, b.mScale);
        result.mIsUniformScale = (a.mIsUniformScale && b.mIsUniformScale) || haveEqualComponents(result.mScale);
    } else {
        result.mMatrix = a.linearPart() * b.linearPart();
        result.mIsRSMatrix = false;
        result.mIsUniformScale = false;
    }
    result.recomputeIsIdentity();
    *this = result;
}

template <typename Real>
Matrix3<Real> ktGenericTransformation<Real>::linearPart() const {
    return mIsRSMatrix ? scaleColumns(mMatrix, mScale) : mMatrix;
}

template <typename Real>
void ktGenericTransformation<Real>::GetHomogeneous(Matrix4<Real>& matrix) const {
    const Matrix3<Real> linear = linearPart();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            matrix[row][column] = linear[column][row];
        }
        matrix[row][3] = Real(0);
        matrix[3][row] = mTranslate[row];
    }
    matrix[3][3] = Real(1);
}

template <typename Real>
void ktGenericTransformation<Real>::FromHomogeneousMatrix(const Matrix4<Real>& matrix, bool transposed) {
    Matrix3<Real> linear;
    Vector3<Real> translate;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            linear[row][column] = transposed ? matrix[column][row] : matrix[row][column];
        }
        translate[row] = transposed ? matrix[3][row] : matrix[row][3];
    }

    MakeIdentity();
    if (!areClose(translate, Vector3<Real>::ZERO)) {
        SetTranslate(translate);
    }
    const RotationAndScale<Real> parts = decompose(linear);
    if (!parts.isRS) {
        SetMatrix(linear);
        return;
    }
    if (areClose(linear, Matrix3<Real>::IDENTITY)) {
        return;
    }
    if (!areClose(parts.rotation, Matrix3<Real>::IDENTITY)) {
        SetRotate(parts.rotation);
    }
    if (!parts.isUniform) {
        SetScale(parts.scale);
    } else if (std::abs(static_cast<double>(parts.scale.x) - 1.0) > sTolerance) {
        SetUniformScale(parts.scale.x);
    }
}

template <typename Real>
bool ktGenericTransformation<Real>::operator==(const ktGenericTransformation& other) const {
    return haveSameBits(mMatrix, other.mMatrix) && mTranslate == other.mTranslate && mScale == other.mScale &&
           mIsIdentity == other.mIsIdentity && mIsRSMatrix == other.mIsRSMatrix &&
           mIsUniformScale == other.mIsUniformScale;
}

template <typename Real>
bool ktGenericTransformation<Real>::Equals(const ktGenericTransformation& other) const {
    return areClose(mMatrix, other.mMatrix) && areClose(mTranslate, other.mTranslate) && areClose(mScale, other.mScale);
}

template class ktGenericTransformation<float>;
template class ktGenericTransformation<double>;

}  // namespace kt
