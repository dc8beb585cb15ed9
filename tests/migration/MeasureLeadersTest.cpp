#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

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

/// Dimension line, head at A, head at B, extension lines of A and of B.
struct Row {
    const char* mWhat;
    Measure mMeasure;
    Vector3 mAnchor;
    float mSize;
    std::vector<Segment> mSegments;
};

const Vector3 sA(0.0F, 0.0F, 0.0F);
const Vector3 sB(10.0F, 0.0F, 0.0F);
const Vector3 sUp5(0.0F, 5.0F, 0.0F);

// Written out by hand. Of an upright construction the across direction is (0, 1) and the dimension line runs from the
// foot of B to that of A; a head of size 1 has barbs 1 along it and 0.2679 to both sides of it.
const std::vector<Row> sRows = {
    {"anchor between the feet",
     makeMeasure(sA, sB, sUp5),
     {5.0F, 5.0F, 0.0F},
     1.0F,
     {{{5.0F, 5.0F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{5.0F, 5.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{1.0F, 5.2679F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {1.0F, 4.7321F, 0.0F}},
      {{9.0F, 5.2679F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{10.0F, 5.0F, 0.0F}, {9.0F, 4.7321F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{10.0F, 0.0F, 0.0F}, {10.0F, 5.0F, 0.0F}}}},
    {"anchor beyond B, tips of the offset vector beyond the feet, depths of their own",
     makeMeasure({0.0F, 0.0F, 1.0F}, {10.0F, 0.0F, 2.0F}, {0.0F, 6.0F, 0.5F}),
     {20.0F, 5.0F, 7.0F},
     2.0F,
     {{{20.0F, 5.0F, 7.0F}, {0.0F, 5.0F, 7.0F}},
      {{2.0F, 5.5358F, 7.0F}, {0.0F, 5.0F, 7.0F}},
      {{0.0F, 5.0F, 7.0F}, {2.0F, 4.4642F, 7.0F}},
      {{8.0F, 5.5358F, 7.0F}, {10.0F, 5.0F, 7.0F}},
      {{10.0F, 5.0F, 7.0F}, {8.0F, 4.4642F, 7.0F}},
      {{0.0F, 0.0F, 1.0F}, {0.0F, 6.0F, 1.5F}},
      {{10.0F, 0.0F, 2.0F}, {10.0F, 6.0F, 2.5F}}}},
    {"anchor before A, offset vector shorter than the way to the feet",
     makeMeasure(sA, sB, {0.0F, 2.0F, 0.0F}),
     {-1.0F, 5.0F, 0.0F},
     1.0F,
     {{{-1.0F, 5.0F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{1.0F, 5.2679F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {1.0F, 4.7321F, 0.0F}},
      {{9.0F, 5.2679F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{10.0F, 5.0F, 0.0F}, {9.0F, 4.7321F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{10.0F, 0.0F, 0.0F}, {10.0F, 5.0F, 0.0F}}}},
    {"anchor at the foot of A does not lie between the feet",
     makeMeasure(sA, sB, sUp5),
     {0.0F, 5.0F, 0.0F},
     0.0F,
     {{{0.0F, 5.0F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{10.0F, 5.0F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{10.0F, 5.0F, 0.0F}, {10.0F, 5.0F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{10.0F, 0.0F, 0.0F}, {10.0F, 5.0F, 0.0F}}}},
    {"no offset vector: across is perpendicular to A and B and points down, the dimension line runs from A to B",
     makeMeasure(sA, sB, {9e-7F, 0.0F, 3.0F}),
     {5.0F, 3.0F, 0.0F},
     1.0F,
     {{{5.0F, 3.0F, 0.0F}, {10.0F, 3.0F, 0.0F}},
      {{5.0F, 3.0F, 0.0F}, {0.0F, 3.0F, 0.0F}},
      {{-1.0F, 2.7321F, 0.0F}, {0.0F, 3.0F, 0.0F}},
      {{0.0F, 3.0F, 0.0F}, {-1.0F, 3.2679F, 0.0F}},
      {{11.0F, 2.7321F, 0.0F}, {10.0F, 3.0F, 0.0F}},
      {{10.0F, 3.0F, 0.0F}, {11.0F, 3.2679F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 3.0F, 0.0F}},
      {{10.0F, 0.0F, 0.0F}, {10.0F, 3.0F, 0.0F}}}},
    {"A equal to B: both feet in one place, equally far",
     makeMeasure(sA, sA, sUp5),
     {4.0F, 5.0F, 0.0F},
     1.0F,
     {{{4.0F, 5.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{1.0F, 5.2679F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {1.0F, 4.7321F, 0.0F}},
      {{-1.0F, 5.2679F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 5.0F, 0.0F}, {-1.0F, 4.7321F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F}}}},
    {"slanted offset vector: across (0.6, 0.8), along (-0.8, 0.6)",
     makeMeasure(sA, sB, {3.0F, 4.0F, 0.0F}),
     {-1.0F, 7.0F, 0.0F},
     1.0F,
     {{{-1.0F, 7.0F, 0.0F}, {9.4F, -0.8F, 0.0F}},
      {{3.96074F, 3.61432F, 0.0F}, {3.0F, 4.0F, 0.0F}},
      {{3.0F, 4.0F, 0.0F}, {3.63926F, 3.18568F, 0.0F}},
      {{8.76074F, 0.01432F, 0.0F}, {9.4F, -0.8F, 0.0F}},
      {{9.4F, -0.8F, 0.0F}, {8.43926F, -0.41432F, 0.0F}},
      {{0.0F, 0.0F, 0.0F}, {3.0F, 4.0F, 0.0F}},
      {{10.0F, 0.0F, 0.0F}, {13.0F, 4.0F, 0.0F}}}},
};

void expectSegments(const std::vector<Segment>& actual, const std::vector<Segment>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "segment " << i << ": " << testing::PrintToString(actual[i]));
        for (int component = 0; component < 3; ++component) {
            EXPECT_NEAR(actual[i].first[component], expected[i].first[component], 1e-6F);
            EXPECT_NEAR(actual[i].second[component], expected[i].second[component], 1e-6F);
        }
    }
}

TEST_F(MeasureLeadersTest, DrawsDimensionAndExtensionLines) {
    for (const Row& row : sRows) {
        SCOPED_TRACE(row.mWhat);
        mTarget->mLeaderAnchors.clear();
        EXPECT_TRUE(createMeasureLeaders({row.mMeasure}, row.mSize, row.mAnchor));
        expectSegments(takeSegments(), row.mSegments);
        ASSERT_EQ(mTarget->mLeaderAnchors.size(), 1U);
        EXPECT_EQ(mTarget->mLeaderAnchors[0].mAnchor, row.mAnchor);
        EXPECT_EQ(mTarget->mLeaderAnchors[0].mOffset, Vector2(8.0F, 9.0F));
        EXPECT_TRUE(mTarget->mShapes.empty());
    }
}

TEST_F(MeasureLeadersTest, ArrowModesTurnTheHeads) {
    // Towards B the barbs lie at greater x. The dimension line runs from B to A here.
    struct Mode {
        int mMode;
        float mBarbAtA, mBarbAtB;
    };
    const std::vector<Mode> modes = {{0, 1.0F, -1.0F},  {1, -1.0F, 1.0F},  {2, 1.0F, 1.0F},
                                     {3, -1.0F, -1.0F}, {4, -1.0F, -1.0F}, {-1, -1.0F, -1.0F}};
    for (const auto& [mode, barbAtA, barbAtB] : modes) {
        SCOPED_TRACE(mode);
        EXPECT_TRUE(createMeasureLeaders({makeMeasure(sA, sB, sUp5, mode)}, 1.0F, {5.0F, 5.0F, 0.0F}));
        const std::vector<Segment> segments = takeSegments();
        ASSERT_EQ(segments.size(), 8U);
        EXPECT_EQ(segments[2].first, Vector3(barbAtA, 5.2679F, 0.0F));
        EXPECT_EQ(segments[3].second, Vector3(barbAtA, 4.7321F, 0.0F));
        EXPECT_EQ(segments[4].first, Vector3(10.0F + barbAtB, 5.2679F, 0.0F));
        EXPECT_EQ(segments[5].second, Vector3(10.0F + barbAtB, 4.7321F, 0.0F));
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
