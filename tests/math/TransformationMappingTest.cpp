// What transformations do to points, planes and normals, held against long double matrices.

#include "tests/math/RandomTransformations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using ktTest::applyReference;
using ktTest::Kind;
using ktTest::makeReference;
using ktTest::measureDistance;

template <typename Real>
class TransformationMapping : public testing::Test {
protected:
    using Transformation = kt::ktGenericTransformation<Real>;
    using Matrix4 = Wm4::Matrix4<Real>;
    using Plane = Wm4::Plane3<Real>;

    static constexpr int sRounds = 200;
    static constexpr double sAllowance = ktTest::sAllowance<Real>;

    /// Whether a transformation maps points and directions as the reference does.
    void expectMapsAs(const Transformation& transformation, const ktTest::Reference& reference) {
        for (int index = 0; index < 4; ++index) {
            const Wm4::Vector3<Real> point = mRandom.point();
            EXPECT_LT(measureDistance(transformation.ApplyForward(point, true), applyReference(reference, point)),
                      sAllowance);
            if (!transformation.IsIdentity()) {
                EXPECT_LT(
                    measureDistance(transformation.ApplyForward(point, false), applyReference(reference, point, 0)),
                    sAllowance);
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
    void expectProductMaps(const Transformation& a, const Transformation& b) {
        const ktTest::Reference expected = ktTest::multiply(makeReference(a), makeReference(b));
        Transformation product;
        product.Product(a, b);
        expectMapsAs(product, expected);
        Transformation first = a;
        first.Product(first, b);
        EXPECT_TRUE(first == product);
        Transformation second = b;
        second.Product(a, second);
        EXPECT_TRUE(second == product);
    }

    static Matrix4 makeHomogeneous(const Wm4::Matrix3<Real>& linear, const Wm4::Vector3<Real>& translate) {
        Matrix4 matrix = Matrix4::IDENTITY;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                matrix[row][column] = linear[row][column];
            }
            matrix[row][3] = translate[row];
        }
        return matrix;
    }

    static Transformation fromLinear(const Wm4::Matrix3<Real>& linear,
                                     const Wm4::Vector3<Real>& translate = Wm4::Vector3<Real>::ZERO) {
        Transformation transformation;
        transformation.FromHomogeneousMatrix(makeHomogeneous(linear, translate), false);
        return transformation;
    }

    static Wm4::Matrix3<Real> diagonal(Real x, Real y, Real z) { return {x, 0, 0, 0, y, 0, 0, 0, z}; }

    ktTest::RandomTransformations<Real> mRandom;
};

using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(TransformationMapping, Reals);

TYPED_TEST(TransformationMapping, ForwardFollowsTheMatrix) {
    this->forEachKind(
        [this](const auto& transformation) { this->expectMapsAs(transformation, makeReference(transformation)); });
}

TYPED_TEST(TransformationMapping, InverseOperationsUndoForward) {
    this->forEachKind([this](const auto& transformation) {
        const auto point = this->mRandom.point();
        const ktTest::ReferencePoint expected = ktTest::widen(point);
        EXPECT_LT(
            measureDistance(transformation.ApplyInverse(transformation.ApplyForward(point, true), true), expected),
            this->sAllowance);
        EXPECT_LT(measureDistance(transformation.InvertVector(transformation.ApplyForward(point, false)), expected),
                  this->sAllowance);

        auto inverse = transformation;
        transformation.Inverse(inverse);
        EXPECT_LT(measureDistance(inverse.ApplyForward(transformation.ApplyForward(point, true), true), expected),
                  this->sAllowance);
        auto aliased = transformation;
        aliased.Inverse(aliased);
        EXPECT_TRUE(aliased == inverse);
    });
}

TYPED_TEST(TransformationMapping, IdentityFlagWinsOverTheTranslationSwitch) {
    using Vector = Wm4::Vector3<TypeParam>;
    const Vector point = this->mRandom.point();
    typename TestFixture::Transformation transformation;
    EXPECT_EQ(transformation.ApplyForward(point, false), point);
    transformation.SetTranslate({1, 2, 3});
    EXPECT_EQ(transformation.ApplyForward(point, false), point);
    EXPECT_EQ(transformation.InvertVector(point), point);
    EXPECT_EQ(transformation.ApplyForward(Vector(1, 1, 1), true), Vector(2, 3, 4));
}

TYPED_TEST(TransformationMapping, MatricesWithoutInverseMapBackToFixedPoints) {
    using Vector = Wm4::Vector3<TypeParam>;
    using Matrix = Wm4::Matrix3<TypeParam>;
    using Real = TypeParam;
    constexpr Real largest = Wm4::Math<Real>::MAX_REAL;
    const Real tiny = Wm4::Math<Real>::ZERO_TOLERANCE / 2;
    const Vector point(2, 4, 6);
    const struct {
        const char* description;
        Matrix matrix;
        Vector expected;
    } rows[] = {
        {"singular", {1, 2, 3, 2, 4, 6, 0, 0, 1}, Vector::ZERO},
        {"determinant -2", this->diagonal(-2, 1, 1), Vector::ZERO},
        {"determinant -1", this->diagonal(-1, 1, 1), {-2, 4, 6}},
        {"determinant -1 of unequal entries", this->diagonal(-2, Real(0.5), 1), {-1, 8, 6}},
        {"determinant below the tolerance", this->diagonal(tiny, 1, 1), Vector::ZERO},
        {"determinant 8", this->diagonal(2, 2, 2), {1, 2, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.description);
        typename TestFixture::Transformation transformation;
        transformation.SetMatrix(row.matrix);
        EXPECT_EQ(transformation.ApplyInverse(point, true), row.expected);
        typename TestFixture::Transformation inverse;
        transformation.Inverse(inverse);
        EXPECT_EQ(inverse.ApplyForward(point, true), row.expected);
    }
    typename TestFixture::Transformation collapsed;
    collapsed.SetUniformScale(0);
    EXPECT_EQ(collapsed.ApplyInverse(point, true), Vector(largest, largest, largest));
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
    typename TestFixture::Transformation generalIdentity;
    generalIdentity.SetMatrix(Wm4::Matrix3<TypeParam>::IDENTITY);
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
                this->expectProductMaps(this->mRandom.transformation(first), this->mRandom.transformation(second));
            }
        }
    }
}

