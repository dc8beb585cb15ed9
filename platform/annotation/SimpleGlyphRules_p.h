#pragma once

/// @file
/// Which glyphs can be measured one by one.

#include "platform/annotation/OpenTypeLookups_p.h"

#include <hb.h>

#include <memory>
#include <vector>

namespace kt::text {

class Font;

/// What a font's layout tables do to left-to-right text of one script: which glyphs keep out of everything that depends
/// on more than two neighbours, and which pairs of them need a look. Immutable.
class SimpleGlyphRules {
public:
    SimpleGlyphRules(const Font& font, hb_script_t script);

    /// Whether text of the script can hold simple characters at all.
    static bool isSimpleScript(hb_script_t script);
    /// Whether the character stands for itself in text of the script: neither joins with neighbours nor changes the
    /// direction, and is shown as it is.
    static bool isCandidate(char32_t character, hb_script_t script);

    /// Whether text of such glyphs, each of which stays as it is when shaped alone, is the sum of what shaping does to
    /// each glyph and to each pair of neighbours.
    bool isSimple(hb_codepoint_t glyph) const;
    /// Whether a glyph may stand closer to or farther from the one before it when that is this one.
    bool movesNext(hb_codepoint_t glyph) const {
        return mMovesNextAlways || hb_set_has(mMovingGlyphs.get(), glyph) != 0;
    }
    /// Whether a ligature begins with these two.
    bool startsLigature(hb_codepoint_t first, hb_codepoint_t second) const;

private:
    struct SetDeleter {
        void operator()(hb_set_t* set) const { hb_set_destroy(set); }
    };
    using Set = std::unique_ptr<hb_set_t, SetDeleter>;
    struct LookupGlyphs {
        Set mInput;
        Set mOutput;
    };

    static Set makeSet() { return Set(hb_set_create()); }
    bool isOpenTypeOnly() const;
    void collectGlyphs(const Font& font);
    Set collectActiveLookups(hb_tag_t table) const;
    std::vector<hb_tag_t> getFeatures(hb_tag_t table) const;
    LookupGlyphs getLookupGlyphs(hb_tag_t table, unsigned lookup) const;
    bool remove(const hb_set_t* glyphs);
    bool removeSubstituted(const hb_set_t* lookups);
    bool canMakeOtherGlyphs(unsigned lookup) const;
    bool removePositioned(const hb_set_t* lookups);
    void collectPairs(const OpenTypeLookups& substitutionTable, const hb_set_t* substitutions,
                      const OpenTypeLookups& positioningTable, const hb_set_t* positionings);

    hb_face_t* mFace;
    hb_script_t mScript;
    bool mIsUsable = false;
    bool mHasContexts = false;  ///< lookups that see more than two neighbours
    Set mGlyphs;                ///< that keep out of these
    Set mMovingGlyphs;
    bool mMovesNextAlways = false;
    std::vector<OpenTypeLookups::GlyphPair> mLigatureStarts;  ///< sorted
};

}  // namespace kt::text
