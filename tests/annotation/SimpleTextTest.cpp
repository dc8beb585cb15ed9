#include "tests/annotation/LaidOutText.h"
#include "tests/annotation/ReferenceShaping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <random>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::ReferenceFont;
using test::ReferenceRun;

constexpr float sSize = 3.175F;

struct BytesCase {
    const char* mName;
    std::string_view mBytes;
    std::string_view mShown;
};

void PrintTo(const BytesCase& testCase, std::ostream* stream) { *stream << testCase.mName; }

class BytesTest : public testing::TestWithParam<BytesCase> {};

TEST_P(BytesTest, AreShownWithoutLoss) {
    const LaidOutText block = test::layOutString(makeProperties("DejaVu Sans", sSize), GetParam().mBytes);
    ASSERT_EQ(block.mTexts.size(), 1U);
    EXPECT_EQ(block.mTexts[0]->getText(), GetParam().mShown);
    const ReferenceFont font("DejaVu Sans");
    const auto units = static_cast<double>(shapeReference(font, GetParam().mShown).mAdvance);
    EXPECT_FLOAT_EQ(block.mTexts[0]->getLength(), static_cast<float>(units / font.getUnitsPerEm() * double{sSize}));
}

#define REPLACED "\uFFFD"
INSTANTIATE_TEST_SUITE_P(
    Bytes, BytesTest,
    testing::Values(BytesCase{"Nul", {"a\0b", 3}, "a" REPLACED "b"}, BytesCase{"Tab", "a\tb", "a b"},
                    BytesCase{"LineFeed", "a\r\nb", "a  b"}, BytesCase{"Control", "a\x1B\x7F", "a" REPLACED REPLACED},
                    BytesCase{"HighControl", "a\u0080\u0085z", "a" REPLACED " z"},
                    BytesCase{"NoCharacter", "a\uFFFE\uFFFFz", "a" REPLACED REPLACED "z"},
                    BytesCase{"LoneContinuation", "a\x80\xBFz", "a" REPLACED REPLACED "z"},
                    BytesCase{"Overlong", "a\xC0\xAFz", "a" REPLACED REPLACED "z"},
                    BytesCase{"OverlongThree", "a\xE0\x80\xAFz", "a" REPLACED REPLACED REPLACED "z"},
                    BytesCase{"Surrogate", "a\xED\xA0\x80z", "a" REPLACED REPLACED REPLACED "z"},
                    BytesCase{"BeyondUnicode", "a\xF4\x90\x80\x80z", "a" REPLACED REPLACED REPLACED REPLACED "z"},
                    BytesCase{"CutShort", "a\xE2\x8C", "a" REPLACED},
                    BytesCase{"CutByLetter", "\xE2\x8Cz", REPLACED "z"},
                    BytesCase{"Latin1", "\xB0 45", REPLACED " 45"}),
    [](const auto& testCase) { return testCase.param.mName; });
#undef REPLACED

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
            text += sPieces[random() % std::size(sPieces)];
        }
        const LaidOutText block(converter,
                                test::makeArea(makeProperties(GetParam(), sSize), {{test::makeSegment(text)}}));
        ASSERT_EQ(block.mTexts.size(), 1U);
        const ReferenceRun shaped = shapeReference(font, text);
        const double ems = static_cast<double>(shaped.mAdvance) / font.getUnitsPerEm();
        ASSERT_FLOAT_EQ(block.mTexts[0]->getLength(), static_cast<float>(ems * double{sSize})) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, WidthTest,
                         testing::Values("Liberation Sans", "DejaVu Sans", "Noto Sans", "Liberation Mono"));

TEST(GlyphSourceTest, PlacesGlyphsWhereShapingDoes) {
    const ReferenceFont font("DejaVu Sans");
    const std::string text = "AVaffinity";
    const LaidOutText block = test::layOutString(makeProperties("DejaVu Sans", 2.0F), text);
    std::vector<svg::PlacedGlyph> glyphs;
    block.mTexts.at(0)->getGlyphSource()->appendGlyphs(*block.mTexts[0], glyphs);
    const ReferenceRun shaped = shapeReference(font, text);
    ASSERT_LT(shaped.mGlyphs.size(), text.size()) << "this text is meant to have a ligature";
    ASSERT_EQ(glyphs.size(), shaped.mGlyphs.size());
    for (std::size_t index = 0; index < glyphs.size(); ++index) {
        EXPECT_FLOAT_EQ(glyphs[index].mPosition.x,
                        static_cast<float>(static_cast<double>(shaped.mGlyphs[index].mX) * 2.0 / font.getUnitsPerEm()));
        EXPECT_FLOAT_EQ(glyphs[index].mScale, static_cast<float>(2.0 / font.getUnitsPerEm()));
    }
}

TEST(GlyphSourceTest, GivesOneOutlineForAllUsesOfAGlyph) {
    const auto getGlyphs = [](float size) {
        const LaidOutText block = test::layOutString(makeProperties("Liberation Sans", size), "T T");
        std::vector<svg::PlacedGlyph> glyphs;
        block.mTexts.at(0)->getGlyphSource()->appendGlyphs(*block.mTexts[0], glyphs);
        return std::pair(block.mTexts, glyphs);
    };
    const auto [smallTexts, smallGlyphs] = getGlyphs(1.0F);
    const auto [largeTexts, largeGlyphs] = getGlyphs(9.0F);
    ASSERT_EQ(smallGlyphs.size(), 2U);
    EXPECT_EQ(smallGlyphs[0].mOutline, smallGlyphs[1].mOutline);
    EXPECT_EQ(smallGlyphs[0].mOutline, largeGlyphs.at(0).mOutline);
    // A T stands on its base line, so that in a frame with y pointing down all of it is above 0.
    for (const Wm4::Vector2<float>& point : smallGlyphs[0].mOutline->getPoints()) {
        EXPECT_LE(point.y, 0.0F);
    }
}

TEST(GlyphSourceTest, ThickensAndSlantsWhereTheFontLacksTheStyle) {
    const auto getBox = [](std::uint8_t style) {
        // This family comes upright and in regular weight only.
        const LaidOutText block = test::layOutString(makeProperties("Noto Sans Symbols2", 1.0F, style), "\u2316");
        std::vector<svg::PlacedGlyph> glyphs;
        block.mTexts.at(0)->getGlyphSource()->appendGlyphs(*block.mTexts[0], glyphs);
        svg::BoundingBox box;
        for (const Wm4::Vector2<float>& point : glyphs.at(0).mOutline->getPoints()) {
            box.addPoint(point);
        }
        return box;
    };
    const svg::BoundingBox regular = getBox(0);
    EXPECT_GT(getBox(text::TextProperties::sBold).getHeight(), regular.getHeight());
    EXPECT_GT(getBox(text::TextProperties::sItalic).getWidth(), regular.getWidth());
}

}  // namespace
}  // namespace kt
