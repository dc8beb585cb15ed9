#include "platform/annotation/RunGlyphs_p.h"
#include "platform/annotation/RunShaper_p.h"
#include "platform/annotation/StyleFonts_p.h"
#include "platform/encoding/Utf8.h"

#include <algorithm>

namespace kt::text {

namespace {

constexpr std::size_t sCharacterEnd = 0x110000;
/// Blocks of characters that are remembered; half a megabyte. Characters of more blocks are shaped.
constexpr std::size_t sMaxPageCount = 256;

}  // namespace

const StyleFonts::Page StyleFonts::sUnknownPage{};
const StyleFonts::Character StyleFonts::sNotSimple{};

StyleFonts::ScriptCharacters::ScriptCharacters(hb_script_t script)
    : mScript(script), mPages(sCharacterEnd / sPageSize, &sUnknownPage) {}

StyleFonts::StyleFonts(std::shared_ptr<const FontStack> fonts)
    : mStack(std::move(fonts)),
      mMainFont(mStack->getMainFont()),
      mSimpleGlyphs(std::make_shared<SimpleGlyphs>(mStack)) {
    mScripts.push_back(std::make_unique<ScriptCharacters>(HB_SCRIPT_LATIN));
}

StyleFonts::~StyleFonts() = default;

const Font* StyleFonts::findFont(std::u32string_view cluster) {
    if (cluster.size() > 1) {
        return mStack->findFont(cluster);
    }
    const auto [entry, isNew] = mFontOfCharacter.try_emplace(cluster.front(), nullptr);
    if (isNew) {
        entry->second = mStack->findFont(cluster);
    }
    return entry->second;
}

bool StyleFonts::measureSimple(std::string_view text, RunExtent& extent) {
    ScriptCharacters& latin = *mScripts.front();
    const Character* last = nullptr;
    AdvanceTable* table = nullptr;
    InkBox ink;
    std::int64_t pen = 0;
    for (std::size_t position = 0; position < text.size();) {
        // The position itself stays in a register.
        std::size_t end = position + 1;
        char32_t code = static_cast<unsigned char>(text[position]);
        if (code >= 0x80) {
            const encoding::Utf8Character decoded = encoding::decodeUtf8(text.substr(position));
            end = position + decoded.mLength;
            code = decoded.mCode;
        }
        position = end;
        const Character& character = getCharacter(latin, code);
        if (character.mTable == table && last != nullptr) [[likely]] {
            const int kerning = table->getKerning(*last, character);
            if (kerning == AdvanceTable::sNotAdditive) {
                return false;
            }
            pen += kerning;
        } else {
            if (character.mTable == nullptr) {
                return false;
            }
            if (last != nullptr) {
                addPiece(table->getFont(), pen, ink, extent);
            }
            table = character.mTable;
            ink = {};
            pen = 0;
        }
        ink.addBox(character.mInk.makeMoved(static_cast<double>(pen), 0.0));
        pen += character.mAdvance;
        last = &character;
    }
    if (last != nullptr) {
        addPiece(table->getFont(), pen, ink, extent);
    }
    return true;
}

bool StyleFonts::placeSimple(std::u32string_view text, hb_script_t script, ShapedRun& run) {
    ScriptCharacters* characters = findScript(script);
    if (characters == nullptr) {
        return false;
    }
    run.mAdvance = 0;
    run.mInk = {};
    run.mGlyphs.clear();
    const Character* last = nullptr;
    for (const char32_t code : text) {
        const Character& character = getCharacter(*characters, code);
        if (character.mTable == nullptr) {
            return false;
        }
        const int kerning = last != nullptr ? character.mTable->getKerning(*last, character) : 0;
        if (kerning == AdvanceTable::sNotAdditive) {
            return false;
        }
        run.mAdvance += kerning;
        run.mInk.addBox(character.mInk.makeMoved(static_cast<double>(run.mAdvance), 0.0));
        run.mGlyphs.push_back({character.mGlyph, run.mAdvance, 0, 0});
        run.mAdvance += character.mAdvance;
        last = &character;
    }
    return true;
}

void StyleFonts::addPiece(const Font& font, std::int64_t advance, const InkBox& ink, RunExtent& extent) const {
    const double unitsPerEm = font.getUnitsPerEm();
    if (!ink.isEmpty()) {
        const double bottom = ink.mBottom / unitsPerEm;
        const double top = ink.mTop / unitsPerEm;
        extent.mInkLeft = std::min(extent.mInkLeft, extent.mAdvance + ink.mLeft / unitsPerEm);
        extent.mInkRight = std::max(extent.mInkRight, extent.mAdvance + ink.mRight / unitsPerEm);
        extent.mInkBottom = std::min(extent.mInkBottom, bottom);
        extent.mInkTop = std::max(extent.mInkTop, top);
        if (&font != mMainFont) {
            extent.mSubstituteBottom = std::min(extent.mSubstituteBottom, bottom);
            extent.mSubstituteTop = std::max(extent.mSubstituteTop, top);
        }
    }
    extent.mAdvance += static_cast<double>(advance) / unitsPerEm;
}

/// Meets a character for the first time.
const StyleFonts::Character& StyleFonts::findCharacter(ScriptCharacters& characters, char32_t code) {
    const Page*& page = characters.mPages[code / sPageSize];
    if (page == &sUnknownPage) {
        if (mPages.size() == sMaxPageCount) {
            return sNotSimple;
        }
        page = mPages.emplace_back(std::make_unique<Page>()).get();
    }
    const Font* font = SimpleGlyphRules::isCandidate(code, characters.mScript) ? findFont({&code, 1}) : nullptr;
    const Character* found = font != nullptr ? findTable(characters, *font).find(code) : nullptr;
    // All pages but the one of unknown characters are this object's own.
    const Character*& slot = (*const_cast<Page*>(page))[code % sPageSize];
    slot = found != nullptr ? found : &sNotSimple;
    return *slot;
}

StyleFonts::ScriptCharacters* StyleFonts::findScript(hb_script_t script) {
    const auto known = std::ranges::find(mScripts, script, &ScriptCharacters::mScript);
    if (known != mScripts.end()) {
        return known->get();
    }
    if (!SimpleGlyphRules::isSimpleScript(script)) {
        return nullptr;
    }
    return mScripts.emplace_back(std::make_unique<ScriptCharacters>(script)).get();
}

AdvanceTable& StyleFonts::findTable(ScriptCharacters& characters, const Font& font) {
    for (AdvanceTable& table : characters.mTables) {
        if (&table.getFont() == &font) {
            return table;
        }
    }
    return characters.mTables.emplace_back(font, characters.mScript);
}

}  // namespace kt::text
