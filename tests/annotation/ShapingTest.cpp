#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <utility>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::ReferenceFont;

#define REPLACED "\uFFFD"

TEST(SimpleTextTest, ShowsEveryByte) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {{"a\0b", 3}, "a" REPLACED "b"},
        {"a\tb", "a b"},
        {"a\r\nb", "a  b"},
        {"a\x1B\x7F", "a" REPLACED REPLACED},
        {"a\u0080\u0085z", "a" REPLACED " z"},
        {"a\uFFFE\uFFFFz", "a" REPLACED REPLACED "z"},
        {"a\x80\xBFz", "a" REPLACED REPLACED "z"},
        {"a\xC0\xAFz", "a" REPLACED REPLACED "z"},
        {"a\xE0\x80\xAFz", "a" REPLACED REPLACED REPLACED "z"},
        {"a\xED\xA0\x80z", "a" REPLACED REPLACED REPLACED "z"},
        {"a\xF4\x90\x80\x80z", "a" REPLACED REPLACED REPLACED REPLACED "z"},
        {"a\xE2\x8C", "a" REPLACED},
        {"\xE2\x8Cz", REPLACED "z"},
        {"\xB0 45", REPLACED " 45"},
    };
    for (const auto& [bytes, shown] : rows) {
        expectShaped(LaidOutText(makeProperties("DejaVu Sans", 3.175F), bytes), shown, ReferenceFont("DejaVu Sans"));
    }
}

class WidthTest : public testing::TestWithParam<const char*> {};

TEST_P(WidthTest, EqualsShaping) {
    static constexpr std::string_view sPieces[] = {"A",  "V",    "T", "fi",     "ffl", "f", "j",       "W.",
                                                   "0",  "12.5", " ", "±",      "°",   "é", "e\u0301", "Ä",
                                                   "\"", "R1",   "(", "\u2044", "Yo",  "-", "ß"};
    const ReferenceFont font(GetParam());
    const text::TextSegmentToSvgConverter converter;
    std::mt19937 random(7);
    for (int count = 0; count < 3000; ++count) {
        std::string text = "a";
        for (std::size_t pieces = random() % 8; pieces > 0; --pieces) {
            const std::string choice[] = {std::string(sPieces[random() % std::size(sPieces)]),
                                          std::string(1, static_cast<char>('!' + random() % 94)),
                                          std::string("\xC3") + static_cast<char>(0x80 + random() % 64)};
            text += choice[random() % std::size(choice)];
        }
        expectShaped(LaidOutText(test::makeLine(makeProperties(GetParam(), 3.175F), {text}), converter), text, font);
        ASSERT_FALSE(HasFailure()) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, WidthTest,
                         testing::Values("Liberation Sans", "Liberation Serif", "Liberation Mono", "DejaVu Sans",
                                         "Noto Sans", "Noto Serif"));

TEST(GlyphSourceTest, GivesOneOutlineForAllUsesOfAGlyph) {
    const LaidOutText small(makeProperties("Liberation Sans", 1.0F), "T T");
    const LaidOutText large(makeProperties("Liberation Sans", 9.0F), "T T");
    ASSERT_EQ(small.mGlyphs.size(), 2U);
    EXPECT_EQ(small.mGlyphs[0].mOutline, small.mGlyphs[1].mOutline);
    EXPECT_EQ(small.mGlyphs[0].mOutline, large.mGlyphs.at(0).mOutline);
    // A T stands on its base line, so that in a frame with y pointing down all of it is above 0.
    for (const Wm4::Vector2<float>& point : small.mGlyphs[0].mOutline->getPoints()) {
        EXPECT_LE(point.y, 0.0F);
    }
}

TEST(GlyphSourceTest, ThickensAndSlantsWhereTheFontLacksTheStyle) {
    const auto getBox = [](std::uint8_t style) {
        // This family comes upright and in regular weight only.
        const LaidOutText block(makeProperties("Noto Sans Symbols2", 1.0F, style), "\u2316");
        svg::BoundingBox box;
        for (const Wm4::Vector2<float>& point : block.mGlyphs.at(0).mOutline->getPoints()) {
            box.addPoint(point);
        }
        return box;
    };
    EXPECT_GT(getBox(text::TextProperties::sBold).getHeight(), getBox(0).getHeight());
    EXPECT_GT(getBox(text::TextProperties::sItalic).getWidth(), getBox(0).getWidth());
}

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

}  // namespace
}  // namespace kt
