#include "platform/svg/Image.h"
#include "platform/svg/Rect.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

class RasterMigrationTest : public MigrationTest {
protected:
    bool migrateRaster(ktLegacy::ktAnnotationMigration::RasterCallback callback, void* userData = nullptr) {
        return ktLegacy::ktAnnotationMigration(0, callback, userData, 3.0F).migrateRasterAnnotation(&mRaster, mParent);
    }
    ktLegacy::ktAnnotationRaster mRaster;
    kt::svg::Node mParent;
};

TEST_F(RasterMigrationTest, PutsABlackRectangleUnderTheImage) {
    mRaster.mRasterName = std::string("logo\0\xFF", 6);
    mRaster.mSizeEm = {2.0F, 0.5F};
    ASSERT_TRUE(migrateRaster(giveRaster));
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
    EXPECT_EQ(image->getSource(), mRaster.mRasterName) << "bytes are copied as they are";
    EXPECT_FALSE(image->getColor().has_value());
}

TEST_F(RasterMigrationTest, AsksTheCallback) {
    const auto countCalls = [](const std::string&, std::string& data, void* userData) {
        EXPECT_TRUE(data.empty());
        ++*static_cast<int*>(userData);
        return true;
    };
    int calls = 0;
    EXPECT_TRUE(migrateRaster(countCalls, &calls)) << "empty images are well";
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(mParent.getChildren().size(), 2U);
    EXPECT_FALSE(migrateRaster(nullptr));
    mRaster.mRasterName = "missing";
    EXPECT_FALSE(migrateRaster(giveRaster));
    EXPECT_THAT(takeLog(), ElementsAre("No raster callback", "Fail to retrieve raster 'missing'"));
    EXPECT_EQ(mParent.getChildren().size(), 2U);
}

/// Content of 10 by 4 units centred on the origin: its corners are (-5, -2) and (5, 2), tips stick out by 1.6.
class AnnotationFrameTest : public MigrationTest {
protected:
    /// The frame, whose style is checked.
    template <typename Item>
    const Item* drawFrame(int code, float width = 10.0F, float height = 4.0F) {
        const auto raster = makeRaster("framed", width, height);
        raster->mFrameShape = static_cast<Legacy::FrameShape>(code);
        raster->mColor = {0x0A, 0xFF, 0x90};
        std::tie(mAnnotation, mBox) = migrateWithBox(raster);
        EXPECT_EQ(mAnnotation->mRoot->getChildren().size(), 3U);  // with the rectangle and the image of the content
        const Item* frame = as<Item>(mAnnotation->mRoot->getChildren().front());
        EXPECT_NE(frame, nullptr);
        EXPECT_EQ(frame->getColor(), "#0AFF90");
        EXPECT_EQ(frame->getStyleOption(), 1);
        EXPECT_EQ(frame->getOutlineColor(), code == 0 ? "none" : "#000000");
        EXPECT_EQ(frame->getClass().value_or("no class"), code == 0 ? "border" : "no class");
        EXPECT_FALSE(frame->getTransform().has_value()) << "made in place";
        return frame;
    }

    Annotation mAnnotation;
    kt::svg::BoundingBox mBox;
};

TEST_F(AnnotationFrameTest, DrawsRectangles) {
    struct Row {
        int mCode;
        Vector2 mContent, mSize;
    };
    std::vector<Row> rows = {{2, {10, 4}, {10, 10}}, {2, {4, 10}, {10, 10}}, {2, {4, 4}, {4, 4}}};
    for (const int code : {0, 1, 3, 4, 9, 10, 11, 12, 13, 14}) {
        rows.push_back({code, {10, 4}, {10, 4}});
    }
    for (const auto& [code, content, size] : rows) {
        SCOPED_TRACE(code);
        const auto* frame = drawFrame<kt::svg::Rect>(code, content.x, content.y);
        EXPECT_EQ(frame->getPosition(), size * -0.5F);
        EXPECT_EQ(frame->getSize(), size);
        EXPECT_EQ(mBox.getMinPoint(), size * -0.5F);
        EXPECT_EQ(mBox.getSize(), size);
        const auto shift = kt::svg::Transform::makeTranslation(content * -0.5F);
        EXPECT_EQ(mAnnotation->mRoot->getChildren()[1]->getTransform(), shift) << "content is centred";
        EXPECT_EQ(mAnnotation->mRoot->getChildren()[2]->getTransform(), shift);
    }
}

TEST_F(AnnotationFrameTest, DrawsFlagsAndParallelograms) {
    const std::vector<std::pair<int, std::vector<Vector2>>> rows = {
        {5, {{-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {6, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {7, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {8, {{-5.0F, -2.0F}, {-6.6F, 2.0F}, {5.0F, 2.0F}, {-5.0F + 11.6F, -2.0F}}},
    };
    for (const auto& [code, points] : rows) {
        SCOPED_TRACE(code);
        const auto* frame = drawFrame<kt::svg::Path>(code);
        EXPECT_EQ(lettersOf(*frame), "M" + std::string(points.size() - 1, 'L') + "Z");
        EXPECT_EQ(frame->getPoints(), points);
        EXPECT_EQ(mBox.getMinPoint(), Vector2(-5.0F, -2.0F)) << "tips do not count";
        EXPECT_EQ(mBox.getMaxPoint(), Vector2(5.0F, 2.0F)) << "tips do not count";
    }
}

}  // namespace
}  // namespace migrationtest
