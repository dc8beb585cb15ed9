#include "platform/annotation/AdvanceTable_p.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace kt::text {

namespace {

/// Characters beyond this number are shaped.
constexpr std::size_t sMaxCharacterCount = 0x4000;
/// Of kerning values; 4 MB.
constexpr std::size_t sMaxPairCount = 0x200000;

/// The row of all characters that do not move the next one.
constexpr std::array<std::int16_t, sMaxCharacterCount> sNoKerning{};

bool isShifted(const hb_glyph_position_t& position) {
    return position.x_offset != 0 || position.y_offset != 0 || position.y_advance != 0;
}

}  // namespace

AdvanceTable::AdvanceTable(const Font& font, hb_script_t script)
    : mFont(font), mScript(script), mRules(font.getSimpleGlyphRules(script)), mBuffer(hb_buffer_create()) {}

AdvanceTable::~AdvanceTable() = default;

const AdvanceTable::Character* AdvanceTable::find(char32_t code) {
    const auto [entry, isNew] = mCharacterOfCode.try_emplace(code, nullptr);
    const hb_codepoint_t glyph = isNew && SimpleGlyphRules::isCandidate(code, mScript) ? mFont.getGlyph(code) : 0;
    if (glyph == 0 || !mRules.isSimple(glyph)) {
        return entry->second;
    }
    shape({&code, 1});
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(mBuffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(mBuffer.get(), &count);
    if (count != 1 || infos[0].codepoint != glyph || isShifted(positions[0]) || !makeRoom()) {
        return nullptr;
    }
    Character& character = mCharacters.emplace_back();
    character.mInk = mFont.getInkBox(glyph);
    character.mTable = this;
    character.mKerning = sNoKerning.data();
    character.mAdvance = positions[0].x_advance;
    character.mNumber = static_cast<std::uint32_t>(mCharacters.size() - 1);
    character.mGlyph = glyph;
    character.mCode = code;
    if (mRules.movesNext(glyph)) {
        character.mRow = static_cast<std::uint32_t>(mRows.size());
        Row& row = mRows.emplace_back(&character, std::make_unique_for_overwrite<std::int16_t[]>(mRowSize)).second;
        std::fill_n(row.get(), mRowSize, sUnknown);
        character.mKerning = row.get();
    }
    entry->second = &character;
    return &character;
}

/// For one character more, and a row of its own.
bool AdvanceTable::makeRoom() {
    if (mCharacters.size() < mRowSize) {
        return (mRows.size() + 1) * mRowSize <= sMaxPairCount;
    }
    const std::size_t size = 2 * mRowSize;
    if (size > sMaxCharacterCount || (mRows.size() + 1) * size > sMaxPairCount) {
        return false;
    }
    for (auto& [character, row] : mRows) {
        Row larger = std::make_unique_for_overwrite<std::int16_t[]>(size);
        std::fill(std::copy_n(row.get(), mRowSize, larger.get()), larger.get() + size, sUnknown);
        row = std::move(larger);
        character->mKerning = row.get();
    }
    mRowSize = size;
    return true;
}

int AdvanceTable::measureKerning(const Character& first, const Character& second) {
    const std::array<char32_t, 2> text{first.mCode, second.mCode};
    shape({text.data(), text.size()});
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(mBuffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(mBuffer.get(), &count);
    int kerning = sNotAdditive;
    if (!mRules.startsLigature(first.mGlyph, second.mGlyph) && count == 2 && infos[0].codepoint == first.mGlyph &&
        infos[1].codepoint == second.mGlyph && !isShifted(positions[0]) && positions[1].y_offset == 0 &&
        positions[1].y_advance == 0) {
        // Old kerning tables share the kerning out between the first advance and the second glyph's place and advance.
        const int move = positions[0].x_advance + positions[1].x_offset - first.mAdvance;
        const int growth = positions[0].x_advance + positions[1].x_advance - first.mAdvance - second.mAdvance;
        if (move == growth && move > sNotAdditive && move < sUnknown) {
            kerning = move;
        }
    }
    mRows[first.mRow].second[second.mNumber] = static_cast<std::int16_t>(kerning);
    return kerning;
}

void AdvanceTable::shape(std::u32string_view text) {
    hb_buffer_clear_contents(mBuffer.get());
    hb_buffer_set_direction(mBuffer.get(), HB_DIRECTION_LTR);
    hb_buffer_set_script(mBuffer.get(), mScript);
    hb_buffer_add_codepoints(mBuffer.get(), reinterpret_cast<const hb_codepoint_t*>(text.data()),
                             static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
    hb_shape(mFont.getShapingFont(), mBuffer.get(), nullptr, 0);
}

}  // namespace kt::text
