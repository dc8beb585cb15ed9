#include "platform/annotation/Characters_p.h"
#include "platform/annotation/RunGlyphs_p.h"
#include "platform/annotation/RunShaper_p.h"
#include "platform/svg/Text.h"

namespace kt::text {

namespace {

void appendGlyph(const PlacedGlyphs::Glyph& glyph, float size, std::vector<svg::PlacedGlyph>& glyphs) {
    const svg::Path* outline = glyph.mFont->getOutline(glyph.mGlyph);
    if (outline != nullptr || glyph.mMissing != 0) {
        const float scale = size / static_cast<float>(glyph.mFont->getUnitsPerEm());
        glyphs.push_back({outline, glyph.mPosition, scale, glyph.mMissing});
    }
}

}  // namespace

void SimpleGlyphs::appendGlyphs(const svg::Text& text, std::vector<svg::PlacedGlyph>& glyphs) const {
    std::u32string line;
    appendShownCharacters(text.getText(), line);
    RunShaper shaper;
    double pen = 0.0;
    for (std::size_t start = 0; start < line.size();) {
        const Font* font = mFonts->findFont(std::u32string_view(line).substr(start, 1));
        std::size_t end = start + 1;
        while (end < line.size() && mFonts->findFont(std::u32string_view(line).substr(end, 1)) == font) {
            ++end;
        }
        const ShapedRun& run = shaper.shape({font, HB_SCRIPT_LATIN, false, line, start, end - start});
        const double scale = static_cast<double>(text.getSize()) / font->getUnitsPerEm();
        for (const ShapedGlyph& glyph : run.mGlyphs) {
            const Wm4::Vector2<float> position(static_cast<float>(pen + static_cast<double>(glyph.mX) * scale),
                                               static_cast<float>(-static_cast<double>(glyph.mY) * scale));
            appendGlyph({font, glyph.mGlyph, glyph.mMissing, position}, text.getSize(), glyphs);
        }
        pen += static_cast<double>(run.mAdvance) * scale;
        start = end;
    }
}

void PlacedGlyphs::appendGlyphs(const svg::Text& text, std::vector<svg::PlacedGlyph>& glyphs) const {
    for (Glyph glyph : mGlyphs) {
        glyph.mPosition = glyph.mPosition * text.getSize();
        appendGlyph(glyph, text.getSize(), glyphs);
    }
}

}  // namespace kt::text