// An unequal scale moves past a rotation only where the two do not meet.
TYPED_TEST(TransformationMapping, ProductsStayApartOnlyWhenThatIsExact) {
    using Matrix = Wm4::Matrix3<TypeParam>;
    using Vector = Wm4::Vector3<TypeParam>;
    const Matrix aboutZ(0, -1, 0, 1, 0, 0, 0, 0, 1);
    const struct {
        const char* description;
        Matrix rotationA;
        Vector scaleA;
        Matrix rotationB;
        Vector scaleB;
        bool isRS;
        bool isUniform;
    } rows[] = {
        {"uniform scales", aboutZ, {2, 2, 2}, aboutZ, {3, 3, 3}, true, true},
        {"uniform, then unequal", aboutZ, {2, 2, 2}, aboutZ, {3, 4, 5}, true, false},
        {"unequal scales without rotation", Matrix::IDENTITY, {2, 3, 4}, Matrix::IDENTITY, {5, 6, 7}, true, false},
        {"unequal scales that cancel out", Matrix::IDENTITY, {1, 2, 4}, Matrix::IDENTITY, {4, 2, 1}, true, true},
        {"scale along the axis of rotation", Matrix::IDENTITY, {2, 2, 5}, aboutZ, {3, 4, 5}, true, false},
        {"scale across the axis of rotation", Matrix::IDENTITY, {2, 3, 5}, aboutZ, {1, 1, 1}, false, false},
        {"rotated unequal scale", aboutZ, {2, 2, 5}, aboutZ, {1, 1, 1}, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.description);
        typename TestFixture::Transformation a;
        a.SetRotate(row.rotationA);
        a.SetScale(row.scaleA);
        a.SetTranslate({1, -2, 3});
        typename TestFixture::Transformation b;
        b.SetRotate(row.rotationB);
        b.SetScale(row.scaleB);
        b.SetTranslate({-4, 5, 6});
        typename TestFixture::Transformation product;
        product.Product(a, b);
        EXPECT_EQ(product.IsRSMatrix(), row.isRS);
        EXPECT_EQ(product.IsUniformScale(), row.isUniform);
        this->expectProductMaps(a, b);
    }
}

