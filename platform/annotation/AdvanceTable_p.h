#pragma once

/// @file
/// Widths of simple texts without shaping.

#include "platform/annotation/Font_p.h"

#include <hb.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace kt::text {

/// Advances and kerning pairs of a font's simple characters: those for which shaping a text of Latin script from left
/// to right is the sum of what it does to each character and to each pair of neighbours. Which characters these are is
/// told by the font's own layout tables; all numbers come from shaping the character, and the pair when it is first
/// asked for. Safe for several threads.
class AdvanceTable {
public:
    using Index = std::uint8_t;

    /// All candidates are below this.
    static constexpr char32_t sCharacterEnd = 0x2800;
    /// Kerning of pairs that shaping does more to than moving the second character.
    static constexpr int sNotAdditive = std::numeric_limits<std::int16_t>::min();

    struct Glyph {
        hb_codepoint_t mGlyph = 0;
        std::int32_t mAdvance = 0;
        InkBox mInk;
    };

    /// @param font  must outlive the table.
    explicit AdvanceTable(const Font& font);

    /// Whether fonts are asked at all if the character is simple in them.
    static bool isCandidate(char32_t character);
    /// The index of a simple character, nothing for all others.
    std::optional<Index> findIndex(char32_t character) const;
    const Glyph& getGlyph(Index index) const { return mGlyphs[index]; }
    /// How far the second character moves towards (below 0) or away from the first, or sNotAdditive.
    int getKerning(Index first, Index second) const {
        const std::int16_t known = mKerning[first * mGlyphCount + second].load(std::memory_order_relaxed);
        return known != sUnknown ? known : measureKerning(first, second);
    }

private:
    static constexpr std::int16_t sUnknown = std::numeric_limits<std::int16_t>::max();

    void excludePair(hb_codepoint_t first, hb_codepoint_t second);
    int measureKerning(Index first, Index second) const;

    const Font& mFont;
    std::vector<char32_t> mCharacters;  ///< ascending, parallel to mGlyphs
    std::vector<Glyph> mGlyphs;
    std::size_t mGlyphCount = 0;
    /// By first and second character. Every thread that measures a pair finds the same number, so the order of stores
    /// does not matter.
    mutable std::unique_ptr<std::atomic<std::int16_t>[]> mKerning;
};

}  // namespace kt::text
