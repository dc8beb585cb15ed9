#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

using Points = std::vector<Vector2>;

class LeadersTest : public MigrationTest {
protected:
    kt::ktPointer<kt::ktCadAnnotation> createLeaders(const std::vector<Legacy::Leader>& leaders, float size,
                                                     const Vector3& anchor) {
        kt::ktPointer<kt::ktCadAnnotation> target(new kt::ktCadAnnotation);
        ktLegacy::ktAnnotationMigration migration(0, nullptr, nullptr, size);
        EXPECT_TRUE(migration.createLeaders(leaders, *target, anchor, {8.0F, 9.0F}));
        return target;
    }

    /// The only item of the head of a leader from the origin; a filled head has no outline, a line head only one.
    const kt::svg::Path& drawHead(int code, float size, const Vector3& target, bool isFilled = true) {
        mHolder = createLeaders({makeLeader(target, code)}, size, {});
        const auto& items = mHolder->mShapes.at(0).mNode->getChildren();
        EXPECT_TRUE(mHolder->mShapes.size() == 1 && items.size() == 1);
        const auto& path = dynamic_cast<const kt::svg::Path&>(*items.at(0));
        EXPECT_EQ(path.getOutlineColor().value_or(""), isFilled ? "none" : "");
        EXPECT_EQ(path.getColor().value_or(""), isFilled ? "" : "none");
        EXPECT_EQ(path.getStyleOption().value_or(-1), isFilled ? -1 : 1);
        return path;
    }

    kt::ktPointer<kt::ktCadAnnotation> mHolder;
};

TEST_F(LeadersTest, TurnsFilledHeadsAlongTheLeader) {
    // Heads of size 1 in coordinates along the leader (from the anchor to the target) and across (a quarter turn on).
    const std::tuple<int, const char*, std::vector<std::pair<double, double>>> heads[] = {
        {1, "MLLLZ", {{-0.5, -0.5}, {-0.5, 0.5}, {0.5, 0.5}, {0.5, -0.5}}},
        {3, "MLLZ", {{-1.0, 0.3}, {0.0, 0.0}, {-1.0, -0.3}}},
        {6, "MLLZ", {{0.0, -0.5}, {-1.0, 0.0}, {0.0, 0.5}}},
    };
    // Target as seen from the anchor and the unit vector, which is zero for no direction.
    const std::tuple<Vector3, double, double> directions[] = {
        {{7.0F, 0.0F, 0.0F}, 1.0, 0.0}, {{0.0F, -0.25F, 3.0F}, 0.0, -1.0}, {{-3.0F, 4.0F, 2.0F}, -0.6, 0.8},
        {{0.0F, 0.0F, 5.0F}, 0.0, 0.0}, {{0.0F, 9e-7F, 0.0F}, 0.0, 0.0},   {{0.0F, 2e-6F, 0.0F}, 0.0, 1.0},
    };
    for (const auto& [code, letters, points] : heads) {
        for (const auto& [target, directionX, directionY] : directions) {
            for (const float size : {1.0F, 3.0F, 4.0F}) {
                SCOPED_TRACE(testing::Message() << code << " towards " << directionX << ' ' << directionY);
                const kt::svg::Path& path = drawHead(code, size, target);
                EXPECT_EQ(lettersOf(path), letters);
                ASSERT_EQ(path.getPoints().size(), points.size());
                for (std::size_t i = 0; i < points.size(); ++i) {
                    const auto [along, across] = points[i];
                    const Vector2 point = path.getPoints()[i] / size;
                    EXPECT_NEAR(point.x, along * directionX - across * directionY, 2e-7);
                    EXPECT_NEAR(point.y, along * directionY + across * directionX, 2e-7);
                }
            }
        }
    }
}

TEST_F(LeadersTest, CirclesHaveTheHeadSizeAsDiameter) {
    for (const float size : {1.0F, 3.0F, 4.0F}) {
        const kt::svg::Path& path = drawHead(2, size, {0.0F, 0.0F, 5.0F});
        EXPECT_EQ(lettersOf(path).back(), 'Z');
        const kt::svg::BoundingBox box = kt::svg::ComputeEstimatedBoundingBox(path);
        EXPECT_NEAR(box.getMinPoint().x, -0.5F * size, 1e-5F);
        EXPECT_NEAR(box.getMinPoint().y, -0.5F * size, 1e-5F);
        EXPECT_NEAR(box.getWidth(), size, 1e-5F);
        EXPECT_NEAR(box.getHeight(), size, 1e-5F);
    }
}

