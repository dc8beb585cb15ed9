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

    kt::ktPointer<ktLegacy::ktAnnotationRaster> mParent = makeRaster("parent", 10.0F, 4.0F);
    kt::ktPointer<ktLegacy::ktAnnotationRaster> mChild = makeRaster("child", 6.0F, 2.0F);
};

TEST_F(SubAnnotationTest, StandsWhereTheAnchorCodeSays) {
    struct Row {
        int mCode;
        Vector2 mOffset;
        Vector3 mAnchor;
    };
    // The sides of the parent are at 5 and 2, half the child is 3 by 1; y points down in the content and up in the
    // view.
    const std::vector<Row> rows = {
        {0, {3.0F, -5.0F}, {103.0F, 205.0F, 7.0F}},  {1, {-2.0F, 3.0F}, {98.0F, 197.0F, 7.0F}},
        {2, {0.0F, 3.0F}, {100.0F, 197.0F, 7.0F}},   {3, {2.0F, 3.0F}, {102.0F, 197.0F, 7.0F}},
        {4, {-2.0F, -3.0F}, {98.0F, 203.0F, 7.0F}},  {5, {0.0F, -3.0F}, {100.0F, 203.0F, 7.0F}},
        {6, {2.0F, -3.0F}, {102.0F, 203.0F, 7.0F}},  {7, {-8.0F, 1.0F}, {92.0F, 199.0F, 7.0F}},
        {8, {-8.0F, 0.0F}, {92.0F, 200.0F, 7.0F}},   {9, {-8.0F, -1.0F}, {92.0F, 201.0F, 7.0F}},
        {10, {8.0F, 1.0F}, {108.0F, 199.0F, 7.0F}},  {11, {8.0F, 0.0F}, {108.0F, 200.0F, 7.0F}},
        {12, {8.0F, -1.0F}, {108.0F, 201.0F, 7.0F}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mCode);
        mParent->removeSubAnnots();
        addChild(*mParent, mChild, row.mCode);
        const auto [annotation, box] = migrateWithBox(mParent);
        ASSERT_NE(annotation, nullptr);
        ASSERT_EQ(annotation->mRoot->getChildren().size(), 4U);
        const auto* root = as<Node>(annotation->mRoot->getChildren().back());
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(root->getTransform(), Transform::makeTranslation(row.mOffset)) << "upright and unscaled";
        EXPECT_EQ(box.getSize(), Vector2(10.0F, 4.0F)) << "children do not widen the outline";
        ASSERT_EQ(annotation->mLeaderAnchors.size(), 1U);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mAnchor, row.mAnchor);
        EXPECT_EQ(annotation->mLeaderAnchors[0].mOffset, row.mOffset);
        ASSERT_EQ(annotation->mSegments.size(), 1U);
        EXPECT_EQ(annotation->mSegments[0].mEnd, row.mAnchor);
    }
}

TEST_F(SubAnnotationTest, PlacementUsesTheSquaredOutlineOfTheParent) {
    mParent->mFrameShape = ktLegacy::ktAnnotationInterface::FrameSquare;
    addChild(*mParent, mChild, 2);
    const Annotation annotation = migrate(mParent);
    ASSERT_NE(annotation, nullptr);
    EXPECT_EQ(annotation->mLeaderAnchors.at(0).mOffset, Vector2(0.0F, 6.0F));
}

