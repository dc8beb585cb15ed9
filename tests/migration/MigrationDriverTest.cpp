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
    Legacy& second = *mView->mAnnotations[2];
    second.mPosition = {7.0F, 8.0F, 9.0F};
    second.mLeaders = {makeLeader({9.0F, 9.0F, 9.0F}, 0)};
    second.mMeasureLeaders = {makeMeasure({0.0F, 0.0F, 0.0F}, {10.0F, 0.0F, 0.0F}, {0.0F, 5.0F, 0.0F})};

    const auto view = migrateView();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->GetName(), "front");
    EXPECT_EQ(view->mOrigin, mView->mOrigin);
    EXPECT_EQ(view->mNormal, mView->mNormal);
    EXPECT_EQ(view->mAxis, mView->mAxis);
    ASSERT_EQ(view->mAnnotations.size(), 2U);
    EXPECT_EQ(view->mAnnotations[0]->GetName(), "one");
    const kt::ktCadAnnotation& annotation = *view->mAnnotations[1];
    EXPECT_EQ(annotation.GetName(), "two");
    EXPECT_EQ(annotation.mPosition, second.mPosition);
    EXPECT_EQ(annotation.mColor, (Wm4::Vector3<unsigned char>(0, 0, 0)));
    EXPECT_EQ(annotation.mRoot->getColor(), "#000000");
    EXPECT_EQ(annotation.mRoot->getOutlineColor(), "#000000");
    EXPECT_FALSE(annotation.mRoot->getTransform().has_value());
    EXPECT_EQ(annotation.mSegments.size(), 9U);
    ASSERT_EQ(annotation.mLeaderAnchors.size(), 2U);
    for (const auto& anchor : annotation.mLeaderAnchors) {
        EXPECT_EQ(anchor.mAnchor, second.mPosition) << "leaders start at the annotation";
        EXPECT_EQ(anchor.mOffset, Vector2::ZERO);
    }
    EXPECT_EQ(view->GetReferences(), 1);
    EXPECT_EQ(takeLog(), Strings());
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
    EXPECT_EQ(takeLog(), Strings());
}

TEST_F(MigrationDriverTest, ReportsTheFailingAnnotationAndItsView) {
    const auto good = makeRaster("good", 10.0F, 4.0F);
    const auto missing = makeRaster("lost", 10.0F, 4.0F);
    missing->mRasterName = "missing";
    const auto unmeasurable = makeRaster("", 10.0F, 4.0F);
    unmeasurable->mMeasureLeaders = {makeMeasure({}, {}, {})};
    mView->SetName("v");
    const std::vector<std::pair<kt::ktPointer<Legacy>, Strings>> rows = {
        {missing, {"Fail to retrieve raster 'missing'", "Fail to migrate annotation 'lost' of view 'v'"}},
        {unmeasurable,
         {"Fail to compute perpendicular line", "Fail to migrate measure leaders of annotation '' of view 'v'"}},
        {new Legacy(Legacy::Undefined), {"Fail to migrate annotation '' of view 'v'"}},
        {makeRaster("flat", 0, 0), {"Empty frame", "Fail to migrate annotation 'flat' of view 'v'"}},
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
        std::string mRefusal;
    };
    std::vector<Row> rows = {{nullptr, 1, "Found metadata in annotation view"}};
    for (const char* key : {"ReferencedEntities", "AnnotationGroup", "InactivationFlag", "NOA",
                            "NOA_Graphical representation", "NOA_Hidden Text", "NOA_Type of Noa"}) {
        rows.push_back({key, 2, std::string("Found CT metadata ") + key + "in annotation"});
    }
    for (const char* key : {"NOA_", "noa", "NOA_Type of NOA", ""}) {
        rows.push_back({key, 4, std::string("Found unexpected metadata ") + key + " in annotation"});
    }
    for (const Row& row : rows) {
        for (int flags = 0; flags < 16; ++flags) {
            SCOPED_TRACE(testing::Message() << row.mRefusal << " with " << flags);
            const auto raster = makeRaster("r", 10.0F, 4.0F);
            mView = kt::ktPointer<ktLegacy::ktAnnotationView>(new ktLegacy::ktAnnotationView);
            mView->mAnnotations = {raster};
            (row.mKey == nullptr ? mView->mMetadata : raster->mMetadata)[row.mKey == nullptr ? "key" : row.mKey] = 1;
            const bool isAccepted = (flags & row.mNeeded) != 0;
            EXPECT_EQ(migrateView(flags) != nullptr, isAccepted);
            const Strings log = takeLog();
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
    for (unsigned int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const auto raster = makeRaster("r", 10.0F, 4.0F);
        raster->setFlags(static_cast<std::uint8_t>(byte));
        const Annotation annotation = migrate(raster);
        // By the upper three bits: ignore depth 0x20, scale locked 0x40 or else 0x10, frame not locked 0x80.
        constexpr int expected[8] = {0x90, 0xB0, 0xC0, 0xE0, 0x10, 0x30, 0x40, 0x60};
        ASSERT_EQ(annotation != nullptr, (byte & 0x0F) != 0x0F) << "the last frame code is undefined";
        EXPECT_TRUE(annotation == nullptr || annotation->mFlags == expected[byte >> 5]);
    }
    EXPECT_EQ(takeLog(), Strings());
}

}  // namespace
}  // namespace migrationtest
