// What transformations do to points, planes and normals, held against long double matrices.

#include "tests/math/RandomTransformations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

namespace {

using ktTest::Kind;
using ktTest::mapReference;
using ktTest::measureDistance;
using ktTest::ReferencePoint;

template <typename Real>
class TransformationMapping : public testing::Test {
protected:
    using Transformation = kt::ktGenericTransformation<Real>;
    using Matrix4 = Wm4::Matrix4<Real>;

    static constexpr int sRounds = 200;
    /// For the rounding of a few chained operations on numbers up to a few thousand.
    static constexpr double sAllowance = sizeof(Real) == sizeof(float) ? 2e-3 : 1e-11;

    /// Whether a transformation maps points and directions as maps do one after the other, the last one first.
    void expectMapsAs(const Transformation& transformation, const std::vector<Transformation>& maps) {
        for (const int weight : {1, 1, 1, 0, 0, 0}) {
            const Wm4::Vector3<Real> point = mRandom.point();
            ReferencePoint expected = ktTest::widen(point);
            for (auto map = maps.rbegin(); map != maps.rend(); ++map) {
                expected = mapReference(*map, expected, weight);
            }
            if (weight == 1 || !transformation.IsIdentity()) {
                EXPECT_LT(measureDistance(transformation.ApplyForward(point, weight == 1), expected), sAllowance);
            }
        }
    }

    /// Calls check(transformation) for many random transformations of every kind.
    template <typename Check>
    void forEachKind(const Check& check) {
        for (const Kind kind : ktTest::sKinds) {
            SCOPED_TRACE("kind " + std::to_string(static_cast<int>(kind)));
            for (int round = 0; round < sRounds && !this->HasFailure(); ++round) {
                check(mRandom.transformation(kind));
            }
        }
    }

    /// A product must map as its factors do one after the other, wherever it is stored.
    Transformation multiply(const Transformation& a, const Transformation& b) {
        Transformation product;
        product.Product(a, b);
        expectMapsAs(product, {a, b});
        EXPECT_TRUE(!a.IsIdentity() || product == b) << "the other is copied";
        EXPECT_TRUE(a.IsIdentity() || !b.IsIdentity() || product == a) << "the other is copied";
        Transformation first = a;
        first.Product(first, b);
        EXPECT_TRUE(first == product);
        Transformation second = b;
        second.Product(a, second);
        EXPECT_TRUE(second == product);
        return product;
    }

    static Transformation make(const Wm4::Matrix3<Real>& rotation, const Wm4::Vector3<Real>& scale,
                               const Wm4::Vector3<Real>& translation) {
        Transformation transformation;
        transformation.SetRotate(rotation);
        transformation.SetScale(scale);
        transformation.SetTranslate(translation);
        return transformation;
    }
    static Transformation makeGeneral(const Wm4::Matrix3<Real>& matrix) {
        Transformation transformation;
        transformation.SetMatrix(matrix);
        return transformation;
    }
    static Transformation fromLinear(const Wm4::Matrix3<Real>& linear,
                                     const Wm4::Vector3<Real>& translate = Wm4::Vector3<Real>::ZERO) {
        Matrix4 matrix = Matrix4::IDENTITY;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                matrix[row][column] = linear[row][column];
            }
            matrix[row][3] = translate[row];
        }
        Transformation transformation;
        transformation.FromHomogeneousMatrix(matrix, false);
        return transformation;
    }
    static Wm4::Matrix3<Real> diagonal(Real x, Real y, Real z) { return {x, 0, 0, 0, y, 0, 0, 0, z}; }

    ktTest::RandomTransformations<Real> mRandom;
};

using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(TransformationMapping, Reals);

TYPED_TEST(TransformationMapping, ForwardFollowsTheMatrixAndTheInverseUndoesIt) {
    this->forEachKind([this](const auto& map) {
        this->expectMapsAs(map, {map});
        const auto point = this->mRandom.point();
        auto inverse = map;
        map.Inverse(inverse);
        for (const auto& back :
             {map.ApplyInverse(map.ApplyForward(point, true), true), map.InvertVector(map.ApplyForward(point, false)),
              inverse.ApplyForward(map.ApplyForward(point, true), true)}) {
            EXPECT_LT(measureDistance(back, ktTest::widen(point)), this->sAllowance);
        }
        auto product = map;
        product.Inverse(product);
        EXPECT_TRUE(product == inverse) << "in place";
        product.Product(map, product);
        this->expectMapsAs(product, {});
    });
}

