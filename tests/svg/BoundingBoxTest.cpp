#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/Path.h"
#include "platform/svg/Text.h"
#include "tests/svg/MakeItems.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace kt::svg {
namespace {

using test::Point2;

constexpr float sNan = std::numeric_limits<float>::quiet_NaN();
constexpr float sInfinity = std::numeric_limits<float>::infinity();

void expectBox(const BoundingBox& box, const Point2& minimum, const Point2& maximum) {
    EXPECT_EQ(box.getMinPoint(), minimum) << box.getMinPoint().x << " " << box.getMinPoint().y;
    EXPECT_EQ(box.getMaxPoint(), maximum) << box.getMaxPoint().x << " " << box.getMaxPoint().y;
}

TEST(BoundingBox, IsValidWithAFiniteWidthOrHeight) {
    for (const BoundingBox& box : {BoundingBox({1, 1}, {1, 2}), BoundingBox({2, 1}, {1, 1})}) {
        EXPECT_TRUE(box.isValid());
    }
    for (const BoundingBox& box : {BoundingBox(), BoundingBox({1, 1}, {1, 1}), BoundingBox({0, 0}, {sInfinity, 1}),
                                   BoundingBox({0, 0}, {sNan, 1}), BoundingBox({-3e38F, 0}, {3e38F, 1})}) {
        EXPECT_FALSE(box.isValid());
    }
}

TEST(BoundingBox, StaysEmptyWithoutPoints) {
    BoundingBox box;
    box.addPoint({sNan, 1});
    box.addBox({});
    box.addMargin({5, 5});
    box.translate({1, 1});
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(box.getSize(), Point2(0, 0));
    EXPECT_EQ(box.getCenter(), Point2(0, 0));
    box.addBox({{1, 2}, {3, 8}});
    box.addMargin({1, 0});
    box.translate({10, 0});
    expectBox(box, {10, 2}, {14, 8});
    EXPECT_EQ(box.getCenter(), Point2(12, 5));
}

TEST(EstimatedBoundingBox, CoversTreesWithAllTransforms) {
    const auto rect = test::makeRect({1, 2}, {-4, 3});
    rect->translate({1, 0});
    rect->setVisible(false);
    const auto inner = test::makeGroup(Transform::makeTranslation({0, 10}), {rect, std::make_shared<Node>()});
    const auto tree = test::makeGroup({{0, -1, 1, 0}, {100, 0}}, {inner});
    // (-2..2, 2..5) moved to (-2..2, 12..15), turned to (-15..-12, -2..2), moved.
    expectBox(ComputeEstimatedBoundingBox(*tree), {85, -2}, {88, 2});

    const Transform matrix{{2, 0, 0, -1}, {0, 0}};
    expectBox(ComputeEstimatedBoundingBox(*tree, nullptr, &matrix), {170, -2}, {176, 2});
    const ItemFilter noRects = [](const ItemInterface& item) { return item.getKind() != ItemInterface::Kind::Rect; };
    EXPECT_TRUE(ComputeEstimatedBoundingBox(*tree, noRects).isEmpty());
}

TEST(EstimatedBoundingBox, CoversEveryKindOfItem) {
    expectBox(ComputeEstimatedBoundingBox(*test::makeImage("", {1, 1}, {2, 3})), {1, 1}, {3, 4});
    Text text;
    text.setPosition({10, 10});
    EXPECT_TRUE(ComputeEstimatedBoundingBox(text).isEmpty());
    text.setExtent({{0, -3}, {20, 1}});
    expectBox(ComputeEstimatedBoundingBox(text), {10, 7}, {30, 11});
    Path path;
    path.moveTo({-50, -50});
    path.moveTo({1, 1});
    path.lineTo({4, 0});
    path.close();
    path.lineTo({0, 3});
    expectBox(ComputeEstimatedBoundingBox(path), {0, 0}, {4, 3});
}

TEST(EstimatedBoundingBox, LeavesOutWhatIsNoNumberAndKeepsTheInfinite) {
    EXPECT_TRUE(ComputeEstimatedBoundingBox(Rect({sNan, 0}, {1, 1})).isEmpty());
    EXPECT_TRUE(ComputeEstimatedBoundingBox(Rect({0, 0}, {1, sNan})).isEmpty());
    Rect infinite({0, 0}, {sInfinity, 1});
    infinite.setTransform(Transform::makeTranslation({1, 1}));
    const BoundingBox box = ComputeEstimatedBoundingBox(infinite);
    EXPECT_FALSE(box.isEmpty());
    EXPECT_FALSE(box.isValid());
    Path path;
    path.moveTo({0, 0});
    path.cubicTo({1, sNan}, {2, sInfinity}, {3, 3});
    path.arcTo({sNan, 1}, 0, true, true, {5, 5});
    EXPECT_FALSE(ComputeEstimatedBoundingBox(path).isValid());
}

using Point2d = std::array<double, 2>;

/// The box of a path under a map must hold densely sampled points of it but for that rounding, and reach beyond them by
/// that step at most.
template <typename Curve>
void expectTight(Path& path, const Transform& map, const Curve& getPoint, double rounding, double step) {
    path.setTransform(map);
    const BoundingBox box = ComputeEstimatedBoundingBox(path);
    for (int row = 0; row < 2; ++row) {
        double low = std::numeric_limits<double>::max();
        double high = std::numeric_limits<double>::lowest();
        for (int sample = 0; sample <= 4000; ++sample) {
            const Point2d point = getPoint(sample / 4000.0);
            const double mapped = static_cast<double>(map.mMatrix(row, 0)) * point[0] +
                                  static_cast<double>(map.mMatrix(row, 1)) * point[1] +
                                  static_cast<double>(map.mTranslation[row]);
            low = std::min(low, mapped);
            high = std::max(high, mapped);
        }
        const auto minimum = static_cast<double>(box.getMinPoint()[row]);
        const auto maximum = static_cast<double>(box.getMaxPoint()[row]);
        EXPECT_LE(minimum, low + rounding);
        EXPECT_GE(minimum, low - step);
        EXPECT_GE(maximum, high - rounding);
        EXPECT_LE(maximum, high + step);
    }
}

class CurveBoxTest : public testing::Test {
protected:
    float number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(mRandom); }
    Point2 point(float size) { return {number(-size, size), number(-size, size)}; }
    Transform transform() { return {{number(-2, 2), number(-2, 2), number(-2, 2), number(-2, 2)}, point(20)}; }

