#include "platform/wm4/Wm4IntrLine2Line2.h"
#include "platform/wm4/Wm4Math.h"
#include "platform/wm4/Wm4Matrix2.h"
#include "platform/wm4/Wm4Matrix3.h"
#include "platform/wm4/Wm4Matrix4.h"
#include "platform/wm4/Wm4Plane3.h"
#include "platform/wm4/Wm4Vector3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

template <typename Value, typename Real, int Count>
constexpr bool isPacked() {
    return std::is_trivially_copyable_v<Value> && sizeof(Value) == sizeof(Real) * Count;
}

// Arrays of these values are handed about as arrays of numbers.
static_assert(isPacked<Wm4::Vector2<float>, float, 2>() && isPacked<Wm4::Vector3<float>, float, 3>());
static_assert(isPacked<Wm4::Vector3<unsigned char>, unsigned char, 3>());
static_assert(isPacked<Wm4::Matrix2<double>, double, 4>() && isPacked<Wm4::Matrix3<float>, float, 9>());
static_assert(isPacked<Wm4::Matrix4<float>, float, 16>() && isPacked<Wm4::Plane3<float>, float, 4>());

// Other libraries use these before main().
static_assert(Wm4::Vector3<float>::UNIT_Z == Wm4::Vector3<float>(0, 0, 1));
static_assert(Wm4::Matrix3<double>::IDENTITY(2, 2) == 1 && Wm4::Matrix3<double>::IDENTITY(2, 0) == 0);
static_assert(Wm4::Math<float>::ZERO_TOLERANCE == 1e-6F && Wm4::Math<double>::ZERO_TOLERANCE == 1e-8);

TEST(Wm4Lines, Intersect) {
    constexpr float sNan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char* mName;
        Wm4::Line2<float> mLine0, mLine1;
        int mType;
        Wm4::Vector2<float> mPoint{};
    } rows[] = {
        {"crossing", {{0, 0}, {1, 0}}, {{3, 5}, {0, 1}}, 1, {3, 0}},
        {"directions of any length", {{0, 0}, {10, 10}}, {{4, 0}, {0, -2}}, 1, {4, 4}},
        {"crossing behind the origin", {{0, 0}, {1, 0}}, {{-3, 5}, {0, 1}}, 1, {-3, 0}},
        {"parallel", {{0, 0}, {1, 0}}, {{0, 1}, {1, 0}}, 0},
        {"same", {{0, 0}, {1, 1}}, {{2, 2}, {-1, -1}}, 4},
        {"parallel at the tolerance", {{0, 0}, {1, 0}}, {{0, 1}, {1, 1e-6F}}, 0},
        {"crossing above the tolerance", {{0, 0}, {1, 0}}, {{0, 0}, {1, 2e-6F}}, 1, {0, 0}},
        {"not a number", {{sNan, 0}, {1, 0}}, {{0, 0}, {0, 1}}, 0},
    };
    for (const auto& row : rows) {
        Wm4::IntrLine2Line2<float> intersection(row.mLine0, row.mLine1);
        EXPECT_EQ(intersection.GetIntersectionType(), 0) << row.mName;
        EXPECT_EQ(intersection.Find(), row.mType != 0) << row.mName;
        EXPECT_EQ(intersection.GetIntersectionType(), row.mType) << row.mName;
        EXPECT_TRUE(row.mType != 1 || intersection.GetPoint() == row.mPoint) << row.mName;
    }
}

}  // namespace
