#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/system/ktLog.h"
#include "tests/annotation/LaidOutText.h"
#include "tests/annotation/ReferenceShaping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hb.h>

#include <algorithm>
#include <mutex>

namespace kt {
namespace {

using test::LaidOutText;
using test::makeProperties;
using test::ReferenceFont;

constexpr float sSize = 10.0F;

/// Keeps what is logged while it lives, with the fonts forgotten before and after.
class LogCapture final : public ktLog {
public:
    LogCapture() : mFormer(msInstance.exchange(this)) {
        initializeKtAnnotationLibrary(false);
        terminateKtAnnotationLibrary();
        msInstance = this;
    }
    ~LogCapture() override { msInstance = mFormer; }

    void log(const ktLogEntry& entry) noexcept override {
        const std::scoped_lock lock(mMutex);
        mEntries.push_back(entry);
    }
    bool isEnabled(int) const override { return true; }

    std::ptrdiff_t count(std::string_view part) const {
        return std::ranges::count_if(mEntries, [part](const ktLogEntry& entry) {
            return entry.mType == Debug && entry.mMessage.find(part) != std::string::npos;
        });
    }

private:
    ktLog* mFormer;
    std::mutex mMutex;
    std::vector<ktLogEntry> mEntries;
};

std::vector<svg::PlacedGlyph> getGlyphs(const LaidOutText& block) {
    std::vector<svg::PlacedGlyph> glyphs;
    for (const auto& text : block.mTexts) {
        text->getGlyphSource()->appendGlyphs(*text, glyphs);
    }
    return glyphs;
}

class SymbolTest : public testing::TestWithParam<const char*> {};

TEST_P(SymbolTest, IsDrawnByAFontThatHasIt) {
    // U+10FFFD is in no font: it shows what a missing character looks like.
    const LaidOutText missing = test::layOutString(makeProperties("Liberation Sans", sSize), "\U0010FFFD");
    const LaidOutText symbol = test::layOutString(makeProperties("Liberation Sans", sSize), GetParam());
    const std::vector<svg::PlacedGlyph> glyphs = getGlyphs(symbol);
    ASSERT_EQ(glyphs.size(), 1U);
    ASSERT_EQ(getGlyphs(missing).size(), 1U);
    EXPECT_NE(glyphs[0].mOutline, getGlyphs(missing)[0].mOutline);
    EXPECT_GT(symbol.mSize.x, 0.0F);
}

INSTANTIATE_TEST_SUITE_P(DrawingSymbols, SymbolTest,
                         testing::Values("⌀", "±", "°", "⌖", "⏥", "∥", "⟂", "Ⓜ", "Ⓛ", "⌓", "⌒", "⌭", "⌴", "↧", "◎",
                                         "直", "ש", "क"));

TEST(FallbackTest, ShowsCharactersOfNoFontByTheMainFontsMissingGlyph) {
    const ReferenceFont font("Liberation Sans");
    const double unit = double{sSize} / font.getUnitsPerEm();
    const LaidOutText block = test::layOutString(makeProperties("Liberation Sans", sSize), "\U0010FFFD\U0010FFFD");
    ASSERT_EQ(block.mTexts.size(), 1U);
    EXPECT_EQ(block.mTexts[0]->getText(), "\U0010FFFD\U0010FFFD");
    EXPECT_FLOAT_EQ(block.mSize.x, static_cast<float>(2 * hb_font_get_glyph_h_advance(font.getFont(), 0) * unit));
    EXPECT_EQ(getGlyphs(block).size(), 2U);
}

TEST(FallbackTest, KeepsTheLinesHeightForSymbolsOfOtherFonts) {
    const LaidOutText plain = test::layOutString(makeProperties("Liberation Sans", sSize), "35");
    const LaidOutText symbol = test::layOutString(makeProperties("Liberation Sans", sSize), "⌀35");
    EXPECT_EQ(plain.mSize.y, symbol.mSize.y);
}

TEST(FallbackTest, HoldsClustersTogether) {
    // Liberation Sans has the letter, but not the mark; both must come from one font that has both.
    const LaidOutText block = test::layOutString(makeProperties("Liberation Sans", sSize), "x\u1DC4");
    const std::vector<svg::PlacedGlyph> glyphs = getGlyphs(block);
    ASSERT_EQ(glyphs.size(), 2U);
    EXPECT_EQ(glyphs[0].mScale, glyphs[1].mScale);
    EXPECT_LT(glyphs[1].mPosition.x, block.mTexts[0]->getLength());
    const LaidOutText letter = test::layOutString(makeProperties("Liberation Sans", sSize), "x");
    EXPECT_NE(glyphs[0].mOutline, getGlyphs(letter).at(0).mOutline);
}

TEST(FallbackTest, TellsEachSubstitutionOnce) {
    const LogCapture log;
    for (int count = 0; count < 3; ++count) {
        test::layOutString(makeProperties("No Such Family", sSize), "text");
        test::layOutString(makeProperties("Liberation Serif", sSize), "直径直");
    }
    EXPECT_EQ(log.count("'No Such Family'"), 1);
    EXPECT_EQ(log.count("'Liberation Serif'"), 1);
}

TEST(FallbackTest, SubstitutesMissingFamiliesAsTheSystemSays) {
    const ReferenceFont substitute("No Such Family");
    const LaidOutText block = test::layOutString(makeProperties("No Such Family", sSize), "Width");
    const double units = static_cast<double>(shapeReference(substitute, "Width").mAdvance);
    EXPECT_FLOAT_EQ(block.mSize.x, static_cast<float>(units * double{sSize} / substitute.getUnitsPerEm()));
}

}  // namespace
}  // namespace kt
