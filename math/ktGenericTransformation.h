#pragma once

/// @file
/// Affine transformation of space with rotation, scale and translation kept apart.

#include "legacy/ktAnnotationLegacyExport.h"
#include "platform/wm4/Wm4Math.h"
#include "platform/wm4/Wm4Matrix3.h"
#include "platform/wm4/Wm4Matrix4.h"
#include "platform/wm4/Wm4Plane3.h"
#include "platform/wm4/Wm4Vector3.h"

namespace kt {

/// The affine map Y = M S X + T of points X of space: M a 3 by 3 matrix, S the diagonal matrix of a scale vector, T a
/// translation. It comes in two shapes:
///
/// - *RS* (rotation and scale apart, the shape of a new transformation): the matrix is a rotation, the scale applies.
/// - *general*: the matrix is any linear map and contains the scale; the stored scale is ignored by every mapping.
///
/// Three flags let each operation take the cheapest path. They say what the setters were told, not what the numbers
/// happen to be: nothing checks that a matrix given to SetRotate() is a rotation. The exact effect of each setter on
/// the flags is part of the contract:
///
/// | operation            | identity   | RS        | uniform scale                          |
/// |----------------------|------------|-----------|----------------------------------------|
/// | MakeIdentity()       | true       | true      | true                                   |
/// | MakeUnitScale()      | unchanged  | unchanged | true                                   |
/// | SetRotate()          | recomputed | true      | unchanged                              |
/// | SetMatrix()          | recomputed | false     | false                                  |
/// | SetTranslate()       | recomputed | unchanged | unchanged                              |
/// | SetScale()           | recomputed | unchanged | whether the three components are equal |
/// | SetUniformScale()    | recomputed | unchanged | true                                   |
/// | recomputeIsIdentity()| recomputed | unchanged | unchanged                              |
///
/// Without units: translations are in those of the points, angles do not occur.
///
/// A value type: trivially copyable, no allocation, no exception, distinct objects may be used by several threads.
/// Arguments and results may be the same object everywhere. Instantiated for float and double by the library; results
/// are computed in Real. The one-point operations are inline; they equal the array forms bit for bit as long as the
/// calling code is not compiled to fuse multiplications with additions.
template <typename Real>
class KT_ANNOTATION_LEGACY_API ktGenericTransformation {
public:
    /// The identity: all three flags are set.
    constexpr ktGenericTransformation() = default;

    /// @name Setters
    /// See the table of the class for what each does to the flags.
    /// @{

    void MakeIdentity() { *this = ktGenericTransformation(); }
    /// Sets the scale to one. The identity flag is left as it is, even when the transformation becomes the identity;
    /// recomputeIsIdentity() brings it up to date.
    void MakeUnitScale();
    /// Stores a rotation; the transformation becomes RS.
    void SetRotate(const Wm4::Matrix3<Real>& rotate);
    /// Stores any linear map; the transformation becomes general and its stored scale is kept but no longer applies.
    void SetMatrix(const Wm4::Matrix3<Real>& matrix);
    void SetTranslate(const Wm4::Vector3<Real>& translate);
    /// The scale counts as uniform when the three components compare equal; a NaN never does.
    void SetScale(const Wm4::Vector3<Real>& scale);
    void SetUniformScale(Real scale);
    /// Sets the identity flag from the members: translation equal to zero, scale equal to one and a matrix that is the
    /// identity bit for bit (an entry of -0.0 makes the transformation something else). To be called after writing
    /// through the non-const GetRotate().
    void recomputeIsIdentity();
    /// @}

    /// @name Queries
    /// @{

    bool IsIdentity() const { return mIsIdentity; }
    bool IsRSMatrix() const { return mIsRSMatrix; }
    /// True only for an RS transformation.
    bool IsUniformScale() const { return mIsRSMatrix && mIsUniformScale; }

    const Wm4::Matrix3<Real>& GetRotate() const { return mMatrix; }
    /// The matrix for writing in place. No flag follows; call recomputeIsIdentity() afterwards.
    Wm4::Matrix3<Real>& GetRotate() { return mMatrix; }
    const Wm4::Matrix3<Real>& GetMatrix() const { return mMatrix; }
    const Wm4::Vector3<Real>& GetTranslate() const { return mTranslate; }
    const Wm4::Vector3<Real>& GetScale() const { return mScale; }
    /// The x component of the scale, whether or not the scale is uniform.
    Real GetUniformScale() const { return mScale.x; }

    /// Whether each of the 15 components lies within plus and minus the largest double; NaN and infinities do not.
    bool IsFinite() const;
    /// A bound for how much lengths grow: the largest absolute scale of an RS transformation unless all three are
    /// exactly 1; otherwise the largest absolute row sum of the matrix. A pure rotation therefore reports its row sum,
    /// which is at least 1 (the square root of 2 for 45 degrees about an axis).
    Real GetNorm() const;
    /// @}

    /// @name Mapping points and directions
    /// Arrays: `count` points are mapped from `in` to `out`; a count below 1 does nothing. The arrays may be the same
    /// one, but must not overlap otherwise. Each point gets exactly what the one-point form gives.
    /// @{

    /// M S X + T, or M S X when applyTranslation is false (a direction).
    Wm4::Vector3<Real> ApplyForward(const Wm4::Vector3<Real>& point, bool applyTranslation = true) const;
    void ApplyForward(int count, const Wm4::Vector3<Real>* in, Wm4::Vector3<Real>* out,
                      bool applyTranslation = true) const;

