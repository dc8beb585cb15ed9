#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/PathBuilder.h"
#include "platform/wm4/Wm4Math.h"
#include "tests/svg/MakeItems.h"

#include <gtest/gtest.h>

#include <string>

namespace kt::svg {
namespace {

using test::lettersOf;

TEST(PathBuilder, ClosesContoursUnlessTheyAreKeptOpen) {
    PathBuilder builder;
    builder.startContour();
    builder.appendSegmentListMove({{0, 0}, {1, 0}});
    builder.appendSegmentListMove({{1, 1}});
    builder.appendCubic({2, 1}, {2, 2}, {3, 3});
    builder.endContour(false);
    builder.startContour();
    builder.appendSegmentListMove({{5, 5}, {6, 6}});
    builder.endContour(true);
    builder.appendLine({7, 7}, {8, 8});
    // Contours that collapse to a point stay.
    builder.startContour();
    builder.appendSegmentListMove({{2, 2}, {2, 2}, {2, 2}});
    builder.endContour(false);
    EXPECT_EQ(lettersOf(*builder.createPathItem(true)), "MLLCZMLMLMLLZ");
}

TEST(PathBuilder, HandsThePathOverOnceAndCopiesItOtherwise) {
    PathBuilder builder;
    EXPECT_EQ(builder.createPathItem(true), nullptr);
    builder.startContour();
    builder.endContour(false);
    EXPECT_EQ(builder.createPathItem(false), nullptr);
    builder.appendLine({0, 0}, {1, 1});
    const auto copy = builder.createPathItem(false);
    builder.appendLine({0, 0}, {1, 1});
    EXPECT_EQ(lettersOf(*copy), "ML");
    EXPECT_EQ(lettersOf(*builder.createPathItem(true)), "MLML");
    EXPECT_EQ(builder.createPathItem(true), nullptr);
}

TEST(PathBuilder, DrawsArcsFromAngleToAngle) {
    constexpr float pi = Wm4::Mathf::PI;
    const struct {
        float mStart;
        float mEnd;
        const char* mCommands;
        BoundingBox mBox;
    } rows[] = {
        {0.0F, 2.0F * pi, "MAAZ", {{-1, -3}, {3, 5}}}, {1.0F, 1.0F + 9.0F * pi, "MAAZ", {{-1, -3}, {3, 5}}},
        {2.0F * pi, 0.0F, "MAAZ", {{-1, -3}, {3, 5}}}, {0.0F, 0.5F * pi, "MA", {{1, 1}, {3, 5}}},
        {0.5F * pi, 0.0F, "MA", {{1, 1}, {3, 5}}},     {0.0F, 1.5F * pi, "MAA", {{-1, -3}, {3, 5}}},
        {0.0F, -1.0F * pi, "MA", {{-1, -3}, {3, 1}}},
    };
    for (const auto& row : rows) {
        PathBuilder builder;
        builder.appendEllipse({1, 1}, {2, 4}, row.mStart, row.mEnd);
        const auto path = builder.createPathItem(true);
        EXPECT_EQ(lettersOf(*path), row.mCommands);
        const BoundingBox box = ComputeEstimatedBoundingBox(*path);
        for (int axis = 0; axis < 2; ++axis) {
            EXPECT_NEAR(box.getMinPoint()[axis], row.mBox.getMinPoint()[axis], 1e-5F) << row.mStart << " " << row.mEnd;
            EXPECT_NEAR(box.getMaxPoint()[axis], row.mBox.getMaxPoint()[axis], 1e-5F) << row.mStart << " " << row.mEnd;
        }
    }
}

}  // namespace
}  // namespace kt::svg