TEST_F(LeadersTest, LineHeadsIgnoreTheDirectionAndThePlusTheSizeToo) {
    const auto crossOf = [](float reach) {
        return Points{{-reach, -reach}, {reach, reach}, {-reach, reach}, {reach, -reach}};
    };
    const Points plus = {{-1.0F, 0.0F}, {1.0F, 0.0F}, {0.0F, -1.0F}, {0.0F, 1.0F}};
    const std::tuple<int, float, Points> rows[] = {
        {4, 1.0F, plus}, {4, 3.0F, plus}, {4, 4.0F, plus}, {5, 1.0F, crossOf(0.35355F)}, {5, 4.0F, crossOf(1.4142F)}};
    for (const auto& [code, size, points] : rows) {
        for (const Vector3& target : {Vector3(3.0F, 4.0F, 0.0F), Vector3::ZERO}) {
            SCOPED_TRACE(testing::Message() << code << " of size " << size);
            const kt::svg::Path& path = drawHead(code, size, target, false);
            EXPECT_EQ(lettersOf(path), "MLML");
            EXPECT_EQ(path.getPoints(), points);
        }
    }
}

TEST_F(LeadersTest, EveryLeaderHasSegmentAndAnchorAndKnownHeadsAShape) {
    const Vector3 anchor(1.0F, 2.0F, 3.0F);
    const auto annotation = createLeaders({makeLeader({4.0F, 0.0F, 0.5F}, 0), makeLeader({5.0F, 0.0F, 0.5F}, 9),
                                           makeLeader({6.0F, 0.0F, 0.5F}, 3), makeLeader({7.0F, 0.0F, 0.5F}, -1)},
                                          3.0F, anchor);
    EXPECT_THAT(takeLog(), ElementsAre("Unhandled leader head", "Unhandled leader head"));
    ASSERT_EQ(annotation->mSegments.size(), 4U);
    ASSERT_EQ(annotation->mLeaderAnchors.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(annotation->mSegments[i].mStart, Vector3(4.0F + static_cast<float>(i), 0.0F, 0.5F));
        EXPECT_EQ(annotation->mSegments[i].mEnd, anchor);
        EXPECT_EQ(annotation->mLeaderAnchors[i].mAnchor, anchor);
        EXPECT_EQ(annotation->mLeaderAnchors[i].mOffset, Vector2(8.0F, 9.0F));
    }
    ASSERT_EQ(annotation->mShapes.size(), 1U);
    EXPECT_EQ(annotation->mShapes[0].mPosition, Vector3(6.0F, 0.0F, 0.5F));
    const kt::svg::Transform mirror{{1.0F, 0.0F, 0.0F, -1.0F}, {0.0F, 0.0F}};
    EXPECT_EQ(annotation->mShapes[0].mNode->getTransform(), mirror);
}

using Segment = std::pair<Vector3, Vector3>;
using Measure = ktLegacy::ktAnnotationInterface::MeasureLeader;

class MeasureLeadersTest : public MigrationTest {
protected:
    bool createMeasureLeaders(const std::vector<Measure>& leaders, float size, const Vector3& anchor) {
        ktLegacy::ktAnnotationMigration migration(0, nullptr, nullptr, size);
        return migration.createMeasureLeaders(leaders, *mTarget, anchor, {8.0F, 9.0F});
    }
    std::vector<Segment> takeSegments() {
        std::vector<Segment> segments;
        for (const auto& segment : std::exchange(mTarget->mSegments, {})) {
            segments.emplace_back(segment.mStart, segment.mEnd);
        }
        return segments;
    }

    kt::ktPointer<kt::ktCadAnnotation> mTarget{new kt::ktCadAnnotation};
};

/// A place in the plane, or in space for ends of extension lines that have depths of their own.
struct Place {
    float x, y, z = 0.0F;
};
using Polyline = std::vector<Place>;

