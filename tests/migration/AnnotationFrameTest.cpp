#include "platform/svg/Rect.h"
#include "tests/migration/MigrationTestSupport.h"

namespace migrationtest {
namespace {

using Points = std::vector<Vector2>;

/// Content of 10 by 4 units centred on the origin: its corners are (-5, -2) and (5, 2), tips stick out by 1.6.
class AnnotationFrameTest : public MigrationTest {
protected:
    static kt::ktPointer<ktLegacy::ktAnnotationRaster> makeFramed(int code, float width = 10.0F, float height = 4.0F) {
        auto raster = makeRaster("framed", width, height);
        raster->mFrameShape = static_cast<ktLegacy::ktAnnotationInterface::FrameShape>(code);
        raster->mColor = {0x0A, 0xFF, 0x90};
        return raster;
    }
};

TEST_F(AnnotationFrameTest, DrawsRectangles) {
    struct Row {
        int mCode;
        float mWidth, mHeight;
        Vector2 mCorner, mSize;
    };
    std::vector<Row> rows = {
        {2, 10.0F, 4.0F, {-5.0F, -5.0F}, {10.0F, 10.0F}},
        {2, 4.0F, 10.0F, {-5.0F, -5.0F}, {10.0F, 10.0F}},
        {2, 4.0F, 4.0F, {-2.0F, -2.0F}, {4.0F, 4.0F}},
    };
    for (const int code : {0, 1, 3, 4, 9, 10, 11, 12, 13, 14}) {
        rows.push_back({code, 10.0F, 4.0F, {-5.0F, -2.0F}, {10.0F, 4.0F}});
    }
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mCode);
        const auto [annotation, box] = migrateWithBox(makeFramed(row.mCode, row.mWidth, row.mHeight));
        ASSERT_NE(annotation, nullptr);
        const auto& children = annotation->mRoot->getChildren();
        ASSERT_EQ(children.size(), 3U);  // the frame behind the rectangle and the image of the content
        const auto* frame = as<kt::svg::Rect>(children.front());
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(frame->getPosition(), row.mCorner);
        EXPECT_EQ(frame->getSize(), row.mSize);
        EXPECT_EQ(box.getMinPoint(), row.mCorner);
        EXPECT_EQ(box.getSize(), row.mSize);
    }
}

TEST_F(AnnotationFrameTest, DrawsFlagsAndParallelograms) {
    const std::vector<std::pair<int, Points>> rows = {
        {5, {{-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {6, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {7, {{-6.6F, 0.0F}, {-5.0F, 2.0F}, {5.0F, 2.0F}, {6.6F, 0.0F}, {5.0F, -2.0F}, {-5.0F, -2.0F}}},
        {8, {{-5.0F, -2.0F}, {-6.6F, 2.0F}, {5.0F, 2.0F}, {-5.0F + 11.6F, -2.0F}}},
    };
    for (const auto& [code, points] : rows) {
        SCOPED_TRACE(code);
        const auto [annotation, box] = migrateWithBox(makeFramed(code));
        ASSERT_NE(annotation, nullptr);
        const auto* frame = as<kt::svg::Path>(annotation->mRoot->getChildren().front());
        ASSERT_NE(frame, nullptr);
        std::vector<Command> commands(points.size() + 1, Command::Line);
        commands.front() = Command::Move;
        commands.back() = Command::Close;
        EXPECT_EQ(frame->getCommands(), commands);
        EXPECT_EQ(frame->getPoints(), points);
        EXPECT_EQ(box.getMinPoint(), Vector2(-5.0F, -2.0F)) << "tips do not count";
        EXPECT_EQ(box.getMaxPoint(), Vector2(5.0F, 2.0F)) << "tips do not count";
    }
}

TEST_F(AnnotationFrameTest, StylesEveryFrameAndOnlyTheMissingOneHasNoOutline) {
    for (int code = 0; code <= 14; ++code) {
        SCOPED_TRACE(code);
        const Annotation annotation = migrate(makeFramed(code));
        ASSERT_NE(annotation, nullptr);
        const kt::svg::ItemInterface& frame = *annotation->mRoot->getChildren().front();
        EXPECT_EQ(frame.getColor(), "#0AFF90");
        EXPECT_EQ(frame.getStyleOption(), 1);
        EXPECT_EQ(frame.getOutlineColor(), code == 0 ? "none" : "#000000");
        EXPECT_EQ(frame.getClass().value_or("no class"), code == 0 ? "border" : "no class");
    }
}

TEST_F(AnnotationFrameTest, FailsSilentlyOnTheUndefinedCode) {
    EXPECT_EQ(migrate(makeFramed(15)), nullptr);
    EXPECT_THAT(takeLog(), IsEmpty());
}

}  // namespace
}  // namespace migrationtest
