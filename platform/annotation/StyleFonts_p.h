#pragma once

/// @file
/// Fonts of one style, as one converter sees them.

#include "platform/annotation/AdvanceTable_p.h"
#include "platform/annotation/FontStack_p.h"
#include "platform/svg/GlyphSource.h"

#include <array>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kt::text {

struct ShapedRun;

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
    StyleFonts(const StyleFonts&) = delete;
    StyleFonts& operator=(const StyleFonts&) = delete;
    ~StyleFonts();

    const std::shared_ptr<const FontStack>& getStack() const { return mStack; }
    /// Remembers that texts are laid out with these fonts.
    void markUse() { mIsUsed = true; }
    /// Whether they were since the last call.
    bool takeUse() { return std::exchange(mIsUsed, false); }
    /// The style's own font; null when the system has none.
    const Font* getMainFont() const { return mMainFont; }
    /// The font for a cluster, see FontStack::findFont.
    const Font* findFont(std::u32string_view cluster);
    /// Outlines of texts that measureSimple has measured.
    const std::shared_ptr<const svg::GlyphSource>& getSimpleGlyphs() const { return mSimpleGlyphs; }

    /// Measures a text of Latin script and symbols from tables, exactly as shaping would; false when the text is not
    /// valid or not simple enough.
    bool measureSimple(std::string_view text, RunExtent& extent);
    /// Does the same as shaping to a text from left to right that is all of one font and script; false when the text is
    /// not simple enough.
    bool placeSimple(std::u32string_view text, hb_script_t script, ShapedRun& run);

    /// Adds a piece in one font to an extent.
    void addPiece(const Font& font, std::int64_t advance, const InkBox& ink, RunExtent& extent) const;

private:
    using Character = AdvanceTable::Character;
    using Page = std::array<const Character*, 256>;

    /// The simple characters met in text of one script.
    struct ScriptCharacters {
        explicit ScriptCharacters(hb_script_t script);

        hb_script_t mScript;
        std::vector<const Page*> mPages;  ///< by character; null: not met yet
        std::deque<AdvanceTable> mTables;
    };

    const Character& getCharacter(ScriptCharacters& characters, char32_t code) {
        const Character* known = (*characters.mPages[code / sPageSize])[code % sPageSize];
        return known != nullptr ? *known : findCharacter(characters, code);
    }
    const Character& findCharacter(ScriptCharacters& characters, char32_t code);
    ScriptCharacters* findScript(hb_script_t script);
    AdvanceTable& findTable(ScriptCharacters& characters, const Font& font);

    static constexpr std::size_t sPageSize = std::tuple_size_v<Page>;
    static const Page sUnknownPage;
    static const Character sNotSimple;

    std::shared_ptr<const FontStack> mStack;
    const Font* mMainFont;
    std::shared_ptr<const svg::GlyphSource> mSimpleGlyphs;
    std::unordered_map<char32_t, const Font*> mFontOfCharacter;
    std::vector<std::unique_ptr<ScriptCharacters>> mScripts;  ///< Latin first
    std::vector<std::unique_ptr<Page>> mPages;
    bool mIsUsed = false;
};

}  // namespace kt::text