TEST_F(SubAnnotationTest, FailsTheParentWhenAChildCannotBeAdded) {
    const auto unmeasurable = makeRaster("child", 6.0F, 2.0F);
    unmeasurable->mMeasureLeaders = {makeMeasure({}, {}, {})};
    const auto plain = makeRaster("plain", 6.0F, 2.0F);
    const auto measured = makeRaster("measured", 6.0F, 2.0F);
    measured->mMeasureLeaders = {makeMeasure({}, {1.0F, 0.0F, 0.0F}, {0.0F, 1.0F, 0.0F})};
    const kt::ktPointer<ktLegacy::ktAnnotationInterface> undefined(
        new ktLegacy::ktAnnotationInterface(ktLegacy::ktAnnotationInterface::Undefined));
    struct Row {
        const char* mWhat;
        std::vector<std::pair<kt::ktPointer<ktLegacy::ktAnnotationInterface>, int>> mChildren;
        std::vector<std::string> mLog;
    };
    const std::vector<Row> rows = {
        {"null child", {{nullptr, 1}}, {"Fail to migrate sub annotation of 'parent'"}},
        {"undefined child", {{undefined, 1}}, {"Fail to migrate sub annotation of 'parent'"}},
        {"code above the last", {{mChild, 13}}, {}},
        {"code below the first", {{mChild, -1}}, {}},
        {"two with leaders", {{mChild, 1}, {mChild, 2}}, {"Unexpected leader segments or shapes"}},
        {"leaders, then none", {{mChild, 1}, {plain, 2}}, {"Unexpected leader segments or shapes"}},
        {"measures, then none", {{measured, 1}, {plain, 2}}, {"Unexpected leader segments or shapes"}},
        {"measure that fails",
         {{unmeasurable, 1}},
         {"Fail to compute perpendicular line", "Fail to migrate sub annot measure leaders"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mWhat);
        mParent->removeSubAnnots();
        for (const auto& [child, code] : row.mChildren) {
            addChild(*mParent, child, code);
        }
        EXPECT_EQ(migrate(mParent), nullptr);
        EXPECT_EQ(takeLog(), row.mLog);
    }

    mParent->removeSubAnnots();
    addChild(*mParent, plain, 1);
    addChild(*mParent, mChild, 2);
    EXPECT_NE(migrate(mParent), nullptr) << "leaders of the last child alone are well";
}

TEST_F(SubAnnotationTest, LeadersOfGrandchildrenStayBehind) {
    const auto grandchild = makeRaster("grandchild", 6.0F, 2.0F);
    grandchild->mLeaders = {makeLeader({1.0F, 1.0F, 0.0F}, 3), makeLeader({2.0F, 1.0F, 0.0F}, 3)};
    addChild(*mChild, grandchild);
    addChild(*mParent, mChild);
    const Annotation annotation = migrate(mParent);
    ASSERT_NE(annotation, nullptr);
    EXPECT_EQ(annotation->mSegments.size(), 1U);
    EXPECT_TRUE(annotation->mShapes.empty());
}

/// Annotations "0" (the top) to "1999", each the only child of the one before.
kt::ktPointer<ktLegacy::ktAnnotationInterface> makeChain(
    kt::ktPointer<ktLegacy::ktAnnotationInterface> last = makeRaster("1999", 6.0F, 2.0F)) {
    kt::ktPointer<ktLegacy::ktAnnotationInterface> top = std::move(last);
    for (int level = 1998; level >= 0; --level) {
        kt::ktPointer<ktLegacy::ktAnnotationInterface> parent = makeRaster(std::to_string(level), 6.0F, 2.0F);
        addChild(*parent, top, 2);
        top = parent;
    }
    return top;
}

TEST_F(SubAnnotationTest, TwoThousandLevelsNest) {
    const Annotation annotation = migrate(makeChain());
    ASSERT_NE(annotation, nullptr);
    int levels = 0;
    const auto offset = Transform::makeTranslation({0.0F, 2.0F});
    for (const Node* root = annotation->mRoot.get(); root != nullptr;
         root = as<Node>(root->getChildren().back()), ++levels) {
        ASSERT_EQ(root->getTransform().value_or(offset), offset);
    }
    EXPECT_EQ(levels, 2000);
}

TEST_F(SubAnnotationTest, AFailureTwoThousandLevelsDownIsToldByEveryParentFromTheInnermostOn) {
    const auto last = makeRaster("1999", 6.0F, 2.0F);
    last->mRasterName = "missing";
    EXPECT_EQ(migrate(makeChain(last)), nullptr);
    const std::vector<std::string> log = takeLog();
    ASSERT_EQ(log.size(), 2000U);
    EXPECT_EQ(log[0], "Fail to retrieve raster 'missing'");
    for (int level = 1998; level >= 0; --level) {
        ASSERT_EQ(log[static_cast<std::size_t>(1999 - level)],
                  "Fail to migrate sub annotation of '" + std::to_string(level) + "'");
    }
}

}  // namespace
}  // namespace migrationtest
