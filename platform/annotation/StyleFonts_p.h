#pragma once

/// @file
/// Fonts of one style, as one converter sees them.

#include "platform/annotation/AdvanceTable_p.h"
#include "platform/annotation/FontStack_p.h"
#include "platform/svg/GlyphSource.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kt::text {

/// Extent of a run in ems, y up.
struct RunExtent {
    double mAdvance = 0.0;
    double mInkLeft = 0.0;
    double mInkRight = 0.0;
    double mInkBottom = 0.0;
    double mInkTop = 0.0;
    // Ink of fonts that help out: these may be taller than the style's own font.
    double mSubstituteBottom = 0.0;
    double mSubstituteTop = 0.0;
};

/// What a converter remembers of a font stack: which font shows which character, and the widths of simple texts. For
/// one thread.
class StyleFonts {
public:
    explicit StyleFonts(std::shared_ptr<const FontStack> fonts);

    const std::shared_ptr<const FontStack>& getStack() const { return mStack; }
    /// The style's own font; null when the system has none.
    const Font* getMainFont() const { return mMainFont; }
    /// The font for a cluster, see FontStack::findFont.
    const Font* findFont(std::u32string_view cluster);
    /// Outlines of texts that measureSimple has measured.
    const std::shared_ptr<const svg::GlyphSource>& getSimpleGlyphs() const { return mSimpleGlyphs; }

    /// Measures a text from tables, exactly as shaping would; false when the text is not valid or not simple enough.
    bool measureSimple(std::string_view text, RunExtent& extent);

    /// Adds a piece in one font to an extent.
    void addPiece(const Font& font, std::int64_t advance, InkBox ink, RunExtent& extent) const;

private:
    /// Where a character stands in the tables of the style's fonts.
    struct Slot {
        std::uint8_t mTable = sUnknownTable;
        AdvanceTable::Index mIndex = 0;
    };
    static constexpr std::uint8_t sUnknownTable = 0xFF;
    static constexpr std::uint8_t sNoTable = 0xFE;

    struct TableUse {
        const Font* mFont;
        const AdvanceTable* mTable;
    };

    Slot findSlot(char32_t character);
    std::uint8_t findTable(const Font& font);

    std::shared_ptr<const FontStack> mStack;
    const Font* mMainFont;
    std::shared_ptr<const svg::GlyphSource> mSimpleGlyphs;
    std::unordered_map<char32_t, const Font*> mFontOfCharacter;
    std::vector<TableUse> mTables;
    std::vector<Slot> mSlots;  ///< by character
};

}  // namespace kt::text
