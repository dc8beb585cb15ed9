#include "tests/annotation/LaidOutText.h"
#include "tests/annotation/ReferenceShaping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <ostream>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeArea;
using test::makeProperties;
using test::makeSegment;
using test::ReferenceFont;
using test::ReferenceRun;

constexpr float sSize = 10.0F;

struct ScriptCase {
    const char* mName;
    const char* mFont;
    const char* mText;
    bool mIsRightToLeft;
};

void PrintTo(const ScriptCase& testCase, std::ostream* stream) { *stream << testCase.mName; }

class ScriptTest : public testing::TestWithParam<ScriptCase> {};

TEST_P(ScriptTest, IsShapedAsHarfBuzzDoes) {
    const ScriptCase& script = GetParam();
    const ReferenceFont font(script.mFont);
    ASSERT_TRUE(font.isInstalled()) << script.mFont << " is needed by the tests";
    const LaidOutText block = test::layOutString(makeProperties(script.mFont, sSize), script.mText);
    ASSERT_EQ(block.mTexts.size(), 1U);
    const svg::Text& text = *block.mTexts[0];
    EXPECT_EQ(text.getText(), script.mText);
    EXPECT_EQ(text.isRightToLeft(), script.mIsRightToLeft);

    const ReferenceRun shaped = shapeReference(font, script.mText);
    const double scale = double{sSize} / font.getUnitsPerEm();
    EXPECT_FLOAT_EQ(text.getLength(), static_cast<float>(static_cast<double>(shaped.mAdvance) * scale));
    std::vector<svg::PlacedGlyph> glyphs;
    text.getGlyphSource()->appendGlyphs(text, glyphs);
    ASSERT_EQ(glyphs.size(), shaped.mGlyphs.size());
    for (std::size_t index = 0; index < glyphs.size(); ++index) {
        EXPECT_NEAR(glyphs[index].mPosition.x, static_cast<double>(shaped.mGlyphs[index].mX) * scale, 1e-4);
        EXPECT_NEAR(glyphs[index].mPosition.y, static_cast<double>(-shaped.mGlyphs[index].mY) * scale, 1e-4);
    }
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptTest,
                         testing::Values(ScriptCase{"Arabic", "Noto Sans Arabic", "قطر", true},
                                         ScriptCase{"ArabicMarks", "Noto Naskh Arabic", "مُحَمَّد", true},
                                         ScriptCase{"Hebrew", "Noto Sans Hebrew", "קוטר", true},
                                         ScriptCase{"HebrewPoints", "Noto Sans Hebrew", "שָׁלוֹם", true},
                                         ScriptCase{"Devanagari", "Noto Sans Devanagari", "क्षत्रिय", false},
                                         ScriptCase{"Thai", "Noto Sans Thai", "ที่นี่", false},
                                         ScriptCase{"Japanese", "Noto Sans CJK JP", "直径ねじ", false},
                                         ScriptCase{"Korean", "Noto Sans CJK KR", "지름", false},
                                         ScriptCase{"Cyrillic", "Noto Sans", "Диаметр", false},
                                         ScriptCase{"Greek", "Noto Sans", "Διάμετρος", false},
                                         ScriptCase{"StackedMarks", "Noto Sans", "a\u0323\u0302x\u0301", false},
                                         ScriptCase{"Composed", "Liberation Sans", "e\u0301u\u0308", false}),
                         [](const auto& testCase) { return testCase.param.mName; });

/// Texts of the items from left to right.
std::vector<std::string> getVisualOrder(const LaidOutText& block) {
    std::vector<std::shared_ptr<const svg::Text>> texts = block.mTexts;
    std::ranges::stable_sort(texts, {}, [](const auto& text) { return text->getPosition().x; });
    std::vector<std::string> order;
    std::ranges::transform(texts, std::back_inserter(order), [](const auto& text) { return text->getText(); });
    return order;
}

