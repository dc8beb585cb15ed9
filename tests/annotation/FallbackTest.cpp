#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/system/ktLog.h"
#include "tests/annotation/LaidOutText.h"

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
    const LogCapture log;
    for (int count = 0; count < 3; ++count) {
        LaidOutText(makeProperties("No Such Family", sSize), "text");
        LaidOutText(makeProperties("Liberation Serif", sSize), "直径直");
    }
    EXPECT_EQ(log.count("'No Such Family'"), 1);
    EXPECT_EQ(log.count("'Liberation Serif'"), 1);
}

TEST(FallbackTest, SubstitutesMissingFamiliesAsTheSystemSays) {
    expectShaped(LaidOutText(makeProperties("No Such Family", sSize), "Width"), "Width",
                 ReferenceFont("No Such Family"));
}

}  // namespace
}  // namespace kt