const Vector3 sA(0.0F, 0.0F, 0.0F);
const Vector3 sB(10.0F, 0.0F, 0.0F);
const Vector3 sUp5(0.0F, 5.0F, 0.0F);
const Polyline sExtendA = {{0, 0}, {0, 5}};
const Polyline sExtendB = {{10, 0}, {10, 5}};
const Polyline sHeadA = {{1, 5.2679F}, {0, 5}, {1, 4.7321F}};
const Polyline sHeadB = {{9, 5.2679F}, {10, 5}, {9, 4.7321F}};

void expectLines(const std::vector<Segment>& actual, const std::vector<Polyline>& lines, double tolerance = 1e-6) {
    auto segment = actual.begin();
    for (const Polyline& line : lines) {
        for (std::size_t i = 1; i < line.size(); ++i, ++segment) {
            ASSERT_NE(segment, actual.end());
            for (const auto& [place, expected] : {std::pair(segment->first, line[i - 1]), {segment->second, line[i]}}) {
                EXPECT_NEAR(place.x, expected.x, tolerance) << "segment " << segment - actual.begin();
                EXPECT_NEAR(place.y, expected.y, tolerance) << "segment " << segment - actual.begin();
                EXPECT_NEAR(place.z, expected.z, tolerance) << "segment " << segment - actual.begin();
            }
        }
    }
    EXPECT_EQ(segment, actual.end());
}

// Written out by hand: the dimension line (to both sides when the anchor lies between the feet), head at A, head at B,
// extension lines of A and of B. Of an upright construction the across direction is (0, 1) and the dimension line runs
// from the foot of B to that of A; a head of size 1 has barbs 1 along it and 0.2679 to both sides of it.
TEST_F(MeasureLeadersTest, DrawsDimensionAndExtensionLines) {
    const auto expectDrawing = [this](const Measure& measure, const Vector3& anchor, float size,
                                      const std::vector<Polyline>& lines) {
        mTarget->mLeaderAnchors.clear();
        EXPECT_TRUE(createMeasureLeaders({measure}, size, anchor));
        expectLines(takeSegments(), lines);
        ASSERT_EQ(mTarget->mLeaderAnchors.size(), 1U);
        EXPECT_EQ(mTarget->mLeaderAnchors[0].mAnchor, anchor);
        EXPECT_EQ(mTarget->mLeaderAnchors[0].mOffset, Vector2(8.0F, 9.0F));
        EXPECT_TRUE(mTarget->mShapes.empty());
    };
    expectDrawing(makeMeasure(sA, sB, sUp5), {5, 5, 0}, 1,
                  {{{5, 5}, {10, 5}}, {{5, 5}, {0, 5}}, sHeadA, sHeadB, sExtendA, sExtendB});
    // Anchor beyond B, tips of the offset vector beyond the feet, depths of their own.
    const Polyline highHeadA = {{2, 5.5358F, 7}, {0, 5, 7}, {2, 4.4642F, 7}};
    const Polyline highHeadB = {{8, 5.5358F, 7}, {10, 5, 7}, {8, 4.4642F, 7}};
    expectDrawing(
        makeMeasure({0, 0, 1}, {10, 0, 2}, {0, 6, 0.5F}), {20, 5, 7}, 2,
        {{{20, 5, 7}, {0, 5, 7}}, highHeadA, highHeadB, {{0, 0, 1}, {0, 6, 1.5F}}, {{10, 0, 2}, {10, 6, 2.5F}}});
    // Anchor before A, offset vector shorter than the way to the feet.
    expectDrawing(makeMeasure(sA, sB, {0, 2, 0}), {-1, 5, 0}, 1,
                  {{{-1, 5}, {10, 5}}, sHeadA, sHeadB, sExtendA, sExtendB});
    // An anchor at the foot of A does not lie between the feet.
    expectDrawing(makeMeasure(sA, sB, sUp5), {0, 5, 0}, 0,
                  {{{0, 5}, {10, 5}}, Polyline(3, {0, 5}), Polyline(3, {10, 5}), sExtendA, sExtendB});
    // No offset vector: across is perpendicular to A and B and points down, the dimension line runs from A to B.
    const Polyline downHeadA = {{-1, 2.7321F}, {0, 3}, {-1, 3.2679F}};
    const Polyline downHeadB = {{11, 2.7321F}, {10, 3}, {11, 3.2679F}};
    expectDrawing(makeMeasure(sA, sB, {9e-7F, 0, 3}), {5, 3, 0}, 1,
                  {{{5, 3}, {10, 3}}, {{5, 3}, {0, 3}}, downHeadA, downHeadB, {{0, 0}, {0, 3}}, {{10, 0}, {10, 3}}});
    // A equal to B: both feet in one place, equally far.
    expectDrawing(makeMeasure(sA, sA, sUp5), {4, 5, 0}, 1,
                  {{{4, 5}, {0, 5}}, sHeadA, {{-1, 5.2679F}, {0, 5}, {-1, 4.7321F}}, sExtendA, sExtendA});
    // Slanted offset vector: across (0.6, 0.8), along (-0.8, 0.6).
    const Polyline slantedHeadA = {{3.96074F, 3.61432F}, {3, 4}, {3.63926F, 3.18568F}};
    const Polyline slantedHeadB = {{8.76074F, 0.01432F}, {9.4F, -0.8F}, {8.43926F, -0.41432F}};
    expectDrawing(makeMeasure(sA, sB, {3, 4, 0}), {-1, 7, 0}, 1,
                  {{{-1, 7}, {9.4F, -0.8F}}, slantedHeadA, slantedHeadB, {{0, 0}, {3, 4}}, {{10, 0}, {13, 4}}});
}

