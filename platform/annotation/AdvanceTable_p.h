#pragma once

/// @file
/// Widths of simple texts without shaping.

#include "platform/annotation/Font_p.h"
#include "platform/annotation/SimpleGlyphRules_p.h"

#include <hb.h>

#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kt::text {

/// Advances and kerning pairs of a font's simple characters in left-to-right text of one script: those for which
/// shaping is the sum of what it does to each character and to each pair of neighbours. All numbers come from shaping
/// the character, and the pair, when they are first met. For one thread.
/// What they save: benchmarks/RESULTS.md, advance tables.
class AdvanceTable {
public:
    /// Kerning of pairs that shaping does more to than moving the second character.
    static constexpr int sNotAdditive = std::numeric_limits<std::int16_t>::min();

    struct Character {
        InkBox mInk;
        AdvanceTable* mTable = nullptr;
        const std::int16_t* mKerning = nullptr;  ///< by the next one's number
        std::int32_t mAdvance = 0;
        std::uint32_t mNumber = 0;
        std::uint32_t mRow = 0;
        hb_codepoint_t mGlyph = 0;
        char32_t mCode = 0;
    };

    /// @param font  must outlive the table.
    AdvanceTable(const Font& font, hb_script_t script);
    AdvanceTable(const AdvanceTable&) = delete;
    AdvanceTable& operator=(const AdvanceTable&) = delete;
    ~AdvanceTable();

    const Font& getFont() const { return mFont; }
    /// The character's numbers, null when it is not simple. They stay where they are.
    const Character* find(char32_t code);
    /// How far the second character moves towards (below 0) or away from the first, or sNotAdditive. Both are of this
    /// table.
    int getKerning(const Character& first, const Character& second) {
        const std::int16_t known = first.mKerning[second.mNumber];
        return known != sUnknown ? known : measureKerning(first, second);
    }

private:
    static constexpr std::int16_t sUnknown = std::numeric_limits<std::int16_t>::max();
    using Row = std::unique_ptr<std::int16_t[]>;

    struct BufferDeleter {
        void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
    };

    /// Shapes up to two characters.
    void shape(std::u32string_view text);
    bool makeRoom();
    int measureKerning(const Character& first, const Character& second);

    const Font& mFont;
    hb_script_t mScript;
    const SimpleGlyphRules& mRules;
    std::unique_ptr<hb_buffer_t, BufferDeleter> mBuffer;
    std::unordered_map<char32_t, const Character*> mCharacterOfCode;
    std::deque<Character> mCharacters;
    std::vector<std::pair<Character*, Row>> mRows;  ///< of characters that may move the next one
    std::size_t mRowSize = 128;
};

}  // namespace kt::text