TYPED_TEST(TransformationMapping, IdentityFlagWinsOverTheTranslationSwitch) {
    const auto point = this->mRandom.point();
    typename TestFixture::Transformation transformation;
    EXPECT_EQ(transformation.ApplyForward(point, false), point);
    transformation.SetTranslate({1, 2, 3});
    EXPECT_EQ(transformation.ApplyForward(point, false), point);
    EXPECT_EQ(transformation.InvertVector(point), point);
}

TYPED_TEST(TransformationMapping, MatricesWithoutInverseMapBackToFixedPoints) {
    using Vector = Wm4::Vector3<TypeParam>;
    constexpr TypeParam largest = Wm4::Math<TypeParam>::MAX_REAL;
    const TypeParam tiny = Wm4::Math<TypeParam>::ZERO_TOLERANCE / 2;
    const Vector point(2, 4, 6);
    const std::tuple<const char*, Wm4::Matrix3<TypeParam>, Vector> rows[] = {
        {"singular", {1, 2, 3, 2, 4, 6, 0, 0, 1}, Vector::ZERO},
        {"determinant -2", this->diagonal(-2, 1, 1), Vector::ZERO},
        {"determinant -1", this->diagonal(-1, 1, 1), {-2, 4, 6}},
        {"determinant -1 of unequal entries", this->diagonal(-2, TypeParam(0.5), 1), {-1, 8, 6}},
        {"determinant below the tolerance", this->diagonal(tiny, 1, 1), Vector::ZERO},
        {"determinant 8", this->diagonal(2, 2, 2), {1, 2, 3}},
    };
    for (const auto& [what, matrix, expected] : rows) {
        const auto transformation = this->makeGeneral(matrix);
        EXPECT_EQ(transformation.ApplyInverse(point, true), expected) << what;
        typename TestFixture::Transformation inverse;
        transformation.Inverse(inverse);
        EXPECT_EQ(inverse.ApplyForward(point, true), expected) << what;
    }
    const auto collapsed = this->make(Wm4::Matrix3<TypeParam>::IDENTITY, Vector::ZERO, Vector::ZERO);
    EXPECT_EQ(collapsed.ApplyInverse(point, true), Vector(largest, largest, largest));
    // The components are multiplied before the product of the scales, which is too large, is divided by.
    const TypeParam huge = std::sqrt(largest);
    const auto stretched = this->make(Wm4::Matrix3<TypeParam>::IDENTITY, {1, 2 * huge, 2 * huge}, Vector::ZERO);
    EXPECT_EQ(stretched.ApplyInverse(Vector(0, 4, 6), true), Vector::ZERO);
    EXPECT_EQ(stretched.ApplyInverse(Vector(1 / huge, 4, 6), true), Vector::ZERO);
}

TYPED_TEST(TransformationMapping, InverseKeepsTheShapeThatItCan) {
    for (const Kind kind : ktTest::sKinds) {
        for (int round = 0; round < 50; ++round) {
            const auto transformation = this->mRandom.transformation(kind);
            typename TestFixture::Transformation inverse;
            transformation.Inverse(inverse);
            const bool staysRS = kind != Kind::AxisScale && kind != Kind::NonUniform && kind != Kind::General;
            EXPECT_EQ(inverse.IsRSMatrix(), staysRS) << static_cast<int>(kind);
            EXPECT_EQ(inverse.IsUniformScale(), staysRS) << static_cast<int>(kind);
            EXPECT_EQ(inverse.IsIdentity(), kind == Kind::Identity);
            if (kind == Kind::Mirror) {
                const auto scale = transformation.GetScale();
                EXPECT_EQ(std::abs(inverse.GetUniformScale()), TypeParam(1) / std::abs(scale.x));
                const auto& m = inverse.GetMatrix();
                EXPECT_GT(m.GetRow(0).Dot(m.GetRow(1).Cross(m.GetRow(2))), TypeParam(0)) << "not a rotation";
            }
        }
    }
    const auto generalIdentity = this->makeGeneral(Wm4::Matrix3<TypeParam>::IDENTITY);
    typename TestFixture::Transformation inverse;
    generalIdentity.Inverse(inverse);
    EXPECT_TRUE(inverse == generalIdentity);
}

