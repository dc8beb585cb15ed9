#include "platform/annotation/Font_p.h"
#include "platform/annotation/LineLevels_p.h"
#include "platform/annotation/SimpleGlyphRules_p.h"
#include "platform/encoding/Utf8.h"

#include <hb-aat.h>
#include <hb-ot.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <tuple>

namespace kt::text {

namespace {

constexpr hb_tag_t sSubstitutionTable = HB_TAG('G', 'S', 'U', 'B');
constexpr hb_tag_t sPositioningTable = HB_TAG('G', 'P', 'O', 'S');

using Substitution = OpenTypeLookups::Substitution;
using Positioning = OpenTypeLookups::Positioning;

bool isPairLess(const OpenTypeLookups::GlyphPair& a, const OpenTypeLookups::GlyphPair& b) {
    return std::tie(a.mFirst, a.mSecond) < std::tie(b.mFirst, b.mSecond);
}

template <typename Use>
void forEach(const hb_set_t* set, Use use) {
    hb_codepoint_t value = HB_SET_VALUE_INVALID;
    while (hb_set_next(set, &value) != 0) {
        use(value);
    }
}

/// Letters that combine to syllables.
bool isConjoining(UChar32 character) {
    const auto type = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
    return type == U_HST_LEADING_JAMO || type == U_HST_VOWEL_JAMO || type == U_HST_TRAILING_JAMO;
}

/// Flags are made of two of them; skin colours go with what stands before.
bool isEmojiPart(UChar32 character) {
    return (character >= 0x1F1E6 && character <= 0x1F1FF) || (character >= 0x1F3FB && character <= 0x1F3FF);
}

/// Substitutions of single glyphs show when the character is shaped alone, ligatures are told by their first two
/// components.
bool isPairSubstitution(const OpenTypeLookups& table, unsigned lookup) {
    const auto type = static_cast<Substitution>(table.getType(lookup));
    return type == Substitution::Single || type == Substitution::Multiple || type == Substitution::Alternate ||
           (type == Substitution::Ligature && !table.skipsLetters(lookup));
}

/// Attachment of marks does not concern text without marks.
bool isPairPositioning(const OpenTypeLookups& table, unsigned lookup) {
    const auto type = static_cast<Positioning>(table.getType(lookup));
    const bool isMarkAttachment =
        type == Positioning::MarkToBase || type == Positioning::MarkToLigature || type == Positioning::MarkToMark;
    return type == Positioning::Single || isMarkAttachment ||
           (type == Positioning::Pair && !table.skipsLetters(lookup) && !table.positionsSecondGlyph(lookup));
}

}  // namespace

bool SimpleGlyphRules::isSimpleScript(hb_script_t script) {
    switch (script) {
        case HB_SCRIPT_LATIN:
        case HB_SCRIPT_GREEK:
        case HB_SCRIPT_CYRILLIC:
        case HB_SCRIPT_HAN:
        case HB_SCRIPT_HIRAGANA:
        case HB_SCRIPT_KATAKANA:
        case HB_SCRIPT_HANGUL:
            return true;
        default:
            return false;
    }
}

bool SimpleGlyphRules::isCandidate(char32_t character, hb_script_t script) {
    constexpr char32_t sFractionSlash = 0x2044;
    if (character < 0x7F) {
        return character >= 0x20;
    }
    const auto codePoint = static_cast<UChar32>(character);
    constexpr std::uint32_t excluded = U_GC_C_MASK | U_GC_M_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;
    if ((U_GET_GC_MASK(codePoint) & excluded) != 0 || character == sFractionSlash ||
        character == encoding::sReplacementCharacter || LineLevels::isBidiCharacter(character) ||
        u_hasBinaryProperty(codePoint, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0 || isConjoining(codePoint) ||
        isEmojiPart(codePoint)) {
        return false;
    }
    const hb_script_t own = hb_unicode_script(hb_unicode_funcs_get_default(), character);
    return own == script || own == HB_SCRIPT_COMMON;
}

SimpleGlyphRules::SimpleGlyphRules(const Font& font, hb_script_t script)
    : mFace(font.getFace()), mScript(script), mGlyphs(makeSet()), mMovingGlyphs(makeSet()) {
    mIsUsable = isSimpleScript(script) && isOpenTypeOnly();
    if (!mIsUsable) {
        return;
    }
    const OpenTypeLookups substitutionTable(mFace, sSubstitutionTable);
    const OpenTypeLookups positioningTable(mFace, sPositioningTable);
    const Set substitutions = collectActiveLookups(sSubstitutionTable);
    const Set positionings = collectActiveLookups(sPositioningTable);
    const Set contexts = makeSet();
    forEach(substitutions.get(), [&](hb_codepoint_t lookup) {
        if (!isPairSubstitution(substitutionTable, lookup)) {
            hb_set_add(contexts.get(), lookup);
        }
    });
    const Set movingContexts = makeSet();
    forEach(positionings.get(), [&](hb_codepoint_t lookup) {
        if (!isPairPositioning(positioningTable, lookup)) {
            hb_set_add(movingContexts.get(), lookup);
        }
    });
    mHasContexts = hb_set_is_empty(contexts.get()) == 0 || hb_set_is_empty(movingContexts.get()) == 0;
    if (mHasContexts) {
        collectGlyphs(font);
        while (removeSubstituted(contexts.get()) || removePositioned(movingContexts.get())) {
        }
    }
    collectPairs(substitutionTable, substitutions.get(), positioningTable, positionings.get());
}

bool SimpleGlyphRules::isOpenTypeOnly() const {
    return hb_aat_layout_has_substitution(mFace) == 0 && hb_aat_layout_has_positioning(mFace) == 0 &&
           hb_aat_layout_has_tracking(mFace) == 0 && hasOnlyKerningPairs(mFace);
}

/// All glyphs of characters but marks: more than text of the script can hold, but quickly found.
void SimpleGlyphRules::collectGlyphs(const Font& font) {
    const Set characters = makeSet();
    hb_face_collect_unicodes(mFace, characters.get());
    forEach(characters.get(), [&](hb_codepoint_t character) { hb_set_add(mGlyphs.get(), font.getGlyph(character)); });
    const Set marks = makeSet();
    hb_ot_layout_get_glyphs_in_class(mFace, HB_OT_LAYOUT_GLYPH_CLASS_MARK, marks.get());
    hb_set_subtract(mGlyphs.get(), marks.get());
}

bool SimpleGlyphRules::isSimple(hb_codepoint_t glyph) const {
    return mHasContexts ? hb_set_has(mGlyphs.get(), glyph) != 0
                        : mIsUsable && hb_ot_layout_get_glyph_class(mFace, glyph) != HB_OT_LAYOUT_GLYPH_CLASS_MARK;
}

/// The lookups that shaping applies to text of the script. Those of fractions are left out: HarfBuzz applies them
/// around a fraction slash only, which is no candidate.
SimpleGlyphRules::Set SimpleGlyphRules::collectActiveLookups(hb_tag_t table) const {
    hb_segment_properties_t properties = HB_SEGMENT_PROPERTIES_DEFAULT;
    properties.direction = HB_DIRECTION_LTR;
    properties.script = mScript;
    hb_shape_plan_t* plan = hb_shape_plan_create_cached(mFace, &properties, nullptr, 0, nullptr);
    Set lookups = makeSet();
    hb_ot_shape_plan_collect_lookups(plan, table, lookups.get());
    hb_shape_plan_destroy(plan);

    std::vector<hb_tag_t> features = getFeatures(table);
    std::erase_if(features, [](hb_tag_t feature) {
        return feature == HB_TAG('f', 'r', 'a', 'c') || feature == HB_TAG('n', 'u', 'm', 'r') ||
               feature == HB_TAG('d', 'n', 'o', 'm');
    });
    features.push_back(HB_TAG_NONE);
    const Set withoutFractions = makeSet();
    hb_ot_layout_collect_lookups(mFace, table, nullptr, nullptr, features.data(), withoutFractions.get());
    hb_set_intersect(lookups.get(), withoutFractions.get());
    return lookups;
}

std::vector<hb_tag_t> SimpleGlyphRules::getFeatures(hb_tag_t table) const {
    unsigned count = hb_ot_layout_table_get_feature_tags(mFace, table, 0, nullptr, nullptr);
    std::vector<hb_tag_t> features(count);
    hb_ot_layout_table_get_feature_tags(mFace, table, 0, &count, features.data());
    return features;
}

/// The simple glyphs that the lookup acts on and that it makes.
SimpleGlyphRules::LookupGlyphs SimpleGlyphRules::getLookupGlyphs(hb_tag_t table, unsigned lookup) const {
    LookupGlyphs glyphs{makeSet(), makeSet()};
    hb_ot_layout_lookup_collect_glyphs(mFace, table, lookup, nullptr, glyphs.mInput.get(), nullptr,
                                       glyphs.mOutput.get());
    hb_set_intersect(glyphs.mInput.get(), mGlyphs.get());
    hb_set_intersect(glyphs.mOutput.get(), mGlyphs.get());
    return glyphs;
}

bool SimpleGlyphRules::remove(const hb_set_t* glyphs) {
    const unsigned before = hb_set_get_population(mGlyphs.get());
    hb_set_subtract(mGlyphs.get(), glyphs);
    return hb_set_get_population(mGlyphs.get()) != before;
}

/// Removes glyphs that a substitution might change within text of simple glyphs; true when there were any.
bool SimpleGlyphRules::removeSubstituted(const hb_set_t* lookups) {
    bool isChanged = false;
    forEach(lookups, [&](hb_codepoint_t lookup) {
        const LookupGlyphs glyphs = getLookupGlyphs(sSubstitutionTable, lookup);
        if (hb_set_is_empty(glyphs.mInput.get()) == 0) {
            isChanged = remove(canMakeOtherGlyphs(lookup) ? glyphs.mInput.get() : glyphs.mOutput.get()) || isChanged;
        }
    });
    return isChanged;
}

/// Whether the lookup can make anything but simple glyphs of simple glyphs.
bool SimpleGlyphRules::canMakeOtherGlyphs(unsigned lookup) const {
    const Set lookups = makeSet();
    hb_set_add(lookups.get(), lookup);
    const Set closure(hb_set_copy(mGlyphs.get()));
    hb_ot_layout_lookups_substitute_closure(mFace, lookups.get(), closure.get());
    return hb_set_is_equal(closure.get(), mGlyphs.get()) == 0;
}

/// Removes glyphs whose position may depend on more than the next neighbour; true when there were any.
bool SimpleGlyphRules::removePositioned(const hb_set_t* lookups) {
    bool isChanged = false;
    forEach(lookups, [&](hb_codepoint_t lookup) {
        isChanged = remove(getLookupGlyphs(sPositioningTable, lookup).mInput.get()) || isChanged;
    });
    return isChanged;
}

void SimpleGlyphRules::collectPairs(const OpenTypeLookups& substitutionTable, const hb_set_t* substitutions,
                                    const OpenTypeLookups& positioningTable, const hb_set_t* positionings) {
    forEach(substitutions, [&](hb_codepoint_t lookup) {
        if (static_cast<Substitution>(substitutionTable.getType(lookup)) == Substitution::Ligature) {
            substitutionTable.appendLigatureStarts(lookup, mLigatureStarts);
        }
    });
    std::erase_if(mLigatureStarts, [this](const OpenTypeLookups::GlyphPair& pair) {
        return !isSimple(pair.mFirst) || !isSimple(pair.mSecond);
    });
    std::ranges::sort(mLigatureStarts, isPairLess);
    for (const OpenTypeLookups::GlyphPair& pair : mLigatureStarts) {
        hb_set_add(mMovingGlyphs.get(), pair.mFirst);
    }
    std::vector<hb_codepoint_t> firsts;
    forEach(positionings, [&](hb_codepoint_t lookup) {
        if (static_cast<Positioning>(positioningTable.getType(lookup)) == Positioning::Pair) {
            positioningTable.appendPairFirsts(lookup, firsts);
        }
    });
    for (const hb_codepoint_t glyph : firsts) {
        hb_set_add(mMovingGlyphs.get(), glyph);
    }
    hb_blob_t* oldKerning = hb_face_reference_table(mFace, HB_TAG('k', 'e', 'r', 'n'));
    mMovesNextAlways = hb_blob_get_length(oldKerning) != 0;
    hb_blob_destroy(oldKerning);
}

bool SimpleGlyphRules::startsLigature(hb_codepoint_t first, hb_codepoint_t second) const {
    return std::ranges::binary_search(mLigatureStarts, OpenTypeLookups::GlyphPair{first, second}, isPairLess);
}

}  // namespace kt::text
