// What the setters do to the flags, and the queries that do not map points.

#include "math/ktGenericTransformation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <type_traits>

namespace {

using Transformation = kt::ktGenericTransformation<float>;
using Vector = Wm4::Vector3<float>;
using Matrix = Wm4::Matrix3<float>;

constexpr float sNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float sInfinity = std::numeric_limits<float>::infinity();

const Matrix sQuarterTurn(0, -1, 0, 1, 0, 0, 0, 0, 1);
const Matrix sNegativeZero(1, -0.0F, 0, 0, 1, 0, 0, 0, 1);

/// A transformation after some steps.
struct Made : Transformation {
    Made& rotate(const Matrix& matrix) { return SetRotate(matrix), *this; }
    Made& general(const Matrix& matrix) { return SetMatrix(matrix), *this; }
    Made& translate(const Vector& v) { return SetTranslate(v), *this; }
    Made& scale(const Vector& v) { return SetScale(v), *this; }
    Made& uniform(float s) { return SetUniformScale(s), *this; }
    Made& unitScale() { return MakeUnitScale(), *this; }
    Made& identity() { return MakeIdentity(), *this; }
    Made& write(const Matrix& matrix) { return GetRotate() = matrix, *this; }
    Made& recompute() { return recomputeIsIdentity(), *this; }
};

TEST(TransformationFlags, FollowTheSetters) {
    const std::tuple<const char*, Transformation, bool, bool, bool> rows[] = {
        {"new", Made(), true, true, true},
        {"rotation", Made().rotate(sQuarterTurn), false, true, true},
        {"identity as rotation", Made().rotate(Matrix::IDENTITY), true, true, true},
        {"identity as general matrix", Made().general(Matrix::IDENTITY), true, false, false},
        {"negative zero in the matrix", Made().rotate(sNegativeZero), false, true, true},
        {"rotation and back", Made().rotate(sQuarterTurn).rotate(Matrix::IDENTITY), true, true, true},
        {"translation", Made().translate({0, 0, 1}), false, true, true},
        {"negative zero translation", Made().translate({-0.0F, 0, 0}), true, true, true},
        {"translation of a general matrix", Made().general(sQuarterTurn).translate({1, 0, 0}), false, false, false},
        {"equal scales", Made().scale({2, 2, 2}), false, true, true},
        {"unequal scales", Made().scale({2, 2, 3}), false, true, false},
        {"scale y differs", Made().scale({2, 3, 2}), false, true, false},
        {"NaN scale", Made().scale({sNaN, sNaN, sNaN}), false, true, false},
        {"unit scale set", Made().uniform(2).scale(Vector::ONE), true, true, true},
        {"uniform scale", Made().scale({1, 2, 3}).uniform(2), false, true, true},
        {"uniform NaN scale", Made().uniform(sNaN), false, true, true},
        {"unit scale made: identity flag stays down", Made().uniform(2).unitScale(), false, true, true},
        {"unit scale made and recomputed", Made().uniform(2).unitScale().recompute(), true, true, true},
        {"unit scale of unequal scales", Made().scale({1, 2, 3}).unitScale(), false, true, true},
        {"rotation keeps the scale's uniformity", Made().scale({1, 2, 3}).rotate(sQuarterTurn), false, true, false},
        {"general and rotation again: not uniform", Made().general(sQuarterTurn).rotate(sQuarterTurn), false, true,
         false},
        {"general matrix never reports a uniform scale", Made().general(sQuarterTurn).uniform(3), false, false, false},
        {"scale kept with a general identity", Made().uniform(2).general(Matrix::IDENTITY), false, false, false},
        {"made identity", Made().general(sQuarterTurn).translate({1, 2, 3}).identity(), true, true, true},
        {"written in place", Made().write(sQuarterTurn), true, true, true},
        {"written in place and recomputed", Made().write(sQuarterTurn).recompute(), false, true, true},
    };
    for (const auto& [what, transformation, isIdentity, isRS, isUniform] : rows) {
        EXPECT_EQ(transformation.IsIdentity(), isIdentity) << what;
        EXPECT_EQ(transformation.IsRSMatrix(), isRS) << what;
        EXPECT_EQ(transformation.IsUniformScale(), isUniform) << what;
    }
    const Transformation again = Made().general(sQuarterTurn).uniform(3).rotate(sQuarterTurn);
    EXPECT_TRUE(again.IsUniformScale()) << "remembered beside the general matrix";
    EXPECT_EQ(again.GetUniformScale(), 3);
}

TEST(TransformationQueries, FiniteMeansWithinTheLargestDouble) {
    const float largest = std::numeric_limits<float>::max();
    EXPECT_TRUE(Transformation().IsFinite());
    for (int index = 0; index < 15; ++index) {
        for (const float value : {largest, -largest, sNaN, sInfinity, -sInfinity}) {
            Vector translation = Vector::ZERO;
            Vector scaling = Vector::ONE;
            Matrix matrix = Matrix::IDENTITY;
            if (index < 3) {
                translation[index] = value;
            } else if (index < 6) {
                scaling[index - 3] = value;
            } else {
                matrix[(index - 6) / 3][index % 3] = value;
            }
            const Transformation map = Made().general(matrix).scale(scaling).translate(translation);
            EXPECT_EQ(map.IsFinite(), std::isfinite(value)) << "component " << index << ", value " << value;
        }
    }
}

TEST(TransformationQueries, NormIsTheLargestScaleOrTheRowSum) {
    const float half = std::sqrt(0.5F);
    const Matrix turned45(half, -half, 0, half, half, 0, 0, 0, 1);
    const std::tuple<const char*, Transformation, float> rows[] = {
        {"identity", Made(), 1},
        {"rotation by 45 degrees", Made().rotate(turned45), std::sqrt(2.0F)},
        {"scales of absolute value 1", Made().rotate(turned45).scale({-1, 1, -1}), std::sqrt(2.0F)},
        {"large scale", Made().rotate(turned45).scale({3, 1, 1}), 3},
        {"large negative scale", Made().scale({1, -4, 2}), 4},
        {"small scale among ones", Made().rotate(turned45).scale({1, 1, 0.5F}), 1},
        {"small scales", Made().scale({0.5F, 0.25F, 0.125F}), 0.5F},
        {"general matrix", Made().general({1, -2, 3, 0, 0, 1, 4, 0, 0}).uniform(9), 6},
    };
    for (const auto& [what, transformation, norm] : rows) {
        EXPECT_FLOAT_EQ(transformation.GetNorm(), norm) << what;
    }
}

TEST(TransformationQueries, EqualityLooksAtBitsAndFlags) {
    const Transformation generalIdentity = Made().general(Matrix::IDENTITY);
    EXPECT_TRUE(Made().rotate(Matrix::IDENTITY) == Transformation());
    EXPECT_FALSE(generalIdentity == Transformation());
    EXPECT_TRUE(generalIdentity.Equals(Transformation()));
    Transformation unnoticed = Made().translate({0, 0, 0});
    unnoticed.SetScale({2, 2, 2});
    unnoticed.MakeUnitScale();
    EXPECT_FALSE(unnoticed == Transformation()) << "the identity flag only";
    const Transformation positiveZero = Made().translate({1, 0, 0});
    EXPECT_TRUE(Made().translate({1, -0.0F, 0}) == positiveZero);
    EXPECT_FALSE(Made().translate({1, 0, 0}).rotate(sNegativeZero) == positiveZero);
}

template <typename Real>
class TransformationTolerance : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(TransformationTolerance, Reals);

TYPED_TEST(TransformationTolerance, IsStrict) {
    using Real = TypeParam;
    const std::tuple<const char*, Real, Real, Real, bool> rows[] = {
        {"translation of 0.0009", Real(0.0009), 0, 0, true},
        {"translation of 0.001", Real(0.001), 0, 0, false},
        {"scale by 0.0009", 0, Real(0.0009), 0, true},
        {"scale by 0.0011", 0, Real(0.0011), 0, false},
        {"entry of 9e-7", 0, 0, Real(9e-7), true},
        {"entry of 1.1e-6", 0, 0, Real(-1.1e-6), false},
        {"NaN", std::numeric_limits<Real>::quiet_NaN(), 0, 0, false},
    };
    for (const auto& [what, translation, scale, entry, isEqual] : rows) {
        kt::ktGenericTransformation<Real> transformation;
        Wm4::Matrix3<Real> matrix = Wm4::Matrix3<Real>::IDENTITY;
        matrix[0][2] = entry;
        transformation.SetMatrix(matrix);
        transformation.SetTranslate({0, translation, 0});
        transformation.SetScale({1, 1, 1 + scale});
        EXPECT_EQ(transformation.Equals({}), isEqual) << what;
    }
}

// The members lie in their declared order without gaps before the flags, so arrays of transformations stay small.
static_assert(sizeof(kt::ktGenericTransformation<float>) == 15 * sizeof(float) + 4);
static_assert(std::is_trivially_copyable_v<kt::ktGenericTransformation<float>>);

}  // namespace