    std::mt19937 mRandom{3};
    static constexpr int sRounds = 300;
};

TEST_F(CurveBoxTest, HoldsSampledCubicsTightly) {
    for (int round = 0; round < sRounds && !HasFailure(); ++round) {
        const Point2 p[] = {point(10), point(30), point(30), point(10)};
        Path path;
        path.moveTo(p[0]);
        path.cubicTo(p[1], p[2], p[3]);
        const auto getPoint = [&p](double t) {
            const double s = 1.0 - t;
            const auto blend = [&](int i) {
                return s * s * s * static_cast<double>(p[0][i]) + 3 * s * s * t * static_cast<double>(p[1][i]) +
                       3 * s * t * t * static_cast<double>(p[2][i]) + t * t * t * static_cast<double>(p[3][i]);
            };
            return Point2d{blend(0), blend(1)};
        };
        expectTight(path, transform(), getPoint, 1e-5, 1e-3);
    }
}

TEST_F(CurveBoxTest, HoldsSampledArcsTightly) {
    for (int round = 0; round < sRounds && !HasFailure(); ++round) {
        const Point2 center = point(10);
        const Point2 radii(number(0.5F, 10), number(0.5F, 10));
        const float degrees = number(-200, 200);
        const auto start = static_cast<double>(number(-7, 7));
        const auto span = static_cast<double>(number(-6, 6));
        if (std::abs(std::abs(span) - std::numbers::pi) < 0.02) {
            continue;  // half turns hang on the rounding of their ends; they have tests of their own
        }
        const double turn = static_cast<double>(degrees) * std::numbers::pi / 180.0;
        const auto getPoint = [&](double t) {
            const double u = static_cast<double>(radii.x) * std::cos(start + span * t);
            const double v = static_cast<double>(radii.y) * std::sin(start + span * t);
            return Point2d{static_cast<double>(center.x) + std::cos(turn) * u - std::sin(turn) * v,
                           static_cast<double>(center.y) + std::sin(turn) * u + std::cos(turn) * v};
        };
        const auto toFloat = [](const Point2d& p) {
            return Point2(static_cast<float>(p[0]), static_cast<float>(p[1]));
        };
        Path path;
        path.moveTo(toFloat(getPoint(0.0)));
        path.arcTo(radii, degrees, std::abs(span) > std::numbers::pi, span > 0.0, toFloat(getPoint(1.0)));
        // The end points of the command are rounded to float, which moves the centre of short arcs.
        expectTight(path, transform(), getPoint, 1e-4, 2.5e-4);
    }
}

TEST(EstimatedBoundingBox, GrowsArcsWhoseRadiiAreTooSmall) {
    Path path;
    path.moveTo({0, 0});
    path.arcTo({1, 1}, 0, false, true, {10, 0});
    expectBox(ComputeEstimatedBoundingBox(path), {0, -5}, {10, 0});
    Path straight;
    straight.moveTo({0, 0});
    straight.arcTo({0, 4}, 0, false, true, {10, 0});
    expectBox(ComputeEstimatedBoundingBox(straight), {0, 0}, {10, 0});
}

}  // namespace
}  // namespace kt::svg
