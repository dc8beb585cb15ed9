#include "tests/annotation/LaidOutText.h"

#include <algorithm>
#include <numeric>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::makeSegment;
using test::ReferenceFont;
using text::TextArea;

constexpr float sSize = 10.0F;

TEST(ScriptTest, IsShapedAsHarfBuzzDoes) {
    const struct {
        const char* mFont;
        const char* mText;
        bool mIsRightToLeft;
    } rows[] = {
        {"Noto Sans Arabic", "قطر", true},
        {"Noto Naskh Arabic", "مُحَمَّد", true},
        {"Noto Sans Hebrew", "קוטר", true},
        {"Noto Sans Hebrew", "שָׁלוֹם", true},
        {"Noto Sans Devanagari", "क्षत्रिय", false},
        {"Noto Sans Thai", "ที่นี่", false},
        {"Noto Sans CJK JP", "直径ねじ", false},
        {"Noto Sans CJK KR", "지름", false},
        {"Noto Sans", "Диаметр", false},
        {"Noto Sans", "Διάμετρος", false},
        {"Noto Sans", "a\u0323\u0302x\u0301", false},
        {"Liberation Sans", "e\u0301u\u0308", false},
        {"DejaVu Sans", "AVaffinity", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mText);
        const ReferenceFont font(row.mFont);
        ASSERT_TRUE(font.isInstalled()) << row.mFont << " is needed by the tests";
        const LaidOutText block(makeProperties(row.mFont, sSize), row.mText);
        expectShaped(block, row.mText, font);
        EXPECT_EQ(block.mTexts.at(0)->isRightToLeft(), row.mIsRightToLeft);
    }
    // The last text has a ligature.
    EXPECT_LT(shapeReference(ReferenceFont("DejaVu Sans"), "AVaffinity").mGlyphs.size(), 10U);
}

/// Texts of the items from left to right.
std::vector<std::string> getVisualOrder(const LaidOutText& block) {
    std::vector<std::shared_ptr<const svg::Text>> texts = block.mTexts;
    std::ranges::stable_sort(texts, {}, [](const auto& text) { return text->getPosition().x; });
    std::vector<std::string> order;
    std::ranges::transform(texts, std::back_inserter(order), [](const auto& text) { return text->getText(); });
    return order;
}

TEST(BidirectionalTest, OrderFollowsTheAlgorithm) {
    const struct {
        std::vector<std::string> mSegments;
        std::vector<std::string> mVisualOrder;
    } rows[] = {
        {{"abc קוטר def"}, {"abc ", "קוטר", " def"}},
        {{"קוטר abc"}, {"abc", "קוטר "}},
        {{"קוטר 12.5 ממ"}, {" ממ", "12.5", "קוטר "}},
        {{"a ", "קוטר ", "גובה", " z"}, {"a ", "גובה", "קוטר ", " z"}},
        {{"קוטר ", "abc ", "def"}, {"abc ", "def", "קוטר "}},
        {{"abc קוטר  "}, {"abc ", "קוטר", "  "}},
        {{std::string("\u202E") + "abc\u202C" + "d"}, {"\u202E", "abc\u202C", "d"}},
        {{"A", "B", "C"}, {"A", "B", "C"}},
    };
    for (const auto& row : rows) {
        const LaidOutText block(test::makeLine(makeProperties("DejaVu Sans", sSize), row.mSegments));
        EXPECT_EQ(getVisualOrder(block), row.mVisualOrder);
        // Items follow each other without gap or overlap over the whole width.
        const float width = std::accumulate(block.mTexts.begin(), block.mTexts.end(), 0.0F,
                                            [](float sum, const auto& text) { return sum + text->getLength(); });
        EXPECT_NEAR(width, block.mSize.x, 1e-3);
    }
}

TEST(BidirectionalTest, RightToLeftLinesEndAtTheBlocksRightEdge) {
    const LaidOutText block(
        TextArea{makeProperties("DejaVu Sans", sSize),
                 {{makeSegment("a line that is wide")}, {makeSegment("קוטר")}, {makeSegment("left")}}});
    ASSERT_EQ(block.mTexts.size(), 3U);
    EXPECT_EQ(block.mTexts[0]->getPosition().x, 0.0F);
    EXPECT_FLOAT_EQ(block.mTexts[1]->getPosition().x + block.mTexts[1]->getLength(), block.mSize.x);
    EXPECT_EQ(block.mTexts[2]->getPosition().x, 0.0F);
}

TEST(BidirectionalTest, ArabicLettersJoinAcrossSegments) {
    const auto getWidth = [](const std::vector<std::string>& segments) {
        return LaidOutText(test::makeLine(makeProperties("Noto Sans Arabic", sSize), segments)).mSize.x;
    };
    const float whole = getWidth({"ببب"});
    const float parts = getWidth({"ب", "ب", "ب"});
    const float apart = getWidth({"ب"}) * 3.0F;
    EXPECT_NEAR(parts, whole, 1e-3);
    EXPECT_GT(apart, whole * 1.1F) << "letters that do not join are wider";
}

}  // namespace
}  // namespace kt
