// Arrays of points get the bits of the one-point operations, whatever their length, alignment, aliasing and the vectors
// that the processor has.

#include "tests/math/RandomTransformations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

using ktTest::Kind;

enum class Operation : std::uint8_t { Forward, ForwardDirection, Inverse };

constexpr Operation sOperations[] = {Operation::Forward, Operation::ForwardDirection, Operation::Inverse};

template <typename Real>
class TransformationArray : public testing::Test {
protected:
    using Transformation = kt::ktGenericTransformation<Real>;
    using Vector = Wm4::Vector3<Real>;

    static Vector mapOne(const Transformation& transformation, Operation operation, const Vector& point) {
        return operation == Operation::Inverse ? transformation.ApplyInverse(point, true)
                                               : transformation.ApplyForward(point, operation == Operation::Forward);
    }

    static void mapAll(const Transformation& transformation, Operation operation, int count, const Vector* in,
                       Vector* out) {
        if (operation == Operation::Inverse) {
            transformation.ApplyInverse(count, in, out);
        } else {
            transformation.ApplyForward(count, in, out, operation == Operation::Forward);
        }
    }

    /// Maps part of an array that begins at `offset`, and checks every result and the points around.
    void checkMapping(const Transformation& transformation, Operation operation, std::size_t count, std::size_t offset,
                      bool isInPlace) {
        constexpr std::size_t margin = 2;
        std::vector<Vector> in(offset + count + margin);
        std::generate(in.begin(), in.end(), [this] { return mRandom.point(); });
        const std::vector<Vector> untouched = isInPlace ? in : std::vector<Vector>(in.size(), Vector(7, 8, 9));
        std::vector<Vector> expected = untouched;
        for (std::size_t index = offset; index < offset + count; ++index) {
            expected[index] = mapOne(transformation, operation, in[index]);
        }
        std::vector<Vector> out = untouched;
        const Vector* source = isInPlace ? out.data() : in.data();
        mapAll(transformation, operation, static_cast<int>(count), source + offset, out.data() + offset);
        const bool areEqual = std::memcmp(out.data(), expected.data(), in.size() * sizeof(Vector)) == 0;
        EXPECT_TRUE(areEqual) << count << " points from " << offset << ", operation " << static_cast<int>(operation)
                              << (isInPlace ? ", in place" : "");
    }

    ktTest::RandomTransformations<Real> mRandom;
};

using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(TransformationArray, Reals);

TYPED_TEST(TransformationArray, ShortArraysOfEveryLength) {
    for (const Kind kind : ktTest::sKinds) {
        SCOPED_TRACE(static_cast<int>(kind));
        const auto transformation = this->mRandom.transformation(kind);
        for (const auto operation : sOperations) {
            for (std::size_t count = 0; count <= 70; ++count) {
                this->checkMapping(transformation, operation, count, count % 5, false);
                this->checkMapping(transformation, operation, count, count % 3, true);
            }
        }
    }
    // Everything maps back to the largest numbers.
    kt::ktGenericTransformation<TypeParam> collapsed;
    collapsed.SetUniformScale(0);
    for (const std::size_t count : {1U, 17U, 70U}) {
        this->checkMapping(collapsed, Operation::Inverse, count, 0, true);
    }
}

TYPED_TEST(TransformationArray, NothingIsTouchedForCountsBelowOne) {
    for (const Kind kind : ktTest::sKinds) {
        const auto transformation = this->mRandom.transformation(kind);
        for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
            Wm4::Vector3<TypeParam> out(1, 2, 3);
            transformation.ApplyForward(count, &out, &out, true);
            transformation.ApplyInverse(count, &out, &out);
            transformation.ApplyForward(count, nullptr, nullptr, true);
            EXPECT_EQ(out, Wm4::Vector3<TypeParam>(1, 2, 3));
        }
    }
}

}  // namespace
