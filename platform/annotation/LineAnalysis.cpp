#include "platform/annotation/LineAnalysis_p.h"

#include <fribidi.h>

#include <algorithm>
#include <utility>

namespace kt::text {

namespace {

constexpr char32_t sJoiner = 0x200D;
/// Twice what any writing needs. Shaping takes the square of a cluster's length, so that no text may make it longer.
constexpr std::size_t sMaxClusterLength = 64;

bool isSharedScript(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
}

bool isExtender(char32_t character) {
    if (character < 0x300) {
        return false;
    }
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), character)) {
        case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
        case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
        case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
            return true;
        default:
            return character == sJoiner || character == 0x200C;
    }
}

}  // namespace

bool isBidiCharacter(char32_t character) {
    if (character < 0x590) {
        return false;
    }
    constexpr std::pair<char32_t, char32_t> sRanges[] = {
        {0x590, 0x8FF},   {0x200E, 0x200F}, {0x202A, 0x202E},   {0x2066, 0x2069},
        {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFF}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF},
    };
    return std::ranges::any_of(
        sRanges, [character](const auto& range) { return character >= range.first && character <= range.second; });
}

bool findLevels(std::u32string_view line, LineLevels& levels) {
    levels.mIsRightToLeft = false;
    levels.mLevels.assign(line.size(), 0);
    if (std::ranges::none_of(line, isBidiCharacter)) {
        return true;
    }
    const auto* characters = reinterpret_cast<const FriBidiChar*>(line.data());
    const auto length = static_cast<FriBidiStrIndex>(line.size());
    std::vector<FriBidiCharType> types(line.size());
    std::vector<FriBidiBracketType> brackets(line.size());
    fribidi_get_bidi_types(characters, length, types.data());
    fribidi_get_bracket_types(characters, length, types.data(), brackets.data());
    FriBidiParType direction = FRIBIDI_PAR_ON;
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &direction, levels.mLevels.data()) ==
        0) {
        return false;
    }
    levels.mIsRightToLeft = FRIBIDI_IS_RTL(direction) != 0;
    // Blanks at the line's end belong to the line, not to the text before them.
    return fribidi_reorder_line(FRIBIDI_FLAGS_DEFAULT, types.data(), length, 0, direction, levels.mLevels.data(),
                                nullptr, nullptr) != 0;
}

void findScripts(std::u32string_view line, std::vector<hb_script_t>& scripts) {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    scripts.resize(line.size());
    hb_script_t current = HB_SCRIPT_INVALID;
    std::size_t undecidedCount = 0;
    for (std::size_t index = 0; index < line.size(); ++index) {
        if (const hb_script_t script = hb_unicode_script(unicode, line[index]); !isSharedScript(script)) {
            current = script;
        }
        scripts[index] = current;
        undecidedCount += current == HB_SCRIPT_INVALID ? 1U : 0U;
    }
    const hb_script_t first = undecidedCount < line.size() ? scripts[undecidedCount] : HB_SCRIPT_LATIN;
    std::fill_n(scripts.begin(), undecidedCount, first);
}

bool startsCluster(std::u32string_view line, std::size_t position) { return !isExtender(line[position]); }

std::size_t getClusterLength(std::u32string_view line, std::size_t start) {
    std::size_t end = start + 1;
    const std::size_t limit = std::min(line.size(), start + sMaxClusterLength);
    while (end < limit && (isExtender(line[end]) || (line[end - 1] == sJoiner && line[end] >= 0x2000))) {
        ++end;
    }
    return end - start;
}

}  // namespace kt::text
