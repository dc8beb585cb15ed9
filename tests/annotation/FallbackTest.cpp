#include "platform/annotation/ktAnnotationLibrary.h"
#include "tests/annotation/LaidOutText.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>
#include <hb.h>

#include <algorithm>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::ReferenceFont;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr float sSize = 10.0F;

/// Set in a font that has letters, but neither symbols nor other scripts.
LaidOutText layOut(std::string_view bytes) { return {makeProperties("Liberation Sans", sSize), bytes}; }

TEST(FallbackTest, DrawsSymbolsByFontsThatHaveThem) {
    // U+10FFFD is in no font: it shows what a missing character looks like.
    const LaidOutText missing = layOut("\U0010FFFD\U0010FFFD");
    const ReferenceFont font("Liberation Sans");
    const double unit = double{sSize} / font.getUnitsPerEm();
    ASSERT_EQ(missing.mTexts.size(), 1U);
    EXPECT_EQ(missing.mTexts[0]->getText(), "\U0010FFFD\U0010FFFD");
    EXPECT_FLOAT_EQ(missing.mSize.x, static_cast<float>(2 * hb_font_get_glyph_h_advance(font.getFont(), 0) * unit));
    ASSERT_EQ(missing.mGlyphs.size(), 2U);
    for (const char* text :
         {"⌀", "±", "°", "⌖", "⏥", "∥", "⟂", "Ⓜ", "Ⓛ", "⌓", "⌒", "⌭", "⌴", "↧", "◎", "直", "ש", "क"}) {
        const LaidOutText symbol = layOut(text);
        ASSERT_EQ(symbol.mGlyphs.size(), 1U) << text;
        EXPECT_NE(symbol.mGlyphs[0].mOutline, missing.mGlyphs[0].mOutline) << text;
        EXPECT_GT(symbol.mSize.x, 0.0F) << text;
    }
    // Such symbols do not change the line's height.
    EXPECT_EQ(layOut("35").mSize.y, layOut("⌀35").mSize.y);
}

TEST(FallbackTest, HoldsClustersTogether) {
    // Liberation Sans has the letter, but not the mark; both must come from one font that has both.
    const LaidOutText block = layOut("x\u1DC4");
    ASSERT_EQ(block.mGlyphs.size(), 2U);
    EXPECT_EQ(block.mGlyphs[0].mScale, block.mGlyphs[1].mScale);
    EXPECT_LT(block.mGlyphs[1].mPosition.x, block.mTexts[0]->getLength());
    EXPECT_NE(block.mGlyphs[0].mOutline, layOut("x").mGlyphs.at(0).mOutline);
}

TEST(FallbackTest, KeepsTheOrderOfFontsInBothDirections) {
    for (const auto& [family, letter] : {std::pair("Liberation Sans", "A"), std::pair("Noto Sans Hebrew", "ש")}) {
        const auto properties = makeProperties(family, sSize);
        const LaidOutText alone(properties, letter);
        const LaidOutText block(properties, std::string("⌀") + letter);
        ASSERT_EQ(block.mTexts.size(), 1U);
        ASSERT_EQ(block.mGlyphs.size(), 2U);
        const auto found = std::ranges::find(block.mGlyphs, alone.mGlyphs.at(0).mOutline, &svg::PlacedGlyph::mOutline);
        ASSERT_NE(found, block.mGlyphs.end()) << family;
        const float before = block.mTexts[0]->isRightToLeft() ? 0.0F : block.mSize.x - alone.mSize.x;
        EXPECT_NEAR(found->mPosition.x, alone.mGlyphs[0].mPosition.x + before, 1e-5F) << family;
    }
}

TEST(FallbackTest, TellsEachSubstitutionOnce) {
    ktTest::RecordingLog log;
    // Forgets the fonts that earlier tests used.
    initializeKtAnnotationLibrary(false);
    terminateKtAnnotationLibrary();
    log.takeMessages(ktLog::Debug);
    for (int count = 0; count < 3; ++count) {
        LaidOutText(makeProperties("No Such Family", sSize), "text");
        LaidOutText(makeProperties("Liberation Serif", sSize), "直径直");
    }
    EXPECT_THAT(log.takeMessages(ktLog::Debug),
                UnorderedElementsAre(HasSubstr("'No Such Family'"), HasSubstr("'Liberation Serif'")));
}

TEST(FallbackTest, SubstitutesMissingFamiliesAsTheSystemSays) {
    expectShaped(LaidOutText(makeProperties("No Such Family", sSize), "Width"), "Width",
                 ReferenceFont("No Such Family"));
}

TEST(AnnotationLibraryTest, KeepsFontsThatConvertersHoldBeyondItsEnd) {
    initializeKtAnnotationLibrary(true);
    const text::TextSegmentToSvgConverter converter;
    const text::TextArea area = test::makeLine({}, {"before and after"});
    const LaidOutText before(area, converter);
    terminateKtAnnotationLibrary();
    const LaidOutText after(area, converter);
    EXPECT_GT(before.mSize.x, 0.0F);
    EXPECT_EQ(after.mSize, before.mSize);

    std::vector<svg::PlacedGlyph> glyphs;
    before.mTexts.at(0)->getGlyphSource()->appendGlyphs(*before.mTexts.at(0), glyphs);
    EXPECT_EQ(glyphs.size(), 14U);
}

}  // namespace
}  // namespace kt
