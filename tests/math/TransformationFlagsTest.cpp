// What the setters do to the flags, and the queries that do not map points.

#include "math/ktGenericTransformation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using Transformation = kt::ktGenericTransformation<float>;
using Vector = Wm4::Vector3<float>;
using Matrix = Wm4::Matrix3<float>;

constexpr float sNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float sInfinity = std::numeric_limits<float>::infinity();

const Matrix sQuarterTurn(0, -1, 0, 1, 0, 0, 0, 0, 1);
const Matrix sNegativeZero(1, -0.0F, 0, 0, 1, 0, 0, 0, 1);

using Step = std::function<void(Transformation&)>;

Step rotate(const Matrix& matrix) {
    return [matrix](Transformation& t) { t.SetRotate(matrix); };
}

Step general(const Matrix& matrix) {
    return [matrix](Transformation& t) { t.SetMatrix(matrix); };
}

Step translate(const Vector& v) {
    return [v](Transformation& t) { t.SetTranslate(v); };
}

Step scale(const Vector& v) {
    return [v](Transformation& t) { t.SetScale(v); };
}

Step uniform(float s) {
    return [s](Transformation& t) { t.SetUniformScale(s); };
}
/// A transformation after some steps.
Transformation make(const std::vector<Step>& steps) {
    Transformation transformation;
    for (const Step& step : steps) {
        step(transformation);
    }
    return transformation;
}
const Step sUnitScale = [](Transformation& t) { t.MakeUnitScale(); };
const Step sIdentity = [](Transformation& t) { t.MakeIdentity(); };
const Step sWrite = [](Transformation& t) { t.GetRotate() = sQuarterTurn; };
const Step sRecompute = [](Transformation& t) { t.recomputeIsIdentity(); };

TEST(TransformationFlags, FollowTheSetters) {
    const std::tuple<const char*, std::vector<Step>, bool, bool, bool> rows[] = {
        {"new", {}, true, true, true},
        {"rotation", {rotate(sQuarterTurn)}, false, true, true},
        {"identity as rotation", {rotate(Matrix::IDENTITY)}, true, true, true},
        {"identity as general matrix", {general(Matrix::IDENTITY)}, true, false, false},
        {"negative zero in the matrix", {rotate(sNegativeZero)}, false, true, true},
        {"rotation and back", {rotate(sQuarterTurn), rotate(Matrix::IDENTITY)}, true, true, true},
        {"translation", {translate({0, 0, 1})}, false, true, true},
        {"negative zero translation", {translate({-0.0F, 0, 0})}, true, true, true},
        {"translation of a general matrix", {general(sQuarterTurn), translate({1, 0, 0})}, false, false, false},
        {"equal scales", {scale({2, 2, 2})}, false, true, true},
        {"unequal scales", {scale({2, 2, 3})}, false, true, false},
        {"scale y differs", {scale({2, 3, 2})}, false, true, false},
        {"NaN scale", {scale({sNaN, sNaN, sNaN})}, false, true, false},
        {"unit scale set", {uniform(2), scale(Vector::ONE)}, true, true, true},
        {"uniform scale", {scale({1, 2, 3}), uniform(2)}, false, true, true},
        {"uniform NaN scale", {uniform(sNaN)}, false, true, true},
        {"unit scale made: identity flag stays down", {uniform(2), sUnitScale}, false, true, true},
        {"unit scale made and recomputed", {uniform(2), sUnitScale, sRecompute}, true, true, true},
        {"unit scale of unequal scales", {scale({1, 2, 3}), sUnitScale}, false, true, true},
        {"rotation keeps the scale's uniformity", {scale({1, 2, 3}), rotate(sQuarterTurn)}, false, true, false},
        {"general and rotation again: not uniform", {general(sQuarterTurn), rotate(sQuarterTurn)}, false, true, false},
        {"general matrix never reports a uniform scale", {general(sQuarterTurn), uniform(3)}, false, false, false},
        {"scale kept with a general identity", {uniform(2), general(Matrix::IDENTITY)}, false, false, false},
        {"made identity", {general(sQuarterTurn), translate({1, 2, 3}), sIdentity}, true, true, true},
        {"written in place", {sWrite}, true, true, true},
        {"written in place and recomputed", {sWrite, sRecompute}, false, true, true},
    };
    for (const auto& [what, steps, isIdentity, isRS, isUniform] : rows) {
        const Transformation transformation = make(steps);
        EXPECT_EQ(transformation.IsIdentity(), isIdentity) << what;
        EXPECT_EQ(transformation.IsRSMatrix(), isRS) << what;
        EXPECT_EQ(transformation.IsUniformScale(), isUniform) << what;
    }
    const Transformation again = make({general(sQuarterTurn), uniform(3), rotate(sQuarterTurn)});
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
            const Transformation map = make({general(matrix), scale(scaling), translate(translation)});
            EXPECT_EQ(map.IsFinite(), std::isfinite(value)) << "component " << index << ", value " << value;
        }
    }
}

TEST(TransformationQueries, NormIsTheLargestScaleOrTheRowSum) {
    const float half = std::sqrt(0.5F);
    const Matrix turned45(half, -half, 0, half, half, 0, 0, 0, 1);
    const std::tuple<const char*, std::vector<Step>, float> rows[] = {
        {"identity", {}, 1},
        {"rotation by 45 degrees", {rotate(turned45)}, std::sqrt(2.0F)},
        {"scales of absolute value 1", {rotate(turned45), scale({-1, 1, -1})}, std::sqrt(2.0F)},
        {"large scale", {rotate(turned45), scale({3, 1, 1})}, 3},
        {"large negative scale", {scale({1, -4, 2})}, 4},
        {"small scale among ones", {rotate(turned45), scale({1, 1, 0.5F})}, 1},
        {"small scales", {scale({0.5F, 0.25F, 0.125F})}, 0.5F},
        {"general matrix", {general({1, -2, 3, 0, 0, 1, 4, 0, 0}), uniform(9)}, 6},
    };
    for (const auto& [what, steps, norm] : rows) {
        EXPECT_FLOAT_EQ(make(steps).GetNorm(), norm) << what;
    }
}

TEST(TransformationQueries, EqualityLooksAtBitsAndFlags) {
    const Transformation generalIdentity = make({general(Matrix::IDENTITY)});
    EXPECT_TRUE(make({rotate(Matrix::IDENTITY)}) == Transformation());
    EXPECT_FALSE(generalIdentity == Transformation());
    EXPECT_TRUE(generalIdentity.Equals(Transformation()));
    const Transformation positiveZero = make({translate({1, 0, 0})});
    EXPECT_TRUE(make({translate({1, -0.0F, 0})}) == positiveZero);
    EXPECT_FALSE(make({translate({1, 0, 0}), rotate(sNegativeZero)}) == positiveZero);
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