    /// The point X with M S X + T = Y; the translation is left out when applyTranslation is false. A uniform scale of 0
    /// gives three times the largest Real, a general matrix without inverse (see Inverse()) gives zero. A non-uniform
    /// scale with a 0 is not tested for and gives infinities and NaN.
    Wm4::Vector3<Real> ApplyInverse(const Wm4::Vector3<Real>& point, bool applyTranslation = true) const;
    /// Always removes the translation.
    void ApplyInverse(int count, const Wm4::Vector3<Real>* in, Wm4::Vector3<Real>* out) const;

    /// Maps a direction back: ApplyInverse() without the translation.
    Wm4::Vector3<Real> InvertVector(const Wm4::Vector3<Real>& direction) const {
        return ApplyInverse(direction, false);
    }
    /// @}

    /// The plane of the mapped points, for a plane with unit normal. Its normal is of unit length again, except that a
    /// uniformly scaled RS transformation passes it on as the matrix gives it.
    Wm4::Plane3<Real> ApplyForward(const Wm4::Plane3<Real>& plane) const;

    /// The unit normal of a mapped surface: the inverse transpose of the linear part applied to `normal`. Zero when
    /// that has no direction.
    Wm4::Vector3<Real> ApplyNormal(const Wm4::Vector3<Real>& normal) const;

    /// Sets `out` to the inverse map. RS with uniform scale stays so. RS with another scale becomes general, except
    /// that scales of one absolute value (mirrors) stay RS with a uniform scale of that sign which leaves the matrix a
    /// rotation. A general matrix is inverted when its determinant is at least Math::ZERO_TOLERANCE or close to minus
    /// 1; any other matrix, mirrors with another negative determinant included, has the zero matrix for inverse.
    void Inverse(ktGenericTransformation& out) const;

    /// Sets this to the map "first b, then a". The result is RS when both are and the product can be written so
    /// exactly: a's scale is uniform, or a has no rotation and its scale commutes with b's rotation. Otherwise it is
    /// general.
    void Product(const ktGenericTransformation& a, const ktGenericTransformation& b);

    /// Writes the 4 by 4 matrix of the map for row vectors: translation in the last row, last column (0, 0, 0, 1).
    void GetHomogeneous(Wm4::Matrix4<Real>& matrix) const;

    /// Sets this from a 4 by 4 matrix: RS when the matrix's columns are orthogonal within 1e-6, else general. With
    /// `transposed` the matrix is laid out for row vectors, as GetHomogeneous() writes it; without, for column vectors
    /// (translation in the last column). A mirror becomes a negative x scale. Translations shorter than 1e-3, scales
    /// within 1e-6 of 1 and rotations within 1e-6 of the identity are dropped.
    void FromHomogeneousMatrix(const Wm4::Matrix4<Real>& matrix, bool transposed);

    /// Same members and same flags; matrix entries are compared bit for bit, the vectors with ==.
    bool operator==(const ktGenericTransformation& other) const;

    /// Same members within a tolerance, whatever the flags: matrix entries differ by less than 1e-6, translations and
    /// scales by a squared distance below 1e-6. Evaluated in double for both instantiations.
    bool Equals(const ktGenericTransformation& other) const;

private:
    Wm4::Matrix3<Real> mMatrix = Wm4::Matrix3<Real>::IDENTITY;
    Wm4::Vector3<Real> mTranslate = Wm4::Vector3<Real>::ZERO;
    Wm4::Vector3<Real> mScale = Wm4::Vector3<Real>::ONE;
    bool mIsIdentity = true;
    bool mIsRSMatrix = true;
    bool mIsUniformScale = true;

    /// The linear part as one matrix.
    Wm4::Matrix3<Real> linearPart() const;
    /// Solves M S X = D for X; called when the transformation is not the identity.
    Wm4::Vector3<Real> applyInverseLinear(const Wm4::Vector3<Real>& difference) const;
    /// v divided by a scale that is not uniform, as (v.x sy sz i, v.y sx sz i, v.z sx sy i) with i = 1/(sx sy sz), from
    /// left to right. The order is intended: it decides what scales beyond the range of Real give.
    Wm4::Vector3<Real> divideByScale(const Wm4::Vector3<Real>& v) const;
};

template <typename Real>
inline Wm4::Vector3<Real> ktGenericTransformation<Real>::ApplyForward(const Wm4::Vector3<Real>& point,
                                                                      bool applyTranslation) const {
    if (mIsIdentity) {
        return point;
    }
    const Wm4::Vector3<Real> scaled =
        mIsRSMatrix ? Wm4::Vector3<Real>(mScale.x * point.x, mScale.y * point.y, mScale.z * point.z) : point;
    const Wm4::Vector3<Real> mapped = mMatrix * scaled;
    return applyTranslation ? mapped + mTranslate : mapped;
}

template <typename Real>
inline Wm4::Vector3<Real> ktGenericTransformation<Real>::ApplyInverse(const Wm4::Vector3<Real>& point,
                                                                      bool applyTranslation) const {
    if (mIsIdentity) {
        return point;
    }
    return applyInverseLinear(applyTranslation ? point - mTranslate : point);
}

extern template class KT_ANNOTATION_LEGACY_API ktGenericTransformation<float>;
extern template class KT_ANNOTATION_LEGACY_API ktGenericTransformation<double>;

}  // namespace kt