TYPED_TEST(TransformationMapping, ProductsMapAsTheirFactors) {
    for (const Kind first : ktTest::sKinds) {
        for (const Kind second : ktTest::sKinds) {
            SCOPED_TRACE("kinds " + std::to_string(static_cast<int>(first)) + ", " +
                         std::to_string(static_cast<int>(second)));
            for (int round = 0; round < 30 && !this->HasFailure(); ++round) {
                this->multiply(this->mRandom.transformation(first), this->mRandom.transformation(second));
            }
        }
        const auto generalIdentity = this->makeGeneral(Wm4::Matrix3<TypeParam>::IDENTITY);
        this->multiply(generalIdentity, this->mRandom.transformation(first));
        this->multiply(this->mRandom.transformation(first), generalIdentity);
    }
}

// An unequal scale moves past a rotation only where the two do not meet.
TYPED_TEST(TransformationMapping, ProductsStayApartOnlyWhenThatIsExact) {
    using Matrix = Wm4::Matrix3<TypeParam>;
    using Vector = Wm4::Vector3<TypeParam>;
    const Matrix none = Matrix::IDENTITY;
    const Matrix aboutZ(0, -1, 0, 1, 0, 0, 0, 0, 1);
    const std::tuple<const char*, Matrix, Vector, Matrix, Vector, bool, bool> rows[] = {
        {"uniform scales", aboutZ, {2, 2, 2}, aboutZ, {3, 3, 3}, true, true},
        {"uniform, then unequal", aboutZ, {2, 2, 2}, aboutZ, {3, 4, 5}, true, false},
        {"unequal scales without rotation", none, {2, 3, 4}, none, {5, 6, 7}, true, false},
        {"unequal scales that cancel out", none, {1, 2, 4}, none, {4, 2, 1}, true, true},
        {"scale along the axis of rotation", none, {2, 2, 5}, aboutZ, {3, 4, 5}, true, false},
        {"scale across the axis of rotation", none, {2, 3, 5}, aboutZ, {1, 1, 1}, false, false},
        {"rotated unequal scale", aboutZ, {2, 2, 5}, aboutZ, {1, 1, 1}, false, false},
    };
    for (const auto& [what, rotationA, scaleA, rotationB, scaleB, isRS, isUniform] : rows) {
        SCOPED_TRACE(what);
        const auto product =
            this->multiply(this->make(rotationA, scaleA, {1, -2, 3}), this->make(rotationB, scaleB, {-4, 5, 6}));
        EXPECT_EQ(product.IsRSMatrix(), isRS);
        EXPECT_EQ(product.IsUniformScale(), isUniform);
    }
}

TYPED_TEST(TransformationMapping, PlanesAndNormalsStayWithTheirSurface) {
    using Vector = Wm4::Vector3<TypeParam>;
    using Plane = Wm4::Plane3<TypeParam>;
    this->forEachKind([this](const auto& map) {
        const auto normal = this->mRandom.unitVector();
        const auto point = this->mRandom.point();
        const auto along = normal.Cross(this->mRandom.unitVector());
        const auto plane = map.ApplyForward(Plane(normal, normal.Dot(point)));
        for (const auto& onPlane : {point, point + along}) {
            EXPECT_NEAR(plane.Normal.Dot(map.ApplyForward(onPlane, true)), plane.Constant, 5 * this->sAllowance);
        }
        EXPECT_NEAR(plane.Normal.Length(), 1, this->sAllowance);
        const auto mapped = map.ApplyNormal(normal * 3);
        EXPECT_NEAR(mapped.Length(), 1, this->sAllowance);
        EXPECT_NEAR(mapped.Dot(map.ApplyForward(along, false)), 0, this->sAllowance);
        EXPECT_GT(mapped.Dot(map.ApplyForward(normal, false)), 0) << "above the surface is above its image";
    });
    // A uniform scale keeps the length of a plane's normal; a normal without direction is zero.
    const auto twice = this->make(Wm4::Matrix3<TypeParam>::IDENTITY, {2, 2, 2}, Vector::ZERO);
    EXPECT_EQ(twice.ApplyForward(Plane(Vector(0, 0, 3), 5)), Plane(Vector(0, 0, 3), 10));
    EXPECT_EQ(twice.ApplyNormal(Vector::ZERO), Vector::ZERO);
    EXPECT_EQ(this->makeGeneral(this->diagonal(-2, 1, 1)).ApplyNormal(Vector::UNIT_X), Vector::ZERO);
}

