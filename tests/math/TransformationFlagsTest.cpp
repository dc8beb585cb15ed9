// What the setters do to the flags, and the queries that do not map points.

#include "math/ktGenericTransformation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

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
const Step sUnitScale = [](Transformation& t) { t.MakeUnitScale(); };
const Step sIdentity = [](Transformation& t) { t.MakeIdentity(); };
const Step sRecompute = [](Transformation& t) { t.recomputeIsIdentity(); };

struct FlagRow {
    const char* description;
    std::vector<Step> steps;
    bool isIdentity;
    bool isRS;
    bool isUniform;
};

TEST(TransformationFlags, FollowTheSetters) {
    const FlagRow rows[] = {
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
        {"stored scale keeps a general identity matrix apart",
         {uniform(2), general(Matrix::IDENTITY)},
         false,
         false,
         false},
        {"made identity", {general(sQuarterTurn), translate({1, 2, 3}), sIdentity}, true, true, true},
        {"written in place", {[](Transformation& t) { t.GetRotate() = sQuarterTurn; }}, true, true, true},
        {"written in place and recomputed",
         {[](Transformation& t) { t.GetRotate() = sQuarterTurn; }, sRecompute},
         false,
         true,
         true},
    };
    for (const FlagRow& row : rows) {
        SCOPED_TRACE(row.description);
        Transformation transformation;
        for (const Step& step : row.steps) {
            step(transformation);
        }
        EXPECT_EQ(transformation.IsIdentity(), row.isIdentity);
        EXPECT_EQ(transformation.IsRSMatrix(), row.isRS);
        EXPECT_EQ(transformation.IsUniformScale(), row.isUniform);
    }
}

TEST(TransformationFlags, UniformityIsRememberedBesideAGeneralMatrix) {
    Transformation transformation;
    transformation.SetMatrix(sQuarterTurn);
    transformation.SetUniformScale(3);
    transformation.SetRotate(sQuarterTurn);
    EXPECT_TRUE(transformation.IsUniformScale());
    EXPECT_EQ(transformation.GetUniformScale(), 3);
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
            Transformation transformation;
            transformation.SetMatrix(matrix);
            transformation.SetScale(scaling);
            transformation.SetTranslate(translation);
            EXPECT_EQ(transformation.IsFinite(), std::isfinite(value)) << "component " << index << ", value " << value;
        }
    }
}

TEST(TransformationQueries, NormIsTheLargestScaleOrTheRowSum) {
    const float half = std::sqrt(0.5F);
    const Matrix turned45(half, -half, 0, half, half, 0, 0, 0, 1);
    const struct {
        const char* description;
        std::vector<Step> steps;
        float norm;
    } rows[] = {
        {"identity", {}, 1},
        {"rotation by 45 degrees", {rotate(turned45)}, std::sqrt(2.0F)},
        {"scales of absolute value 1", {rotate(turned45), scale({-1, 1, -1})}, std::sqrt(2.0F)},
        {"large scale", {rotate(turned45), scale({3, 1, 1})}, 3},
        {"large negative scale", {scale({1, -4, 2})}, 4},
        {"small scale among ones", {rotate(turned45), scale({1, 1, 0.5F})}, 1},
        {"small scales", {scale({0.5F, 0.25F, 0.125F})}, 0.5F},
        {"general matrix", {general({1, -2, 3, 0, 0, 1, 4, 0, 0}), uniform(9)}, 6},
    };
    for (const auto& row : rows) {
        Transformation transformation;
        for (const Step& step : row.steps) {
            step(transformation);
        }
        EXPECT_FLOAT_EQ(transformation.GetNorm(), row.norm) << row.description;
    }
}

TEST(TransformationQueries, EqualityLooksAtBitsAndFlags) {
    Transformation rotated;
    rotated.SetRotate(Matrix::IDENTITY);
    EXPECT_TRUE(rotated == Transformation());

    Transformation generalIdentity;
    generalIdentity.SetMatrix(Matrix::IDENTITY);
    EXPECT_FALSE(generalIdentity == rotated);
    EXPECT_TRUE(generalIdentity.Equals(rotated));

    Transformation negativeZero;
    negativeZero.SetTranslate({1, 0, 0});
    Transformation positiveZero = negativeZero;
    negativeZero.SetTranslate({1, -0.0F, 0});
    EXPECT_TRUE(negativeZero == positiveZero);
    negativeZero.SetRotate(sNegativeZero);
    EXPECT_FALSE(negativeZero == positiveZero);
}

template <typename Real>
class TransformationTolerance : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(TransformationTolerance, Reals);

TYPED_TEST(TransformationTolerance, IsStrict) {
    using Real = TypeParam;
    const struct {
        const char* description;
        Real translation, scale, entry;
        bool isEqual;
    } rows[] = {
        {"translation of 0.0009", Real(0.0009), 0, 0, true},
        {"translation of 0.001", Real(0.001), 0, 0, false},
        {"scale by 0.0009", 0, Real(0.0009), 0, true},
        {"scale by 0.0011", 0, Real(0.0011), 0, false},
        {"entry of 9e-7", 0, 0, Real(9e-7), true},
        {"entry of 1.1e-6", 0, 0, Real(-1.1e-6), false},
        {"NaN", std::numeric_limits<Real>::quiet_NaN(), 0, 0, false},
    };
    for (const auto& row : rows) {
        kt::ktGenericTransformation<Real> transformation;
        Wm4::Matrix3<Real> matrix = Wm4::Matrix3<Real>::IDENTITY;
        matrix[0][2] = row.entry;
        transformation.SetMatrix(matrix);
        transformation.SetTranslate({0, row.translation, 0});
        transformation.SetScale({1, 1, 1 + row.scale});
        EXPECT_EQ(transformation.Equals({}), row.isEqual) << row.description;
    }
}

// The members lie in their declared order without gaps before the flags, so arrays of transformations stay small.
static_assert(sizeof(kt::ktGenericTransformation<float>) == 15 * sizeof(float) + 4);
static_assert(std::is_trivially_copyable_v<kt::ktGenericTransformation<float>>);

}  // namespace
