#include "platform/annotation/AdvanceTable_p.h"
#include "platform/annotation/OpenTypeLookups_p.h"

#include <hb-aat.h>
#include <hb-ot.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace kt::text {

namespace {

constexpr hb_tag_t sSubstitutionTable = HB_TAG('G', 'S', 'U', 'B');
constexpr hb_tag_t sPositioningTable = HB_TAG('G', 'P', 'O', 'S');
constexpr std::size_t sMaxCharacterCount = 255;

/// What drawings use beyond Latin-1.
constexpr std::u32string_view sSymbols =
    U"\u2013\u2014\u2018\u2019\u201C\u201D\u2022\u2026\u2032\u2033\u20AC\u2122\u2190\u2191\u2192\u2193\u2194\u2195"
    U"\u2197\u21A7\u2205"
    U"\u2206\u2212\u221A\u221E\u2220\u2225\u2248\u2260\u2261\u2264\u2265\u2300\u2312\u2313\u2316\u232D\u232F\u2330"
    U"\u2332\u2334\u2335"
    U"\u23E4\u23E5\u24B6\u24B8\u24BA\u24BB\u24C1\u24C2\u24C3\u24C5\u24C7\u24C8\u24C9\u24CA\u25A1\u25B3\u25BD\u25CB"
    U"\u25CE"
    U"\u2713\u27C2\u27E8\u27E9";

struct BufferDeleter {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};
using Buffer = std::unique_ptr<hb_buffer_t, BufferDeleter>;

struct SetDeleter {
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
using Set = std::unique_ptr<hb_set_t, SetDeleter>;

Set makeSet() { return Set(hb_set_create()); }

Buffer shapeText(const Font& font, std::u32string_view text) {
    Buffer buffer(hb_buffer_create());
    hb_buffer_set_direction(buffer.get(), HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer.get(), HB_SCRIPT_LATIN);
    hb_buffer_add_codepoints(buffer.get(), reinterpret_cast<const hb_codepoint_t*>(text.data()),
                             static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
    hb_shape(font.getShapingFont(), buffer.get(), nullptr, 0);
    return buffer;
}

bool isShifted(const hb_glyph_position_t& position) {
    return position.x_offset != 0 || position.y_offset != 0 || position.y_advance != 0;
}

/// Finds out which characters of a font keep out of everything that depends on more than two neighbours.
class SimpleCharacterFinder {
public:
    struct Entry {
        char32_t mCharacter;
        hb_codepoint_t mGlyph;
        hb_position_t mAdvance;
    };

    explicit SimpleCharacterFinder(const Font& font) : mFont(font), mFace(font.getFace()), mGlyphs(makeSet()) {
        if (!isOpenTypeOnly()) {
            return;
        }
        collectCandidates();
        const Set substitutions = collectActiveLookups(sSubstitutionTable);
        const Set positionings = collectActiveLookups(sPositioningTable);
        while (removeSubstituted(substitutions.get()) || removePositioned(positionings.get())) {
        }
        std::erase_if(mEntries, [this](const Entry& entry) { return hb_set_has(mGlyphs.get(), entry.mGlyph) == 0; });
        collectLigatureStarts(substitutions.get());
    }

    const std::vector<Entry>& getEntries() const { return mEntries; }
    const std::vector<OpenTypeLookups::GlyphPair>& getLigatureStarts() const { return mLigatureStarts; }

private:
    using Substitution = OpenTypeLookups::Substitution;
    using Positioning = OpenTypeLookups::Positioning;

    bool isOpenTypeOnly() const {
        return hb_aat_layout_has_substitution(mFace) == 0 && hb_aat_layout_has_positioning(mFace) == 0 &&
               hb_aat_layout_has_tracking(mFace) == 0 && hasOnlyKerningPairs(mFace);
    }

    /// Characters that shaping alone leaves as they are.
    void collectCandidates() {
        for (char32_t character = U' '; character < AdvanceTable::sCharacterEnd; ++character) {
            const hb_codepoint_t glyph = AdvanceTable::isCandidate(character) ? mFont.getGlyph(character) : 0;
            if (glyph == 0 || hb_ot_layout_get_glyph_class(mFace, glyph) == HB_OT_LAYOUT_GLYPH_CLASS_MARK ||
                mEntries.size() == sMaxCharacterCount) {
                continue;
            }
            const Buffer shaped = shapeText(mFont, {&character, 1});
            unsigned count = 0;
            const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(shaped.get(), &count);
            const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(shaped.get(), &count);
            if (count == 1 && infos[0].codepoint == glyph && !isShifted(positions[0])) {
                mEntries.push_back({character, glyph, positions[0].x_advance});
                hb_set_add(mGlyphs.get(), glyph);
            }
        }
    }

    /// The lookups that shaping applies to Latin text. Those of fractions are left out: HarfBuzz applies them around a
    /// fraction slash only, which is no candidate.
    Set collectActiveLookups(hb_tag_t table) const {
        hb_segment_properties_t properties = HB_SEGMENT_PROPERTIES_DEFAULT;
        properties.direction = HB_DIRECTION_LTR;
        properties.script = HB_SCRIPT_LATIN;
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

    std::vector<hb_tag_t> getFeatures(hb_tag_t table) const {
        unsigned count = hb_ot_layout_table_get_feature_tags(mFace, table, 0, nullptr, nullptr);
        std::vector<hb_tag_t> features(count);
        hb_ot_layout_table_get_feature_tags(mFace, table, 0, &count, features.data());
        return features;
    }

    struct LookupGlyphs {
        Set mInput = makeSet();
        Set mOutput = makeSet();
    };

    /// The simple glyphs that the lookup acts on and that it makes.
    LookupGlyphs getLookupGlyphs(hb_tag_t table, unsigned lookup) const {
        LookupGlyphs glyphs;
        hb_ot_layout_lookup_collect_glyphs(mFace, table, lookup, nullptr, glyphs.mInput.get(), nullptr,
                                           glyphs.mOutput.get());
        hb_set_intersect(glyphs.mInput.get(), mGlyphs.get());
        hb_set_intersect(glyphs.mOutput.get(), mGlyphs.get());
        return glyphs;
    }

    bool remove(const hb_set_t* glyphs) {
        const unsigned before = hb_set_get_population(mGlyphs.get());
        hb_set_subtract(mGlyphs.get(), glyphs);
        return hb_set_get_population(mGlyphs.get()) != before;
    }

    /// Removes glyphs that a substitution might change within text of simple glyphs; true when there were any.
    /// Substitutions of single glyphs show when the character is shaped alone, ligatures are told by their first two
    /// components.
    bool removeSubstituted(const hb_set_t* lookups) {
        const OpenTypeLookups table(mFace, sSubstitutionTable);
        bool isChanged = false;
        hb_codepoint_t lookup = HB_SET_VALUE_INVALID;
        while (hb_set_next(lookups, &lookup) != 0) {
            const auto type = static_cast<Substitution>(table.getType(lookup));
            const bool isAlone =
                type == Substitution::Single || type == Substitution::Multiple || type == Substitution::Alternate;
            if (isAlone || (type == Substitution::Ligature && !table.skipsLetters(lookup))) {
                continue;
            }
            const LookupGlyphs glyphs = getLookupGlyphs(sSubstitutionTable, lookup);
            if (hb_set_is_empty(glyphs.mInput.get()) == 0) {
                isChanged =
                    remove(canMakeOtherGlyphs(lookup) ? glyphs.mInput.get() : glyphs.mOutput.get()) || isChanged;
            }
        }
        return isChanged;
    }

    /// Whether the lookup can make anything but simple glyphs of simple glyphs.
    bool canMakeOtherGlyphs(unsigned lookup) const {
        const Set lookups = makeSet();
        hb_set_add(lookups.get(), lookup);
        const Set closure(hb_set_copy(mGlyphs.get()));
        hb_ot_layout_lookups_substitute_closure(mFace, lookups.get(), closure.get());
        return hb_set_is_equal(closure.get(), mGlyphs.get()) == 0;
    }

    /// Removes glyphs whose position may depend on more than the next neighbour; true when there were any. Attachment
    /// of marks shows when pairs are shaped.
    bool removePositioned(const hb_set_t* lookups) {
        const OpenTypeLookups table(mFace, sPositioningTable);
        bool isChanged = false;
        hb_codepoint_t lookup = HB_SET_VALUE_INVALID;
        while (hb_set_next(lookups, &lookup) != 0) {
            const auto type = static_cast<Positioning>(table.getType(lookup));
            const bool isMarkAttachment = type == Positioning::MarkToBase || type == Positioning::MarkToLigature ||
                                          type == Positioning::MarkToMark;
            const bool isPairOnly =
                type == Positioning::Pair && !table.skipsLetters(lookup) && !table.positionsSecondGlyph(lookup);
            if (type != Positioning::Single && !isMarkAttachment && !isPairOnly) {
                isChanged = remove(getLookupGlyphs(sPositioningTable, lookup).mInput.get()) || isChanged;
            }
        }
        return isChanged;
    }

    void collectLigatureStarts(const hb_set_t* lookups) {
        const OpenTypeLookups table(mFace, sSubstitutionTable);
        hb_codepoint_t lookup = HB_SET_VALUE_INVALID;
        while (hb_set_next(lookups, &lookup) != 0) {
            if (static_cast<Substitution>(table.getType(lookup)) == Substitution::Ligature) {
                table.appendLigatureStarts(lookup, mLigatureStarts);
            }
        }
    }

    const Font& mFont;
    hb_face_t* mFace;
    Set mGlyphs;
    std::vector<Entry> mEntries;
    std::vector<OpenTypeLookups::GlyphPair> mLigatureStarts;
};

}  // namespace

AdvanceTable::AdvanceTable(const Font& font) : mFont(font) {
    const SimpleCharacterFinder finder(font);
    for (const SimpleCharacterFinder::Entry& entry : finder.getEntries()) {
        mCharacters.push_back(entry.mCharacter);
        mGlyphs.push_back({entry.mGlyph, entry.mAdvance, font.getInkBox(entry.mGlyph)});
    }
    mGlyphCount = mGlyphs.size();
    mKerning = std::make_unique<std::atomic<std::int16_t>[]>(mGlyphCount * mGlyphCount);
    for (std::size_t index = 0; index < mGlyphCount * mGlyphCount; ++index) {
        mKerning[index].store(sUnknown, std::memory_order_relaxed);
    }
    for (const OpenTypeLookups::GlyphPair& pair : finder.getLigatureStarts()) {
        excludePair(pair.mFirst, pair.mSecond);
    }
}

bool AdvanceTable::isCandidate(char32_t character) {
    const bool isLatin1 = (character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character <= 0xFF);
    return (isLatin1 && character != 0xAD) || sSymbols.find(character) != std::u32string_view::npos;
}

std::optional<AdvanceTable::Index> AdvanceTable::findIndex(char32_t character) const {
    const auto found = std::ranges::lower_bound(mCharacters, character);
    if (found == mCharacters.end() || *found != character) {
        return std::nullopt;
    }
    return static_cast<Index>(found - mCharacters.begin());
}

void AdvanceTable::excludePair(hb_codepoint_t first, hb_codepoint_t second) {
    // Several characters may share a glyph.
    for (std::size_t i = 0; i < mGlyphs.size(); ++i) {
        for (std::size_t j = 0; mGlyphs[i].mGlyph == first && j < mGlyphs.size(); ++j) {
            if (mGlyphs[j].mGlyph == second) {
                mKerning[i * mGlyphCount + j].store(sNotAdditive, std::memory_order_relaxed);
            }
        }
    }
}

int AdvanceTable::measureKerning(Index first, Index second) const {
    const std::array<char32_t, 2> text{mCharacters[first], mCharacters[second]};
    const Buffer shaped = shapeText(mFont, {text.data(), text.size()});
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(shaped.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(shaped.get(), &count);
    int kerning = sNotAdditive;
    if (count == 2 && infos[0].codepoint == mGlyphs[first].mGlyph && infos[1].codepoint == mGlyphs[second].mGlyph &&
        !isShifted(positions[0]) && positions[1].y_offset == 0 && positions[1].y_advance == 0) {
        // Old kerning tables share the kerning out between the first advance and the second glyph's place and advance.
        const int move = positions[0].x_advance + positions[1].x_offset - mGlyphs[first].mAdvance;
        const int growth =
            positions[0].x_advance + positions[1].x_advance - mGlyphs[first].mAdvance - mGlyphs[second].mAdvance;
        if (move == growth && move > sNotAdditive && move < sUnknown) {
            kerning = move;
        }
    }
    mKerning[first * mGlyphCount + second].store(static_cast<std::int16_t>(kerning), std::memory_order_relaxed);
    return kerning;
}

}  // namespace kt::text