LaidOutText layOutLine(const std::vector<const char*>& segments) {
    text::TextArea::Line line;
    std::ranges::transform(segments, std::back_inserter(line), [](const char* bytes) { return makeSegment(bytes); });
    return LaidOutText(makeArea(makeProperties("DejaVu Sans", sSize), {line}));
}

struct OrderCase {
    const char* mName;
    std::vector<const char*> mSegments;
    std::vector<std::string> mVisualOrder;
};

void PrintTo(const OrderCase& testCase, std::ostream* stream) { *stream << testCase.mName; }

class OrderTest : public testing::TestWithParam<OrderCase> {};

TEST_P(OrderTest, FollowsTheBidirectionalAlgorithm) {
    const LaidOutText block = layOutLine(GetParam().mSegments);
    EXPECT_EQ(getVisualOrder(block), GetParam().mVisualOrder);
    // Items follow each other without gap or overlap over the whole width.
    const float width = std::accumulate(block.mTexts.begin(), block.mTexts.end(), 0.0F,
                                        [](float sum, const auto& text) { return sum + text->getLength(); });
    EXPECT_NEAR(width, block.mSize.x, 1e-3);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, OrderTest,
    testing::Values(OrderCase{"LatinFirst", {"abc קוטר def"}, {"abc ", "קוטר", " def"}},
                    OrderCase{"HebrewFirst", {"קוטר abc"}, {"abc", "קוטר "}},
                    OrderCase{"NumberInHebrew", {"קוטר 12.5 ממ"}, {" ממ", "12.5", "קוטר "}},
                    OrderCase{"TwoHebrewSegmentsInLatin", {"a ", "קוטר ", "גובה", " z"}, {"a ", "גובה", "קוטר ", " z"}},
                    OrderCase{"SegmentsOfHebrewLine", {"קוטר ", "abc ", "def"}, {"abc ", "def", "קוטר "}},
                    OrderCase{"TrailingBlankOfHebrewLine", {"abc קוטר  "}, {"abc ", "קוטר", "  "}},
                    OrderCase{"Override",
                              {"\u202E"
                               "abc"
                               "\u202C"
                               "d"},
                              {"\u202E", "abc\u202C", "d"}},
                    OrderCase{"PlainSegments", {"A", "B", "C"}, {"A", "B", "C"}}),
    [](const auto& testCase) { return testCase.param.mName; });

TEST(BidirectionalTest, RightToLeftLinesEndAtTheBlocksRightEdge) {
    const LaidOutText block(
        makeArea(makeProperties("DejaVu Sans", sSize),
                 {{makeSegment("a line that is wide")}, {makeSegment("קוטר")}, {makeSegment("left")}}));
    ASSERT_EQ(block.mTexts.size(), 3U);
    EXPECT_EQ(block.mTexts[0]->getPosition().x, 0.0F);
    EXPECT_FLOAT_EQ(block.mTexts[1]->getPosition().x + block.mTexts[1]->getLength(), block.mSize.x);
    EXPECT_EQ(block.mTexts[2]->getPosition().x, 0.0F);
}

TEST(BidirectionalTest, ArabicLettersJoinAcrossSegments) {
    const auto getWidth = [](const std::vector<const char*>& segments) {
        text::TextArea::Line line;
        std::ranges::transform(segments, std::back_inserter(line),
                               [](const char* bytes) { return makeSegment(bytes); });
        return LaidOutText(makeArea(makeProperties("Noto Sans Arabic", sSize), {line})).mSize.x;
    };
    const float whole = getWidth({"ببب"});
    const float parts = getWidth({"ب", "ب", "ب"});
    const float apart = getWidth({"ب"}) * 3.0F;
    EXPECT_NEAR(parts, whole, 1e-3);
    EXPECT_GT(apart, whole * 1.1F) << "letters that do not join are wider";
}

}  // namespace
}  // namespace kt
