#include "tests/annotation/LaidOutText.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::makeSegment;
using text::TextArea;

constexpr float sSize = 10.0F;

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

std::string joinVisualOrder(const std::string& line) {
    std::string joined;
    for (const std::string& text : getVisualOrder(LaidOutText(makeProperties("DejaVu Sans", sSize), line))) {
        joined += (joined.empty() ? "" : "¦") + text;
    }
    return joined;
}

TEST(TechnicalValueTest, ReadsFromLeftToRightInAnyLine) {
    // Items from left to right; within an item of right-to-left letters the text reads from its right end.
    const std::pair<const char*, const char*> rows[] = {
        // Persian and Arabic
        {"⌀.250 ±.008 دقیقهٔ", " دقیقهٔ¦⌀.250 ±.008"},
        {".82 ±.06 دقيقة قوسية", " دقيقة قوسية¦.82 ±.06"},
        {"قطر ⌀۱۲٫۵±۰٫۲ میلی‌متر", " میلی‌متر¦⌀۱۲٫۵±۰٫۲¦قطر "},
        {"فاصله ۱۰-۱۲ مم", " مم¦۱۰-۱۲¦فاصله "},
        {"ثقب 4X ⌀8 H7, عمق 12 mm", "12 mm¦, عمق ¦4X ⌀8 H7¦ثقب "},
        {"مقياس 1:50", "1:50¦مقياس "},
        {"خشونة Ra 3.2", "Ra 3.2¦خشونة "},
        {"زاوية 45° ±1°، نصف قطر R5", "R5¦، نصف قطر ¦45° ±1°¦زاوية "},
        {"زاوية 45° ±1°، R5", "R5¦، ¦45° ±1°¦زاوية "},
        {"ISO 2768-mK حسب", "ISO 2768-mK ¦حسب"},
        {"1\t⚖ ميزان", " ⚖ ميزان¦1"},
        // Hebrew
        {"רוחב .50 ±.02", ".50 ±.02¦רוחב "},
        {"קוטר -12.5 ב-30 ממ", " ממ¦30¦ ב-¦-12.5¦קוטר "},
        {"קדח M8 x 1.25 +0.1/-0.2", "M8 x 1.25 +0.1/-0.2¦קדח "},
        {"זווית 12° 30′ 15″.", ".¦12° 30′ 15″¦זווית "},
        {"מידה 6 1/2\" או 5' 6\"", "5' 6\"¦ או ¦6 1/2\"¦מידה "},
        {"סובלנות ⌖ | ⌀.05 | A | B", "⌖ | ⌀.05 | A | B¦סובלנות "},
        {"כמות=12 (מידה 5%)", ")¦5%¦ (מידה ¦12¦כמות="},
        {"גובה <30 או ± 0.5", "± 0.5¦ או ¦<30¦גובה "},
        // A list follows the line.
        {"מידות 12.5, 25.4 30%", "30%¦ ¦25.4¦, ¦12.5¦מידות "},
        {"קוטר ⌀5 ⌀6", "⌀6¦ ¦⌀5¦קוטר "},
        // Words of other scripts are left to the algorithm; so is a line with controls of its own.
        {"קוטר hole, deep", "hole, deep¦קוטר "},
        {"קוטר \"M8\" בלבד", "\" בלבד¦M8¦קוטר \""},
        {"\u2067.5 ±.2\u2069 א", "\u2069 א¦2¦ ±.¦5¦.¦\u2067"},
        // Lines from left to right
        {"Bore קוטר ⌀.250 ±.008", "Bore ¦קוטר¦ ⌀.250 ±.008"},
        {"2X מידה 12 ±.5 ממ, typ", "2X ¦ ממ¦12 ±.5¦מידה ¦, typ"},
    };
    for (const auto& [line, visual] : rows) {
        EXPECT_EQ(joinVisualOrder(line), visual) << line;
    }
}

std::string repeat(std::string_view text, int count) {
    std::string repeated;
    for (int index = 0; index < count; ++index) {
        repeated += text;
    }
    return repeated;
}

TEST(BidirectionalTest, WithstandsHostileText) {
    constexpr int count = 80'000;
    // Work that grew with the square of these would take minutes each.
    const std::string rows[] = {
        repeat("\u2067", 64) + repeat("\u2069", 4) + repeat("\u2067", 4) + "\u2069x",
        repeat(repeat("\u2067", 64) + repeat("\u2069", 4) + repeat("\u2067", 4) + "\u2069x", count / 80),
        "א" + repeat("(x)", count),
        "אa" + repeat("(", count) + repeat("]", count) + "a",
        "אa" + repeat("(", count) + repeat(")", count) + "a",
        "a(" + repeat("א(א) ", count) + ")",
        "אa" + repeat("\u202B(\u202C)x", count),
        "אa" + repeat("(\u2067)x\u2069", count),
        "א" + repeat("\u2067x\u2069", count),
        "א" + repeat("\u2068(", count) + "x" + repeat(")\u2069", count),
        "א" + repeat("\u202B", count) + "x" + repeat("\u202C", count),
        "א" + repeat("1 ", count),
        "א" + repeat("\"1,+", count),
    };
    const text::TextSegmentToSvgConverter converter;
    for (const std::string& row : rows) {
        const LaidOutText block(test::makeLine(makeProperties("DejaVu Sans", sSize), {row}), converter);
        EXPECT_TRUE(block.mIsDone);
        EXPECT_TRUE(std::isfinite(block.mSize.x));
        const std::size_t size =
            std::accumulate(block.mTexts.begin(), block.mTexts.end(), std::size_t{0},
                            [](std::size_t sum, const auto& text) { return sum + text->getText().size(); });
        EXPECT_EQ(size, row.size());
    }
}

}  // namespace
}  // namespace kt
