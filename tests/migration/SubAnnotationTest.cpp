#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

using kt::svg::Node;
using kt::svg::Transform;

/// A parent of 10 by 4 units at (100, 200, 7) and a child of 6 by 2 units at (3, 5, 9).
class SubAnnotationTest : public MigrationTest {
protected:
    SubAnnotationTest() {
        mParent->mPosition = {100.0F, 200.0F, 7.0F};
        mChild->mPosition = {3.0F, 5.0F, 9.0F};
        mChild->mLeaders = {makeLeader({0.0F, 0.0F, 0.0F}, 0)};
    }

    Raster mParent = makeRaster("parent", 10.0F, 4.0F);
    Raster mChild = makeRaster("child", 6.0F, 2.0F);
};

TEST_F(SubAnnotationTest, StandsWhereTheAnchorCodeSays) {
    // The sides of the parent are at 5 and 2, half the child is 3 by 1; y points down in the content and up in the
    // view.
    const Vector2 offsets[] = {{3, -5}, {-2, 3}, {0, 3},   {2, 3}, {-2, -3}, {0, -3}, {2, -3},
                               {-8, 1}, {-8, 0}, {-8, -1}, {8, 1}, {8, 0},   {8, -1}};
    for (int code = 0; code <= 12; ++code) {
        SCOPED_TRACE(code);
        const Vector2 offset = offsets[code];
        const Vector3 anchor(100 + offset.x, 200 - offset.y, 7);
        mParent->removeSubAnnots();
        addChild(*mParent, mChild, code);
        const auto [annotation, box] = migrateWithBox(mParent);
        ASSERT_NE(annotation, nullptr);
        ASSERT_EQ(annotation->mRoot->getChildren().size(), 4U);
        const auto* root = as<Node>(annotation->mRoot->getChildren().back());
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(root->getTransform(), Transform::makeTranslation(offset)) << "upright and unscaled";
        EXPECT_EQ(box.getSize(), Vector2(10.0F, 4.0F)) << "children do not widen the outline";
        ASSERT_EQ(annotation->mLeaderAnchors.size(), 1U);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mAnchor, anchor);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mOffset, offset);
        ASSERT_EQ(annotation->mSegments.size(), 1U);
        EXPECT_EQ(annotation->mSegments[0].mEnd, anchor);
    }
    mParent->mFrameShape = Legacy::FrameSquare;
    mParent->removeSubAnnots();
    addChild(*mParent, mChild, 2);
    EXPECT_EQ(migrate(mParent)->mLeaderAnchors.at(0).mOffset, Vector2(0.0F, 6.0F)) << "the squared outline counts";
}

TEST_F(SubAnnotationTest, FailsTheParentWhenAChildCannotBeAdded) {
    const auto unmeasurable = makeRaster("child", 6.0F, 2.0F);
    unmeasurable->mMeasureLeaders = {makeMeasure({}, {}, {})};
    const auto plain = makeRaster("plain", 6.0F, 2.0F);
    const auto measured = makeRaster("measured", 6.0F, 2.0F);
    measured->mMeasureLeaders = {makeMeasure({}, {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F})};
    const kt::ktPointer<Legacy> undefined(new Legacy(Legacy::Undefined));
    const Strings failed = {"Fail to migrate sub annotation of 'parent'"};
    const Strings unexpected = {"Unexpected leader segments or shapes"};
    const std::vector<std::pair<std::vector<std::pair<kt::ktPointer<Legacy>, int>>, Strings>> rows = {
        {{{nullptr, 1}}, failed},
        {{{undefined, 1}}, failed},
        {{{mChild, 13}}, {}},
        {{{mChild, -1}}, {}},
        {{{mChild, 1}, {mChild, 2}}, unexpected},
        {{{mChild, 1}, {plain, 2}}, unexpected},
        {{{measured, 1}, {plain, 2}}, unexpected},
        {{{unmeasurable, 1}}, {"Fail to compute perpendicular line", "Fail to migrate sub annot measure leaders"}},
    };
    for (const auto& [children, log] : rows) {
        SCOPED_TRACE(testing::PrintToString(log));
        mParent->removeSubAnnots();
        for (const auto& [child, code] : children) {
            addChild(*mParent, child, code);
        }
        EXPECT_EQ(migrate(mParent), nullptr);
        EXPECT_EQ(takeLog(), log);
    }

    // Leaders of the last child alone are well; those of grandchildren stay behind.
    mParent->removeSubAnnots();
    measured->mLeaders = {makeLeader({1.0F, 1.0F, 0.0F}, 3), makeLeader({2.0F, 1.0F, 0.0F}, 3)};
    addChild(*mChild, measured);
    addChild(*mParent, plain, 1);
    addChild(*mParent, mChild, 2);
    const Annotation annotation = migrate(mParent);
    ASSERT_NE(annotation, nullptr);
    EXPECT_EQ(annotation->mSegments.size(), 1U);
    EXPECT_TRUE(annotation->mShapes.empty());
}

// A failure at the bottom is told by every parent from the innermost on.
TEST_F(SubAnnotationTest, TwoThousandLevelsNestAndFail) {
    Strings expectedLog = {"Fail to retrieve raster 'missing'"};
    const Raster bottom = makeRaster("1999", 6.0F, 2.0F);
    Raster top = bottom;
    for (int level = 1998; level >= 0; --level) {
        const Raster parent = makeRaster(std::to_string(level), 6.0F, 2.0F);
        addChild(*parent, top);
        top = parent;
        expectedLog.push_back("Fail to migrate sub annotation of '" + std::to_string(level) + "'");
    }
    const Annotation annotation = migrate(top);
    ASSERT_NE(annotation, nullptr);
    int levels = 0;
    const auto offset = Transform::makeTranslation({0.0F, 2.0F});
    for (const Node* root = annotation->mRoot.get(); root != nullptr;
         root = as<Node>(root->getChildren().back()), ++levels) {
        ASSERT_EQ(root->getTransform().value_or(offset), offset);
    }
    EXPECT_EQ(levels, 2000);
    bottom->mRasterName = "missing";
    EXPECT_EQ(migrate(top), nullptr);
    EXPECT_EQ(takeLog(), expectedLog);
}

}  // namespace
}  // namespace migrationtest