TYPED_TEST(TransformationMapping, ProductWithIdentityCopiesTheOther) {
    typename TestFixture::Transformation generalIdentity;
    generalIdentity.SetMatrix(Wm4::Matrix3<TypeParam>::IDENTITY);
    this->forEachKind([&](const auto& transformation) {
        typename TestFixture::Transformation product;
        product.Product(generalIdentity, transformation);
        EXPECT_TRUE(product == transformation);
        if (!transformation.IsIdentity()) {
            product.Product(transformation, generalIdentity);
            EXPECT_TRUE(product == transformation);
        }
    });
}

TYPED_TEST(TransformationMapping, ProductWithTheInverseIsTheIdentityMap) {
    this->forEachKind([this](const auto& transformation) {
        auto product = transformation;
        transformation.Inverse(product);
        product.Product(transformation, product);
        this->expectMapsAs(product, makeReference(typename TestFixture::Transformation()));
    });
}

TYPED_TEST(TransformationMapping, PlanesStayWithTheirPoints) {
    this->forEachKind([this](const auto& transformation) {
        const auto normal = this->mRandom.unitVector();
        const auto point = this->mRandom.point();
        const auto mapped = transformation.ApplyForward(typename TestFixture::Plane(normal, normal.Dot(point)));
        const auto along = normal.Cross(this->mRandom.unitVector());
        for (const auto& onPlane : {point, point + along}) {
            const auto image = transformation.ApplyForward(onPlane, true);
            EXPECT_NEAR(mapped.Normal.Dot(image), mapped.Constant, 5 * this->sAllowance);
        }
        EXPECT_NEAR(mapped.Normal.Length(), 1, this->sAllowance);
    });
}

TYPED_TEST(TransformationMapping, UniformlyScaledPlanesKeepTheLengthOfTheirNormal) {
    using Vector = Wm4::Vector3<TypeParam>;
    typename TestFixture::Transformation transformation;
    transformation.SetUniformScale(2);
    const auto mapped = transformation.ApplyForward(typename TestFixture::Plane(Vector(0, 0, 3), 5));
    EXPECT_EQ(mapped, typename TestFixture::Plane(Vector(0, 0, 3), 10));
}

TYPED_TEST(TransformationMapping, NormalsStayPerpendicularToTheirSurface) {
    this->forEachKind([this](const auto& transformation) {
        const auto normal = this->mRandom.unitVector();
        const auto along = normal.Cross(this->mRandom.unitVector());
        const auto mapped = transformation.ApplyNormal(normal * 3);
        EXPECT_NEAR(mapped.Length(), 1, this->sAllowance);
        EXPECT_NEAR(mapped.Dot(transformation.ApplyForward(along, false)), 0, this->sAllowance);
        // The side stays the same: what was above the surface is above its image.
        EXPECT_GT(mapped.Dot(transformation.ApplyForward(normal, false)), 0);
    });
}

TYPED_TEST(TransformationMapping, NormalsWithoutDirectionAreZero) {
    using Vector = Wm4::Vector3<TypeParam>;
    typename TestFixture::Transformation transformation;
    EXPECT_EQ(transformation.ApplyNormal(Vector::ZERO), Vector::ZERO);
    transformation.SetMatrix(this->diagonal(-2, 1, 1));
    EXPECT_EQ(transformation.ApplyNormal(Vector::UNIT_X), Vector::ZERO);
}

