#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>
#include <hb-ot.h>

#include <cmath>
#include <limits>
#include <optional>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::makeSegment;
using test::ReferenceFont;
using text::TextArea;
using text::TextProperties;
using text::TextSegment;

constexpr float sTolerance = 1e-4F;

double getEms(const ReferenceFont& font, hb_ot_metrics_tag_t metric) {
    hb_position_t position = 0;
    hb_ot_metrics_get_position(font.getFont(), metric, &position);
    return position / font.getUnitsPerEm();
}

struct LineMetrics {
    explicit LineMetrics(const ReferenceFont& font)
        : mAscent(getEms(font, HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER)),
          mDescent(-getEms(font, HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER)),
          mGap(getEms(font, HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP)) {}

    double mAscent;
    double mDescent;
    double mGap;
};

class BlockLayoutTest : public testing::TestWithParam<const char*> {
protected:
    const ReferenceFont mFont{GetParam()};
    const LineMetrics mMetrics{mFont};
};

TEST_P(BlockLayoutTest, StacksLinesDownwardsByTheFontsMetrics) {
    const double size = 4.0;
    const LaidOutText block(
        TextArea{makeProperties(GetParam(), 4.0F), {{makeSegment("long first line")}, {}, {makeSegment("third")}}});
    ASSERT_EQ(block.mTexts.size(), 2U);
    const double step = (mMetrics.mAscent + mMetrics.mDescent + mMetrics.mGap) * size;
    EXPECT_NEAR(block.mTexts[0]->getPosition().y - block.mTexts[1]->getPosition().y, 2 * step, sTolerance);
    EXPECT_NEAR(block.mSize.y, 3 * step - mMetrics.mGap * size, sTolerance);

    const auto& rectangle = dynamic_cast<const svg::Rect&>(*block.mGroup.getChildren().front());
    EXPECT_FALSE(rectangle.isVisible());
    EXPECT_EQ(rectangle.getId(), "block");
    EXPECT_EQ(rectangle.getSize(), block.mSize);
    EXPECT_EQ(rectangle.getPosition().x, block.mTexts[0]->getPosition().x);
    EXPECT_EQ(block.mSize.x, block.mTexts[0]->getLength());
    const float top = rectangle.getPosition().y + rectangle.getSize().y;
    EXPECT_NEAR(top - block.mTexts[0]->getPosition().y, mMetrics.mAscent * size, sTolerance);
    EXPECT_NEAR(block.mTexts[1]->getPosition().y - rectangle.getPosition().y, mMetrics.mDescent * size, sTolerance);
}

TEST_P(BlockLayoutTest, ShiftsSubAndSuperscriptsAsTheFontSays) {
    const LaidOutText block(TextArea{makeProperties(GetParam(), 10.0F),
                                     {{makeSegment("base"), makeSegment("sub", TextSegment::Subscript),
                                       makeSegment("sup", TextSegment::Superscript)}}});
    ASSERT_EQ(block.mTexts.size(), 3U);
    const float baseLine = block.mTexts[0]->getPosition().y;
    const double sub = getEms(mFont, HB_OT_METRICS_TAG_SUBSCRIPT_EM_Y_OFFSET);
    const double super = getEms(mFont, HB_OT_METRICS_TAG_SUPERSCRIPT_EM_Y_OFFSET);
    EXPECT_NEAR(baseLine - block.mTexts[1]->getPosition().y, 10.0 * sub, sTolerance);
    EXPECT_NEAR(block.mTexts[2]->getPosition().y - baseLine, 10.0 * super, sTolerance);
    // The line makes room for what is raised and lowered.
    const double ascent = std::max(super + 0.63 * mMetrics.mAscent, mMetrics.mAscent);
    const double descent = std::max(sub + 0.63 * mMetrics.mDescent, mMetrics.mDescent);
    EXPECT_NEAR(block.mSize.y, 10.0 * (ascent + descent), sTolerance);
    EXPECT_FLOAT_EQ(block.mTexts[1]->getSize(), 6.3F);
    EXPECT_FLOAT_EQ(block.mTexts[2]->getSize(), 6.3F);
    const double unit = 6.3 / mFont.getUnitsPerEm();
    EXPECT_NEAR(block.mTexts[1]->getLength(), static_cast<double>(shapeReference(mFont, "sub").mAdvance) * unit,
                sTolerance);
    EXPECT_FLOAT_EQ(block.mTexts[2]->getPosition().x, block.mTexts[1]->getPosition().x + block.mTexts[1]->getLength());
}

INSTANTIATE_TEST_SUITE_P(Fonts, BlockLayoutTest, testing::Values("Liberation Sans", "Noto Sans", "DejaVu Sans"));