TYPED_TEST(TransformationMapping, HomogeneousMatrixIsTransposedAndReadBack) {
    this->forEachKind([this](const auto& map) {
        typename TestFixture::Matrix4 matrix;
        map.GetHomogeneous(matrix);
        typename TestFixture::Matrix4 columns;
        for (int row = 0; row < 4; ++row) {
            const ReferencePoint unit = {row == 0 ? 1.0L : 0.0L, row == 1 ? 1.0L : 0.0L, row == 2 ? 1.0L : 0.0L};
            const ReferencePoint image = mapReference(map, unit, row == 3 ? 1 : 0);
            for (int column = 0; column < 4; ++column) {
                const double expected =
                    column < 3 ? static_cast<double>(image.at(static_cast<std::size_t>(column))) : (row == 3 ? 1 : 0);
                EXPECT_NEAR(matrix[row][column], expected, 1e-6) << row << ", " << column;
                columns[column][row] = matrix[row][column];
            }
        }
        typename TestFixture::Transformation readBack = this->mRandom.transformation(Kind::General);
        readBack.FromHomogeneousMatrix(matrix, true);
        EXPECT_EQ(readBack.IsRSMatrix(), map.IsRSMatrix());
        this->expectMapsAs(readBack, {map});
        typename TestFixture::Transformation fromColumns;
        fromColumns.FromHomogeneousMatrix(columns, false);
        EXPECT_TRUE(fromColumns == readBack);
    });
}

TYPED_TEST(TransformationMapping, HomogeneousMatrixIsDecomposed) {
    using Matrix = Wm4::Matrix3<TypeParam>;
    using Vector = Wm4::Vector3<TypeParam>;
    using Real = TypeParam;
    const Matrix turned(0, -1, 0, 1, 0, 0, 0, 0, 1);
    const Matrix swapped(0, 1, 0, 1, 0, 0, 0, 0, 1);
    const Matrix swappedTurn(0, 1, 0, -1, 0, 0, 0, 0, 1);
    const Matrix sheared(1, Real(0.5), 0, 0, 1, 0, 0, 0, 1);
    const Real nearOne = 1 + Real(5e-7);
    const std::tuple<const char*, Matrix, bool, bool, Matrix, Vector> rows[] = {
        {"identity", Matrix::IDENTITY, true, true, Matrix::IDENTITY, {1, 1, 1}},
        {"almost identity", this->diagonal(nearOne, 1, 1), true, true, Matrix::IDENTITY, {1, 1, 1}},
        {"uniform scale", this->diagonal(2, 2, 2), true, true, Matrix::IDENTITY, {2, 2, 2}},
        {"two scales alike", this->diagonal(2, 2, 3), true, false, Matrix::IDENTITY, {2, 2, 3}},
        {"unequal scale", this->diagonal(2, 3, 4), true, false, Matrix::IDENTITY, {2, 3, 4}},
        {"rotation", turned, true, true, turned, {1, 1, 1}},
        {"mirror of x with scale", this->diagonal(-2, 2, 2), true, false, Matrix::IDENTITY, {-2, 2, 2}},
        {"mirror at a diagonal", swapped, true, false, swappedTurn, {-1, 1, 1}},
        {"half turn", this->diagonal(-2, -2, 2), true, true, this->diagonal(-1, -1, 1), {2, 2, 2}},
        {"shear", sheared, false, false, sheared, {1, 1, 1}},
        {"collapsed axis", this->diagonal(0, 1, 1), false, false, this->diagonal(0, 1, 1), {1, 1, 1}},
    };
    for (const auto& [what, linear, isRS, isUniform, matrix, scale] : rows) {
        SCOPED_TRACE(what);
        const auto transformation = this->fromLinear(linear);
        EXPECT_EQ(transformation.IsRSMatrix(), isRS);
        EXPECT_EQ(transformation.IsUniformScale(), isUniform);
        EXPECT_EQ(transformation.GetMatrix(), matrix);
        EXPECT_EQ(transformation.GetScale(), scale);
    }
    // Axes that are almost at right angles count as such when they open, not when they close.
    EXPECT_TRUE(this->fromLinear(Matrix(1, Real(-5e-4), 0, 0, 1, 0, 0, 0, 1)).IsRSMatrix());
    EXPECT_FALSE(this->fromLinear(Matrix(1, Real(5e-4), 0, 0, 1, 0, 0, 0, 1)).IsRSMatrix());
    // Short translations are dropped.
    EXPECT_TRUE(this->fromLinear(Matrix::IDENTITY, Vector(0, Real(0.0009), 0)).IsIdentity());
    EXPECT_EQ(this->fromLinear(Matrix::IDENTITY, Vector(0, Real(0.0011), 0)).GetTranslate(),
              Vector(0, Real(0.0011), 0));
}

}  // namespace
