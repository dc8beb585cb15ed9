#include "platform/annotation/LineAnalysis_p.h"

#include <algorithm>

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
