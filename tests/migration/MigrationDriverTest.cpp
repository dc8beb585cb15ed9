#include "platform/svg/Image.h"
#include "platform/svg/Rect.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

class MigrationDriverTest : public MigrationTest {
protected:
    kt::ktPointer<kt::ktCadAnnotationView> migrateView(int flags = 0) {
        ktLegacy::ktAnnotationMigration migration(flags, giveRaster, nullptr, 3.0F);
        kt::ktPointer<kt::ktCadAnnotationView> result;
        const bool isGood = migration.migrateAnnotationView(mView, result);
        EXPECT_EQ(isGood, result != nullptr);
        return result;
    }

    kt::ktPointer<ktLegacy::ktAnnotationView> mView{new ktLegacy::ktAnnotationView};
};

TEST_F(MigrationDriverTest, KeepsNamesPlaneAndOrderAndSkipsNullEntries) {
    mView->SetName("front");
    mView->mOrigin = {1.0F, 2.0F, 3.0F};
    mView->mNormal = {0.0F, 4.0F, 0.0F};
    mView->mAxis = {5.0F, 0.0F, 6.0F};
    mView->mAnnotations = {makeRaster("one", 10.0F, 4.0F), nullptr, makeRaster("two", 10.0F, 4.0F)};
    mView->mAnnotations[2]->mPosition = {7.0F, 8.0F, 9.0F};

    const auto view = migrateView();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->GetName(), "front");
    EXPECT_EQ(view->mOrigin, mView->mOrigin);
    EXPECT_EQ(view->mNormal, mView->mNormal);
    EXPECT_EQ(view->mAxis, mView->mAxis);
    ASSERT_EQ(view->mAnnotations.size(), 2U);
    EXPECT_EQ(view->mAnnotations[0]->GetName(), "one");
    EXPECT_EQ(view->mAnnotations[1]->GetName(), "two");
    EXPECT_EQ(view->mAnnotations[1]->mPosition, Vector3(7.0F, 8.0F, 9.0F));
    EXPECT_EQ(view->mAnnotations[1]->mColor, (Wm4::Vector3<unsigned char>(0, 0, 0)));
    EXPECT_EQ(view->mAnnotations[1]->mRoot->getColor(), "#000000");
    EXPECT_EQ(view->mAnnotations[1]->mRoot->getOutlineColor(), "#000000");
    EXPECT_FALSE(view->mAnnotations[1]->mRoot->getTransform().has_value());
    EXPECT_EQ(view->GetReferences(), 1);
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(MigrationDriverTest, TakesAnEmptyViewAndRefusesNullAndUsedResults) {
    kt::ktPointer<kt::ktCadAnnotationView> result = migrateView();
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->mAnnotations.empty());
    const kt::ktCadAnnotationView* before = result.get();
    ktLegacy::ktAnnotationMigration migration(7, giveRaster, nullptr, 3.0F);
    EXPECT_FALSE(migration.migrateAnnotationView(mView, result));
    EXPECT_EQ(result.get(), before);
    mView.reset();
    EXPECT_EQ(migrateView(), nullptr);
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(MigrationDriverTest, LeadersStartAtTheAnnotation) {
    auto raster = makeRaster("one", 10.0F, 4.0F);
    raster->mPosition = {5.0F, 5.0F, 1.0F};
    raster->mLeaders = {makeLeader({9.0F, 9.0F, 9.0F}, 0)};
    raster->mMeasureLeaders = {makeMeasure({0.0F, 0.0F, 0.0F}, {10.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F})};
    mView->mAnnotations = {raster};
    const auto view = migrateView();
    ASSERT_NE(view, nullptr);
    const kt::ktCadAnnotation& annotation = *view->mAnnotations[0];
    EXPECT_EQ(annotation.mSegments.size(), 9U);
    ASSERT_EQ(annotation.mLeaderAnchors.size(), 2U);
    for (const auto& anchor : annotation.mLeaderAnchors) {
        EXPECT_EQ(anchor.mAnchor, raster->mPosition);
        EXPECT_EQ(anchor.mOffset, Vector2::ZERO);
    }
}

TEST_F(MigrationDriverTest, ReportsTheFailingAnnotationAndItsView) {
    const auto good = makeRaster("good", 10.0F, 4.0F);
    const auto missing = makeRaster("lost", 10.0F, 4.0F);
    missing->mRasterName = "missing";
    const auto unmeasurable = makeRaster("", 10.0F, 4.0F);
    unmeasurable->mMeasureLeaders = {makeMeasure({}, {}, {})};
    const kt::ktPointer<ktLegacy::ktAnnotationInterface> undefined(
        new ktLegacy::ktAnnotationInterface(ktLegacy::ktAnnotationInterface::Undefined));
    const auto flat = makeRaster("flat", 0.0F, 0.0F);

    mView->SetName("v");
    const std::vector<std::pair<kt::ktPointer<ktLegacy::ktAnnotationInterface>, std::vector<std::string>>> rows = {
        {missing, {"Fail to retrieve raster 'missing'", "Fail to migrate annotation 'lost' of view 'v'"}},
        {unmeasurable,
         {"Fail to compute perpendicular line", "Fail to migrate measure leaders of annotation '' of view 'v'"}},
        {undefined, {"Fail to migrate annotation '' of view 'v'"}},
        {flat, {"Empty frame", "Fail to migrate annotation 'flat' of view 'v'"}},
    };
    for (const auto& [failing, log] : rows) {
        mView->mAnnotations = {good, failing, missing};
        EXPECT_EQ(migrateView(), nullptr);
        EXPECT_EQ(takeLog(), log) << "and nothing of what follows the first failure";
    }
}

