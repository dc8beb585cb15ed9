#include "platform/annotation/Characters_p.h"
#include "platform/annotation/RunGlyphs_p.h"
#include "platform/annotation/StyleFonts_p.h"
#include "platform/encoding/Utf8.h"

#include <algorithm>

namespace kt::text {

StyleFonts::StyleFonts(std::shared_ptr<const FontStack> fonts)
    : mStack(std::move(fonts)),
      mMainFont(mStack->getMainFont()),
      mSimpleGlyphs(std::make_shared<SimpleGlyphs>(mStack)) {}

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
    if (mSlots.empty()) {
        mSlots.resize(AdvanceTable::sCharacterEnd);
    }
    const AdvanceTable* table = nullptr;
    InkBox ink;
    std::int64_t pen = 0;
    Slot last;
    for (std::size_t position = 0; position < text.size();) {
        // The position itself stays in a register.
        std::size_t end = position + 1;
        char32_t character = static_cast<unsigned char>(text[position]);
        if (character >= 0x80) {
            const encoding::Utf8Character decoded = encoding::decodeUtf8(text.substr(position));
            end = position + decoded.mLength;
            character = decoded.mCode;
        }
        position = end;
        if (character >= AdvanceTable::sCharacterEnd) {
            return false;
        }
        Slot slot = mSlots[character];
        if (slot.mTable >= sNoTable) [[unlikely]] {
            slot = slot.mTable == sUnknownTable ? findSlot(character) : slot;
            if (slot.mTable == sNoTable) {
                return false;
            }
        }
        if (slot.mTable == last.mTable) [[likely]] {
            const int kerning = table->getKerning(last.mIndex, slot.mIndex);
            if (kerning == AdvanceTable::sNotAdditive) {
                return false;
            }
            pen += kerning;
        } else {
            if (table != nullptr) {
                addPiece(*mTables[last.mTable].mFont, pen, ink, extent);
            }
            table = mTables[slot.mTable].mTable;
            ink = {};
            pen = 0;
        }
        const AdvanceTable::Glyph& glyph = table->getGlyph(slot.mIndex);
        ink.addBox(glyph.mInk.makeMoved(static_cast<double>(pen), 0.0));
        pen += glyph.mAdvance;
        last = slot;
    }
    if (table != nullptr) {
        addPiece(*mTables[last.mTable].mFont, pen, ink, extent);
    }
    return true;
}

void StyleFonts::addPiece(const Font& font, std::int64_t advance, InkBox ink, RunExtent& extent) const {
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

StyleFonts::Slot StyleFonts::findSlot(char32_t character) {
    Slot& slot = mSlots[character];
    slot.mTable = sNoTable;
    const Font* font = AdvanceTable::isCandidate(character) ? findFont({&character, 1}) : nullptr;
    if (font == nullptr) {
        return slot;
    }
    if (const auto index = font->getAdvanceTable().findIndex(character)) {
        slot = {findTable(*font), *index};
    }
    return slot;
}

std::uint8_t StyleFonts::findTable(const Font& font) {
    const auto known = std::ranges::find(mTables, &font, &TableUse::mFont);
    const auto position = known - mTables.begin();
    if (known == mTables.end()) {
        if (mTables.size() == sNoTable) {
            return sNoTable;
        }
        mTables.push_back({&font, &font.getAdvanceTable()});
    }
    return static_cast<std::uint8_t>(position);
}

}  // namespace kt::text
