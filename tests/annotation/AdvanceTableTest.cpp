#include "platform/annotation/AdvanceTable_p.h"
#include "tests/annotation/ReferenceShaping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace kt::text {
namespace {

using test::ReferenceFont;
using test::ReferenceRun;

/// What the table says about a text; nothing when the table leaves the text to shaping.
std::optional<ReferenceRun> measure(const AdvanceTable& table, const std::u32string& text) {
    ReferenceRun run;
    std::optional<AdvanceTable::Index> last;
    for (const char32_t character : text) {
        const std::optional<AdvanceTable::Index> index = table.findIndex(character);
        if (!index) {
            return std::nullopt;
        }
        if (last) {
            const int kerning = table.getKerning(*last, *index);
            if (kerning == AdvanceTable::sNotAdditive) {
                return std::nullopt;
            }
            run.mAdvance += kerning;
        }
        const AdvanceTable::Glyph& glyph = table.getGlyph(*index);
        run.mGlyphs.push_back({glyph.mGlyph, run.mAdvance, 0});
        run.mAdvance += glyph.mAdvance;
        last = index;
    }
    return run;
}

/// Origins of glyphs as drawn; old kerning tables split a pair's kerning, which moves no origin of the following
/// glyphs.
class AdvanceTableTest : public testing::TestWithParam<const char*> {
protected:
    AdvanceTableTest()
        : mReference(GetParam()), mFont(Font::open({.mPath = mReference.getPath(), .mIndex = mReference.getIndex()})) {}

    void SetUp() override { ASSERT_TRUE(mReference.isInstalled()) << GetParam() << " is needed by the tests"; }

    /// Characters that texts are drawn from: mostly those that kern and join, all others now and then.
    std::u32string makeText(std::mt19937& random) const {
        static constexpr std::u32string_view sLively = U"AVTWYLPFafijltvwy.,-fi ";
        std::u32string text;
        const std::size_t length = 1 + random() % 16;
        while (text.size() < length) {
            const auto any = static_cast<char32_t>(random() % 4 != 0 ? 0x20 + random() % 0x60 : 0xA0 + random() % 0x60);
            const char32_t character = random() % 3 == 0 ? sLively[random() % sLively.size()] : any;
            if (AdvanceTable::isCandidate(character)) {
                text += character;
            }
        }
        return text;
    }

    ReferenceFont mReference;
    std::shared_ptr<const Font> mFont;
};

TEST_P(AdvanceTableTest, PlacesEveryGlyphWhereShapingDoes) {
    constexpr int sTextCount = 20'000;
    // Texts that the table leaves to shaping do not count, but must stay the exception.
    constexpr int sMaxDrawnCount = 2 * sTextCount;
    const AdvanceTable& table = mFont->getAdvanceTable();
    std::mt19937 random(20);
    int measuredCount = 0;
    for (int drawnCount = 0; measuredCount < sTextCount && drawnCount < sMaxDrawnCount; ++drawnCount) {
        const std::u32string text = makeText(random);
        const std::optional<ReferenceRun> measured = measure(table, text);
        if (!measured) {
            continue;
        }
        ++measuredCount;
        std::string bytes;
        for (const char32_t character : text) {
            if (character < 0x80) {
                bytes += static_cast<char>(character);
            } else {
                bytes.append(
                    {static_cast<char>(0xC0U | (character >> 6)), static_cast<char>(0x80U | (character & 0x3FU))});
            }
        }
        const ReferenceRun shaped = test::shapeReference(mReference, bytes);
        ASSERT_EQ(measured->mAdvance, shaped.mAdvance) << bytes;
        ASSERT_EQ(measured->mGlyphs, shaped.mGlyphs) << bytes;
    }
    EXPECT_EQ(measuredCount, sTextCount);
}

TEST_P(AdvanceTableTest, ServesTheTextsOfDrawingsOnly) {
    const AdvanceTable& table = mFont->getAdvanceTable();
    for (const char32_t* text :
         {U"35 +0.2", U"R12.5 TYP", U"4X M8 - 6H", U"45\u00B0 \u00B10.1", U"UNLESS OTHERWISE NOTED"}) {
        EXPECT_TRUE(measure(table, text)) << GetParam();
    }
    // What depends on more than its neighbour.
    for (const char32_t character : {0x2044U, 0x00ADU, 0x0301U, 0x200DU, 0x0628U, 0x05D0U, 0x0915U}) {
        EXPECT_EQ(table.findIndex(character), std::nullopt) << std::hex << static_cast<unsigned>(character);
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, AdvanceTableTest,
                         testing::Values("Liberation Sans", "Liberation Serif", "Liberation Mono", "DejaVu Sans",
                                         "Noto Sans", "Liberation Sans:bold:italic", "Noto Serif"));

}  // namespace
}  // namespace kt::text
