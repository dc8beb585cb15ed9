#pragma once

/// @file
/// Outlines of laid out text.

#include "platform/annotation/FontStack_p.h"
#include "platform/svg/GlyphSource.h"

#include <memory>
#include <vector>

namespace kt::text {

/// Gives the outlines of left-to-right texts of simple scripts in one family and style by shaping them when asked. One
/// source serves any number of texts.
class SimpleGlyphs final : public svg::GlyphSource {
public:
    explicit SimpleGlyphs(std::shared_ptr<const FontStack> fonts) : mFonts(std::move(fonts)) {}

    void appendGlyphs(const svg::Text& text, std::vector<svg::PlacedGlyph>& glyphs) const override;
    std::shared_ptr<const void> getOutlineOwner() const override { return mFonts; }

private:
    std::shared_ptr<const FontStack> mFonts;
};

/// Gives the outlines of one text whose glyphs depend on what stands around it.
class PlacedGlyphs final : public svg::GlyphSource {
public:
    struct Glyph {
        const Font* mFont = nullptr;
        hb_codepoint_t mGlyph = 0;
        char32_t mMissing = 0;            ///< as ShapedGlyph's
        Wm4::Vector2<float> mPosition{};  ///< in ems, y down
    };

    PlacedGlyphs(std::shared_ptr<const FontStack> fonts, std::vector<Glyph> glyphs)
        : mFonts(std::move(fonts)), mGlyphs(std::move(glyphs)) {}

    void appendGlyphs(const svg::Text& text, std::vector<svg::PlacedGlyph>& glyphs) const override;
    std::shared_ptr<const void> getOutlineOwner() const override { return mFonts; }

private:
    std::shared_ptr<const FontStack> mFonts;
    std::vector<Glyph> mGlyphs;
};

}  // namespace kt::text