TEST_F(MeasureLeadersTest, ArrowModesTurnTheHeads) {
    // By mode: where the barbs lie seen from A and from B. The dimension line runs from B to A here.
    const Vector2 barbs[] = {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}, {-1, -1}, {-1, -1}};
    for (int mode = -1; mode <= 4; ++mode) {
        const auto [a, b] = barbs[mode + 1];
        SCOPED_TRACE(mode);
        EXPECT_TRUE(createMeasureLeaders({makeMeasure(sA, sB, sUp5, mode)}, 1.0F, {5.0F, 5.0F, 0.0F}));
        const Polyline headA = {{a, 5.2679F}, {0, 5}, {a, 4.7321F}};
        const Polyline headB = {{10 + b, 5.2679F}, {10, 5}, {10 + b, 4.7321F}};
        expectLines(takeSegments(), {{{5, 5}, {10, 5}}, {{5, 5}, {0, 5}}, headA, headB, sExtendA, sExtendB}, 0.0);
    }
}

TEST_F(MeasureLeadersTest, AnOffsetTooLongToMeasureCountsAsNone) {
    EXPECT_TRUE(createMeasureLeaders({makeMeasure(sA, sB, {3e38F, 3e38F, 0.0F})}, 1.0F, {5.0F, 3.0F, 0.0F}));
    const std::vector<Segment> segments = takeSegments();
    ASSERT_EQ(segments.size(), 8U);
    EXPECT_EQ(segments[0].second, Vector3(10.0F, 3.0F, 0.0F));
    EXPECT_EQ(segments[6].second, Vector3(3e38F, 3e38F, 0.0F)) << "the tip is still farther than the foot";
}

TEST_F(MeasureLeadersTest, TheFirstFailureEndsTheListAndKeepsWhatWasThere) {
    const Measure good = makeMeasure(sA, sB, sUp5);
    const float nan = std::nanf("");
    const std::vector<Measure> bad = {
        makeMeasure(sB, sB, Vector3::ZERO), makeMeasure({1.0F, 1.0F, 0.0F}, {1.0F, 1.0F, 9.0F}, {0.0F, 0.0F, 5.0F}),
        makeMeasure({nan, 0.0F, 0.0F}, sB, sUp5), makeMeasure(sA, {0.0F, nan, 0.0F}, sUp5)};
    for (const Measure& failing : bad) {
        mTarget->mLeaderAnchors.clear();
        EXPECT_FALSE(createMeasureLeaders({good, failing, good}, 1.0F, {5.0F, 5.0F, 0.0F}));
        EXPECT_EQ(takeSegments().size(), 8U);
        EXPECT_EQ(mTarget->mLeaderAnchors.size(), 1U);
        EXPECT_THAT(takeLog(), ElementsAre("Fail to compute perpendicular line"));
    }
    EXPECT_TRUE(createMeasureLeaders({}, 1.0F, {}));
    EXPECT_TRUE(mTarget->mSegments.empty());
}

}  // namespace
}  // namespace migrationtest
