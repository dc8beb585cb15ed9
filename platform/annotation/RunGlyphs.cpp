#include "platform/annotation/Characters_p.h"
#include "platform/annotation/RunGlyphs_p.h"
#include "platform/annotation/RunShaper_p.h"
#include "platform/svg/Text.h"

namespace kt::text {

namespace {

void appendGlyph(const Font& font, hb_codepoint_t glyph, const Wm4::Vector2<float>& position, float size,
                 std::vector<svg::PlacedGlyph>& glyphs) {
    constexpr hb_codepoint_t sMissingGlyph = 0;
    const svg::Path* outline = font.getOutline(glyph);
    if (outline != nullptr || glyph == sMissingGlyph) {
        const float scale = size / static_cast<float>(font.getUnitsPerEm());
        glyphs.push_back({outline, position, scale, glyph == sMissingGlyph});
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
            appendGlyph(*font, glyph.mGlyph, position, text.getSize(), glyphs);
        }
        pen += static_cast<double>(run.mAdvance) * scale;
        start = end;
    }
}

void PlacedGlyphs::appendGlyphs(const svg::Text& text, std::vector<svg::PlacedGlyph>& glyphs) const {
    for (const Glyph& glyph : mGlyphs) {
        appendGlyph(*glyph.mFont, glyph.mGlyph, glyph.mPosition * text.getSize(), text.getSize(), glyphs);
    }
}

}  // namespace kt::text
