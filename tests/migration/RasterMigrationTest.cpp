#include "platform/svg/Image.h"
#include "platform/svg/Rect.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

class RasterMigrationTest : public MigrationTest {
protected:
    kt::svg::Node mParent;
};

TEST_F(RasterMigrationTest, PutsABlackRectangleUnderTheImage) {
    ktLegacy::ktAnnotationRaster raster;
    raster.mRasterName = std::string("logo\0\xFF", 6);
    raster.mSizeEm = {2.0F, 0.5F};
    ktLegacy::ktAnnotationMigration migration(0, giveRaster, nullptr, 3.0F);
    ASSERT_TRUE(migration.migrateRasterAnnotation(&raster, mParent));

    ASSERT_EQ(mParent.getChildren().size(), 2U);
    const auto* rect = as<kt::svg::Rect>(mParent.getChildren()[0]);
    const auto* image = as<kt::svg::Image>(mParent.getChildren()[1]);
    ASSERT_TRUE(rect != nullptr && image != nullptr);
    EXPECT_EQ(rect->getPosition(), Vector2::ZERO);
    EXPECT_EQ(rect->getSize(), Vector2(6.35F, 1.5875F));
    EXPECT_EQ(rect->getColor(), "#000000");
    EXPECT_FALSE(rect->getOutlineColor().has_value());
    EXPECT_EQ(image->getPosition(), Vector2::ZERO);
    EXPECT_EQ(image->getSize(), Vector2(6.35F, 1.5875F));
    EXPECT_EQ(image->getSource(), raster.mRasterName) << "bytes are copied as they are";
    EXPECT_FALSE(image->getColor().has_value());
}

TEST_F(RasterMigrationTest, HandsTheUserDataOnAndAcceptsEmptyImages) {
    const auto countCalls = [](const std::string&, std::string& data, void* userData) {
        EXPECT_TRUE(data.empty());
        ++*static_cast<int*>(userData);
        return true;
    };
    int calls = 0;
    const ktLegacy::ktAnnotationRaster raster;
    ktLegacy::ktAnnotationMigration migration(0, countCalls, &calls, 3.0F);
    EXPECT_TRUE(migration.migrateRasterAnnotation(&raster, mParent));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(mParent.getChildren().size(), 2U);
}

TEST_F(RasterMigrationTest, TellsAMissingCallbackAndAMissingImage) {
    ktLegacy::ktAnnotationRaster raster;
    raster.mRasterName = "missing";
    ktLegacy::ktAnnotationMigration without(0, nullptr, nullptr, 3.0F);
    EXPECT_FALSE(without.migrateRasterAnnotation(&raster, mParent));
    EXPECT_THAT(takeLog(), ElementsAre("No raster callback"));
    ktLegacy::ktAnnotationMigration with(0, giveRaster, nullptr, 3.0F);
    EXPECT_FALSE(with.migrateRasterAnnotation(&raster, mParent));
    EXPECT_THAT(takeLog(), ElementsAre("Fail to retrieve raster 'missing'"));
    EXPECT_TRUE(mParent.getChildren().empty());
}

}  // namespace
}  // namespace migrationtest