TEST(BlockLayout, SharesOneBaseLineAmongSizesAndFonts) {
    TextProperties large = makeProperties("Liberation Serif", 12.0F, TextProperties::sBold);
    large.mColor = {1, 171, 255};
    const TextProperties small = makeProperties("No Such Family", 3.0F, TextProperties::sItalic);
    const LaidOutText block(TextArea{makeProperties("Arial", 5.0F),
                                     {{makeSegment("a"), makeSegment("b", TextSegment::Normal, &large),
                                       makeSegment("c", TextSegment::Normal, &small)},
                                      {makeSegment("second line")}}});
    ASSERT_EQ(block.mTexts.size(), 4U);
    EXPECT_EQ(block.mTexts[0]->getPosition().y, block.mTexts[1]->getPosition().y);
    EXPECT_EQ(block.mTexts[1]->getPosition().y, block.mTexts[2]->getPosition().y);
    const LineMetrics metrics(ReferenceFont("Liberation Serif:bold"));
    EXPECT_NEAR(-block.mTexts[0]->getPosition().y, 12.0 * metrics.mAscent, sTolerance);

    // Items have what the document asks for.
    const struct {
        const char* mFont;
        bool mIsBold;
        bool mIsItalic;
        std::optional<std::string> mColor;
    } rows[] = {{"Arial", false, false, std::nullopt},
                {"Liberation Serif", true, false, "#01ABFF"},
                {"No Such Family", false, true, "#000000"},
                {"Arial", false, false, std::nullopt}};
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        const svg::Text& text = *block.mTexts[index];
        EXPECT_EQ(text.getFont(), rows[index].mFont);
        EXPECT_EQ(text.isBold(), rows[index].mIsBold);
        EXPECT_EQ(text.isItalic(), rows[index].mIsItalic);
        EXPECT_EQ(text.getColor(), rows[index].mColor);
        // Each is mirrored about its own base line.
        const svg::Transform& transform = text.getTransform().value();
        EXPECT_EQ(transform.mMatrix, Wm4::Matrix2<float>(1.0F, 0.0F, 0.0F, -1.0F));
        EXPECT_EQ(transform * text.getPosition(), text.getPosition());
    }
}

TEST(BlockLayout, CoversAdvanceFontHeightAndInkByTheExtent) {
    // The italic's j begins left of its origin, its f ends right of its advance.
    const LaidOutText block(makeProperties("Liberation Serif", 10.0F, TextProperties::sItalic), "jf");
    const svg::BoundingBox& extent = block.mTexts.at(0)->getExtent();
    const LineMetrics metrics(ReferenceFont("Liberation Serif:italic"));
    EXPECT_NEAR(extent.getMinPoint().y, -10.0 * metrics.mAscent, sTolerance);
    EXPECT_NEAR(extent.getMaxPoint().y, 10.0 * metrics.mDescent, sTolerance);
    EXPECT_LT(extent.getMinPoint().x, 0.0F);
    EXPECT_GT(extent.getMaxPoint().x, block.mTexts[0]->getLength());
    EXPECT_EQ(block.mSize.x, block.mTexts[0]->getLength());
}

TEST(BlockLayout, AddsNothingWithoutExtent) {
    for (const TextArea& area :
         {TextArea(), TextArea{{}, {{}}}, test::makeLine({}, {""}), test::makeLine({}, {"\u200D\u200D"})}) {
        const LaidOutText block(area);
        EXPECT_TRUE(block.mIsDone);
        EXPECT_TRUE(block.mGroup.getChildren().empty());
        EXPECT_EQ(block.mSize, Wm4::Vector2<float>(0.0F, 0.0F));
    }
}

TEST(BlockLayout, ShowsTextOfNoSizeBesideOtherTextOnly) {
    const TextProperties usual = makeProperties("Arial", 3.0F);
    for (const float size :
         {0.0F, -3.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        const TextProperties none = makeProperties("Arial", size);
        const LaidOutText alone(none, "no size");
        EXPECT_TRUE(alone.mIsDone);
        EXPECT_TRUE(alone.mGroup.getChildren().empty()) << size;
        EXPECT_EQ(alone.mSize, Wm4::Vector2<float>(0.0F, 0.0F));

        const LaidOutText mixed(
            TextArea{none, {{makeSegment("kept"), makeSegment("seen", TextSegment::Normal, &usual)}}});
        ASSERT_EQ(mixed.mTexts.size(), 2U) << size;
        EXPECT_EQ(mixed.mTexts[0]->getText(), "kept");
        EXPECT_LT(mixed.mTexts[0]->getLength(), 0.01F);
        EXPECT_GT(mixed.mSize.x, mixed.mTexts[1]->getLength());
    }
}

TEST(BlockLayout, GivesMarksWithoutALetterTheExtentOfTheirInk) {
    for (const char* marks : {"\u0301", "\u0323\u0302"}) {
        const LaidOutText block(makeProperties("DejaVu Sans", 10.0F), marks);
        ASSERT_EQ(block.mTexts.size(), 1U) << marks;
        const svg::Text& text = *block.mTexts[0];
        EXPECT_GT(block.mSize.x, 0.0F);
        EXPECT_NEAR(text.getPosition().x + text.getExtent().getMinPoint().x, 0.0F, sTolerance);
        EXPECT_NEAR(text.getPosition().x + text.getExtent().getMaxPoint().x, block.mSize.x, sTolerance);
    }
}

TEST(BlockLayout, HoldsOutAtTheLimits) {
    const LaidOutText large(makeProperties("Arial", 655.34F * 3.175F), "Large");
    EXPECT_TRUE(large.mIsDone);
    EXPECT_GT(large.mSize.x, 2000.0F);
    const LaidOutText beyond(makeProperties("Arial", std::numeric_limits<float>::max()), "Beyond");
    EXPECT_FALSE(beyond.mIsDone);
    EXPECT_TRUE(beyond.mGroup.getChildren().empty());
    const LaidOutText many(TextArea{{}, {TextArea::Line(20'000, makeSegment("xי"))}});
    EXPECT_TRUE(many.mIsDone);
    EXPECT_TRUE(std::isfinite(many.mSize.x));
}

}  // namespace
}  // namespace kt
