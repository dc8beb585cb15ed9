#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

using Points = std::vector<Vector2>;

class LeadersTest : public MigrationTest {
protected:
    kt::ktPointer<kt::ktCadAnnotation> createLeaders(
        const std::vector<ktLegacy::ktAnnotationInterface::Leader>& leaders, float size, const Vector3& anchor) {
        kt::ktPointer<kt::ktCadAnnotation> target(new kt::ktCadAnnotation);
        ktLegacy::ktAnnotationMigration migration(0, nullptr, nullptr, size);
        EXPECT_TRUE(migration.createLeaders(leaders, *target, anchor, {8.0F, 9.0F}));
        return target;
    }

    /// The only item of the only head.
    static std::shared_ptr<kt::svg::ItemInterface> takeHead(const kt::ktCadAnnotation& annotation) {
        if (annotation.mShapes.size() != 1 || annotation.mShapes[0].mNode->getChildren().size() != 1) {
            ADD_FAILURE() << "there is no single head";
            return nullptr;
        }
        return annotation.mShapes[0].mNode->getChildren().front();
    }
};

const std::vector<Command> sTriangleCommands = {Command::Move, Command::Line, Command::Line, Command::Close};
const std::vector<Command> sSquareCommands = {Command::Move, Command::Line, Command::Line, Command::Line,
                                              Command::Close};

/// Filled heads of size 1 in coordinates along the leader (from the anchor to the target) and across (a quarter turn
/// on).
struct FilledHead {
    int mCode;
    std::vector<Command> mCommands;
    std::vector<std::pair<double, double>> mPoints;
};
const std::vector<FilledHead> sFilledHeads = {
    {1, sSquareCommands, {{-0.5, -0.5}, {-0.5, 0.5}, {0.5, 0.5}, {0.5, -0.5}}},
    {3, sTriangleCommands, {{-1.0, 0.3}, {0.0, 0.0}, {-1.0, -0.3}}},
    {6, sTriangleCommands, {{0.0, -0.5}, {-1.0, 0.0}, {0.0, 0.5}}},
};

TEST_F(LeadersTest, TurnsFilledHeadsAlongTheLeader) {
    struct Direction {
        Vector3 mTarget;  // as seen from the anchor
        double mX, mY;    // unit vector; zero for no direction
    };
    const std::vector<Direction> directions = {
        {{7.0F, 0.0F, 0.0F}, 1.0, 0.0}, {{0.0F, -0.25F, 3.0F}, 0.0, -1.0}, {{-3.0F, 4.0F, 2.0F}, -0.6, 0.8},
        {{0.0F, 0.0F, 5.0F}, 0.0, 0.0}, {{0.0F, 9e-7F, 0.0F}, 0.0, 0.0},   {{0.0F, 2e-6F, 0.0F}, 0.0, 1.0},
    };
    for (const FilledHead& head : sFilledHeads) {
        for (const Direction& direction : directions) {
            for (const double size : {1.0, 3.0, 4.0}) {
                SCOPED_TRACE(testing::Message() << head.mCode << " towards " << direction.mX << ' ' << direction.mY);
                const auto annotation =
                    createLeaders({makeLeader(direction.mTarget, head.mCode)}, static_cast<float>(size), {});
                const auto item = takeHead(*annotation);
                const auto* path = as<kt::svg::Path>(item);
                ASSERT_NE(path, nullptr);
                EXPECT_EQ(path->getCommands(), head.mCommands);
                EXPECT_EQ(path->getOutlineColor(), "none");
                EXPECT_FALSE(path->getColor().has_value());
                EXPECT_FALSE(path->getStyleOption().has_value());
                ASSERT_EQ(path->getPoints().size(), head.mPoints.size());
                for (std::size_t i = 0; i < head.mPoints.size(); ++i) {
                    const auto [along, across] = head.mPoints[i];
                    const double x = size * (along * direction.mX - across * direction.mY);
                    const double y = size * (along * direction.mY + across * direction.mX);
                    EXPECT_NEAR(path->getPoints()[i].x, x, 2e-7 * size);
                    EXPECT_NEAR(path->getPoints()[i].y, y, 2e-7 * size);
                }
            }
        }
    }
}

TEST_F(LeadersTest, CirclesHaveTheHeadSizeAsDiameter) {
    for (const float size : {1.0F, 3.0F, 4.0F}) {
        const auto annotation = createLeaders({makeLeader({5.0F, 5.0F, 5.0F}, 2)}, size, {5.0F, 5.0F, 0.0F});
        const auto item = takeHead(*annotation);
        const auto* path = as<kt::svg::Path>(item);
        ASSERT_NE(path, nullptr);
        EXPECT_EQ(path->getOutlineColor(), "none");
        EXPECT_EQ(path->getCommands().back(), Command::Close);
        const kt::svg::BoundingBox box = kt::svg::ComputeEstimatedBoundingBox(*path);
        EXPECT_NEAR(box.getMinPoint().x, -0.5F * size, 1e-5F);
        EXPECT_NEAR(box.getMinPoint().y, -0.5F * size, 1e-5F);
        EXPECT_NEAR(box.getWidth(), size, 1e-5F);
        EXPECT_NEAR(box.getHeight(), size, 1e-5F);
    }
}

TEST_F(LeadersTest, LineHeadsIgnoreTheDirectionAndThePlusTheSizeToo) {
    struct Row {
        int mCode;
        float mSize;
        Points mPoints;
    };
    const auto crossOf = [](float reach) {
        return Points{{-reach, -reach}, {reach, reach}, {-reach, reach}, {reach, -reach}};
    };
    const Points plus = {{-1.0F, 0.0F}, {1.0F, 0.0F}, {0.0F, -1.0F}, {0.0F, 1.0F}};
    const std::vector<Row> rows = {
        {4, 1.0F, plus}, {4, 3.0F, plus}, {4, 4.0F, plus}, {5, 1.0F, crossOf(0.35355F)}, {5, 4.0F, crossOf(1.4142F)}};
    for (const Row& row : rows) {
        for (const Vector3& target : {Vector3(3.0F, 4.0F, 0.0F), Vector3::ZERO}) {
            SCOPED_TRACE(testing::Message() << row.mCode << " of size " << row.mSize);
            const auto annotation = createLeaders({makeLeader(target, row.mCode)}, row.mSize, {});
            const auto item = takeHead(*annotation);
            const auto* path = as<kt::svg::Path>(item);
            ASSERT_NE(path, nullptr);
            EXPECT_THAT(path->getCommands(), ElementsAre(Command::Move, Command::Line, Command::Move, Command::Line));
            EXPECT_EQ(path->getPoints(), row.mPoints);
            EXPECT_EQ(path->getColor(), "none");
            EXPECT_EQ(path->getStyleOption(), 1);
            EXPECT_FALSE(path->getOutlineColor().has_value());
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

TEST_F(LeadersTest, NoLeadersAddNothing) {
    const auto annotation = createLeaders({}, 3.0F, {1.0F, 2.0F, 3.0F});
    EXPECT_TRUE(annotation->mSegments.empty() && annotation->mLeaderAnchors.empty() && annotation->mShapes.empty());
}

}  // namespace
}  // namespace migrationtest
