#include "platform/encoding/Utf8.h"
#include "tests/annotation/LaidOutText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
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
        {"a\r\nb\n\rc\r", "a b  c "},
        {"a\x1B", "a" REPLACED},
        {"a\u0085z", "a z"},
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

TEST(SimpleTextTest, KeepsWhatAFileCanHold) {
    const std::string text = "a\x7F\u0080\u009F\uFDD0\U0001FFFE\U0010FFFFz";
    EXPECT_EQ(LaidOutText(makeProperties("DejaVu Sans", 3.175F), text).mTexts.at(0)->getText(), text);
}

class WidthTest : public testing::TestWithParam<const char*> {};

/// A character with its script: those that many scripts share have that of the text before them.
struct Letter {
    char32_t mCode;
    hb_script_t mScript;
};

std::vector<Letter> makeAlphabet() {
    const struct {
        hb_script_t mScript;
        std::u32string_view mLetters;
    } rows[] = {
        {HB_SCRIPT_LATIN, U"AVTYaefijlorvwyWP\u00C4\u00DF\u00E9\u0142\u1E9E"},
        {HB_SCRIPT_GREEK, U"\u03A9\u03B1\u03B2\u03BC\u03A4\u0391"},
        {HB_SCRIPT_CYRILLIC, U"\u0414\u0438\u0430\u043C\u0413\u0422"},
        {HB_SCRIPT_HAN, U"\u76F4\u5F84\u8868"},
        {HB_SCRIPT_HIRAGANA, U"\u306D\u3058\u3041"},
        {HB_SCRIPT_KATAKANA, U"\u30CD\u30B8\u30D4"},
        {HB_SCRIPT_HANGUL, U"\uC9C0\uB984\uAC01"},
        {HB_SCRIPT_COMMON,
         U"  0123456789.,-+/()\"'\u2300\u00B1\u00B0\u00D7\u21A7\u25B1\u221F\u2295\u2220\u23E5"
         U"\u24C2\u2264\u2044\u30FC\u300C\uFF08\U0001D4B3"},
    };
    std::vector<Letter> alphabet;
    for (const auto& row : rows) {
        for (const char32_t code : row.mLetters) {
            // Half of the characters are shared ones, as in drawings.
            for (std::size_t count = row.mScript == HB_SCRIPT_COMMON ? 1 : 2; count > 0; --count) {
                alphabet.push_back({code, row.mScript});
            }
        }
    }
    return alphabet;
}

/// The text's pieces of one font and script, shaped one by one.
void expectPiecesShaped(const LaidOutText& block, const std::vector<Letter>& letters, test::ReferenceFonts& fonts) {
    const double size = double{block.mTexts.at(0)->getSize()};
    const auto decided =
        std::ranges::find_if(letters, [](const Letter& letter) { return letter.mScript != HB_SCRIPT_COMMON; });
    hb_script_t script = decided != letters.end() ? decided->mScript : HB_SCRIPT_LATIN;
    double pen = 0.0;
    auto glyph = block.mGlyphs.begin();
    for (auto letter = letters.begin(); letter != letters.end();) {
        const ReferenceFont* font = fonts.find(letter->mCode);
        const auto getScript = [&](const Letter& next) {
            return next.mScript != HB_SCRIPT_COMMON ? next.mScript : script;
        };
        script = getScript(*letter);
        std::string piece;
        for (; letter != letters.end() && fonts.find(letter->mCode) == font && getScript(*letter) == script; ++letter) {
            encoding::appendUtf8(letter->mCode, piece);
        }
        const test::ReferenceRun run = shapeReference(*font, piece, script);
        const double scale = size / font->getUnitsPerEm();
        for (const test::ReferenceGlyph& expected : run.mGlyphs) {
            if (font->isBlank(expected.mGlyph)) {
                continue;
            }
            ASSERT_NE(glyph, block.mGlyphs.end());
            ASSERT_NEAR(glyph->mPosition.x, pen + static_cast<double>(expected.mX) * scale, 2e-4);
            ASSERT_NEAR(glyph->mPosition.y, static_cast<double>(-expected.mY) * scale, 1e-4);
            ASSERT_FLOAT_EQ(glyph->mScale, static_cast<float>(scale));
            const auto [known, isNew] = fonts.mOutlines.try_emplace({font, expected.mGlyph}, glyph->mOutline);
            ASSERT_EQ(known->second, glyph->mOutline) << "glyph " << expected.mGlyph;
            ++glyph;
        }
        pen += static_cast<double>(run.mAdvance) * scale;
    }
    EXPECT_EQ(glyph, block.mGlyphs.end());
    EXPECT_NEAR(block.mTexts[0]->getLength(), pen, 2e-4);
}

TEST_P(WidthTest, EqualsShapingPieceByPiece) {
    const std::vector<Letter> alphabet = makeAlphabet();
    test::ReferenceFonts fonts(GetParam());
    const text::TextSegmentToSvgConverter converter;
    std::mt19937 random(7);
    for (int count = 0; count < 20'000; ++count) {
        std::vector<Letter> letters;
        std::string text;
        // Texts of one or two scripts, and of all.
        const std::size_t window = count % 3 == 0 ? alphabet.size() : 30;
        const std::size_t start = random() % (alphabet.size() - window + 1);
        for (std::size_t length = 1 + random() % 10; length > 0; --length) {
            const bool isShared = random() % 4 == 0;
            letters.push_back(isShared ? alphabet[alphabet.size() - 1 - random() % 40]
                                       : alphabet[start + random() % window]);
            encoding::appendUtf8(letters.back().mCode, text);
        }
        const LaidOutText block(test::makeLine(makeProperties(GetParam(), 3.175F), {text}), converter);
        ASSERT_EQ(block.mTexts.size(), 1U);
        expectPiecesShaped(block, letters, fonts);
        ASSERT_FALSE(HasFailure()) << text;
    }
}

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

TEST(GlyphSourceTest, MovesMarksAlongWithSlantedLetters) {
    // This family has no italic.
    const LaidOutText upright(makeProperties("Noto Naskh Arabic", 10.0F), "مُحَمَّد");
    const LaidOutText slanted(makeProperties("Noto Naskh Arabic", 10.0F, text::TextProperties::sItalic), "مُحَمَّد");
    ASSERT_EQ(slanted.mGlyphs.size(), upright.mGlyphs.size());
    float highest = 0.0F;
    for (std::size_t index = 0; index < upright.mGlyphs.size(); ++index) {
        const Wm4::Vector2<float>& place = upright.mGlyphs[index].mPosition;
        EXPECT_NEAR(slanted.mGlyphs[index].mPosition.x, place.x - 0.2F * place.y, 0.01F);
        highest = std::max(highest, std::abs(place.y));
    }
    EXPECT_GT(highest, 0.2F) << "no mark of the text is moved up or down";
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
