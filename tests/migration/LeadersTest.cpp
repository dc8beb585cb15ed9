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

}  // namespace
}  // namespace migrationtest