TYPED_TEST(TransformationMapping, HomogeneousMatrixIsTransposed) {
    this->forEachKind([](const auto& transformation) {
        typename TestFixture::Matrix4 matrix;
        transformation.GetHomogeneous(matrix);
        const ktTest::Reference reference = makeReference(transformation);
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column) {
                const auto expected = reference.at(static_cast<std::size_t>(column)).at(static_cast<std::size_t>(row));
                EXPECT_NEAR(matrix[row][column], static_cast<double>(expected), 1e-6) << row << ", " << column;
            }
        }
    });
}

TYPED_TEST(TransformationMapping, HomogeneousMatrixIsReadBack) {
    this->forEachKind([this](const auto& transformation) {
        typename TestFixture::Matrix4 matrix;
        transformation.GetHomogeneous(matrix);
        typename TestFixture::Transformation readBack = this->mRandom.transformation(Kind::General);
        readBack.FromHomogeneousMatrix(matrix, true);
        EXPECT_EQ(readBack.IsRSMatrix(), transformation.IsRSMatrix());
        this->expectMapsAs(readBack, makeReference(transformation));

        typename TestFixture::Matrix4 columns;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column) {
                columns[row][column] = matrix[column][row];
            }
        }
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
    const struct {
        const char* description;
        Matrix linear;
        bool isRS, isUniform;
        Matrix matrix;
        Vector scale;
    } rows[] = {
        {"identity", Matrix::IDENTITY, true, true, Matrix::IDENTITY, {1, 1, 1}},
        {"almost identity", this->diagonal(nearOne, 1, 1), true, true, Matrix::IDENTITY, {1, 1, 1}},
        {"uniform scale", this->diagonal(2, 2, 2), true, true, Matrix::IDENTITY, {2, 2, 2}},
        {"unequal scale", this->diagonal(2, 3, 4), true, false, Matrix::IDENTITY, {2, 3, 4}},
        {"rotation", turned, true, true, turned, {1, 1, 1}},
        {"mirror of x with scale", this->diagonal(-2, 2, 2), true, false, Matrix::IDENTITY, {-2, 2, 2}},
        {"mirror at a diagonal", swapped, true, false, swappedTurn, {-1, 1, 1}},
        {"half turn", this->diagonal(-2, -2, 2), true, true, this->diagonal(-1, -1, 1), {2, 2, 2}},
        {"shear", sheared, false, false, sheared, {1, 1, 1}},
        {"collapsed axis", this->diagonal(0, 1, 1), false, false, this->diagonal(0, 1, 1), {1, 1, 1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.description);
        const auto transformation = this->fromLinear(row.linear);
        EXPECT_EQ(transformation.IsRSMatrix(), row.isRS);
        EXPECT_EQ(transformation.IsUniformScale(), row.isUniform);
        EXPECT_EQ(transformation.GetMatrix(), row.matrix);
        EXPECT_EQ(transformation.GetScale(), row.scale);
    }
}

TYPED_TEST(TransformationMapping, ShortTranslationsAreDropped) {
    using Vector = Wm4::Vector3<TypeParam>;
    using Matrix = Wm4::Matrix3<TypeParam>;
    const auto dropped = this->fromLinear(Matrix::IDENTITY, Vector(0, TypeParam(0.0009), 0));
    EXPECT_TRUE(dropped.IsIdentity());
    const auto kept = this->fromLinear(Matrix::IDENTITY, Vector(0, TypeParam(0.0011), 0));
    EXPECT_FALSE(kept.IsIdentity());
    EXPECT_EQ(kept.GetTranslate(), Vector(0, TypeParam(0.0011), 0));
}

// The frame of a default annotation plane is built through the writable matrix and must come out as the identity.
TEST(TransformationFrame, CrossProductOfDefaultAxesIsPositiveZero) {
    const Wm4::Vector3<float> axis = Wm4::Vector3<float>::UNIT_X;
    const Wm4::Vector3<float> normal = Wm4::Vector3<float>::UNIT_Z;
    kt::ktGenericTransformation<float> frame;
    frame.GetRotate().SetColumn(0, axis);
    frame.GetRotate().SetColumn(1, normal.Cross(axis));
    frame.GetRotate().SetColumn(2, normal);
    frame.recomputeIsIdentity();
    EXPECT_TRUE(frame.IsIdentity());
}

}  // namespace