TEST_F(MigrationDriverTest, AcceptsMetadataByFlag) {
    struct Row {
        const char* mKey;  // null: the view's own metadata
        int mNeeded;
        const char* mRefusal;
    };
    const std::vector<Row> rows = {
        {nullptr, 1, "Found metadata in annotation view"},
        {"ReferencedEntities", 2, "Found CT metadata ReferencedEntitiesin annotation"},
        {"AnnotationGroup", 2, "Found CT metadata AnnotationGroupin annotation"},
        {"InactivationFlag", 2, "Found CT metadata InactivationFlagin annotation"},
        {"NOA", 2, "Found CT metadata NOAin annotation"},
        {"NOA_Graphical representation", 2, "Found CT metadata NOA_Graphical representationin annotation"},
        {"NOA_Hidden Text", 2, "Found CT metadata NOA_Hidden Textin annotation"},
        {"NOA_Type of Noa", 2, "Found CT metadata NOA_Type of Noain annotation"},
        {"NOA_", 4, "Found unexpected metadata NOA_ in annotation"},
        {"noa", 4, "Found unexpected metadata noa in annotation"},
        {"NOA_Type of NOA", 4, "Found unexpected metadata NOA_Type of NOA in annotation"},
        {"", 4, "Found unexpected metadata  in annotation"},
    };
    for (const Row& row : rows) {
        for (int flags = 0; flags < 16; ++flags) {
            SCOPED_TRACE(testing::Message() << (row.mKey == nullptr ? "view" : row.mKey) << " with " << flags);
            const auto raster = makeRaster("r", 10.0F, 4.0F);
            mView = kt::ktPointer<ktLegacy::ktAnnotationView>(new ktLegacy::ktAnnotationView);
            mView->mAnnotations = {raster};
            (row.mKey == nullptr ? mView->mMetadata : raster->mMetadata)[row.mKey == nullptr ? "key" : row.mKey] = 1;
            const bool isAccepted = (flags & row.mNeeded) != 0;
            EXPECT_EQ(migrateView(flags) != nullptr, isAccepted);
            const std::vector<std::string> log = takeLog();
            EXPECT_EQ(log.empty() ? "" : log.front(), isAccepted ? "" : row.mRefusal);
        }
    }
}

TEST_F(MigrationDriverTest, TheFirstKeyInByteOrderIsTold) {
    const auto raster = makeRaster("r", 10.0F, 4.0F);
    raster->mMetadata["NOA"] = 1;
    raster->mMetadata["zeta"] = 1;
    raster->mMetadata["Alpha"] = 1;
    EXPECT_EQ(migrate(raster, 0), nullptr);
    EXPECT_EQ(migrate(raster, 2), nullptr);
    EXPECT_EQ(migrate(raster, 4), nullptr);
    EXPECT_NE(migrate(raster, 6), nullptr);
    EXPECT_THAT(takeLog(),
                ElementsAre("Found unexpected metadata Alpha in annotation",
                            "Found unexpected metadata Alpha in annotation", "Found CT metadata NOAin annotation"));
}

TEST_F(MigrationDriverTest, ConvertsEveryFlagsByte) {
    for (int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const auto raster = makeRaster("r", 10.0F, 4.0F);
        raster->mFrameShape = static_cast<ktLegacy::ktAnnotationInterface::FrameShape>(byte & 0x0F);
        raster->mReservedFlag = (byte & 0x10) != 0;
        raster->mIsIgnoreZTest = (byte & 0x20) != 0;
        raster->mIsScaleLocked = (byte & 0x40) != 0;
        raster->mIsFrameLocked = (byte & 0x80) != 0;
        const Annotation annotation = migrate(raster);
        if ((byte & 0x0F) == 0x0F) {
            EXPECT_EQ(annotation, nullptr);
            continue;
        }
        ASSERT_NE(annotation, nullptr);
        // By the upper three bits: ignore depth 0x20, scale locked 0x40 or else 0x10, frame not locked 0x80.
        constexpr int expected[8] = {0x90, 0xB0, 0xC0, 0xE0, 0x10, 0x30, 0x40, 0x60};
        EXPECT_EQ(annotation->mFlags, expected[byte >> 5]);
    }
}

TEST_F(MigrationDriverTest, CentresTheContentOnTheOrigin) {
    const Annotation annotation = migrate(makeRaster("r", 10.0F, 4.0F));
    ASSERT_NE(annotation, nullptr);
    const auto& children = annotation->mRoot->getChildren();
    ASSERT_EQ(children.size(), 3U);
    EXPECT_FALSE(children[0]->getTransform().has_value()) << "the frame is made in place";
    const auto shift = kt::svg::Transform::makeTranslation({-5.0F, -2.0F});
    EXPECT_EQ(children[1]->getTransform(), shift);
    EXPECT_EQ(children[2]->getTransform(), shift);
}

}  // namespace
}  // namespace migrationtest
