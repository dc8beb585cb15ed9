#pragma once

/// @file
/// Access to glyph outlines.

#include "platform/svg/Path.h"

#include <memory>
#include <vector>

namespace kt::svg {

class Text;

/// One glyph of a run: an outline, where its origin stands relative to the run's position, and its scale. The outline's
/// address identifies it: the same glyph of the same font always has the same outline object, so that a writer can
/// define it once and use it many times. Outlines are in the text item's orientation (y down).
struct PlacedGlyph {
    const Path* mOutline = nullptr;  ///< null when there is nothing to draw
    Wm4::Vector2<float> mPosition{};
    float mScale = 1.0F;
    char32_t mMissing = 0;  ///< the character, when no font has it; else 0
};

/// Something that can give the outlines of a text item: implemented by the text layout, asked by the writer. Outlines
/// live as long as the source or their owner.
class KT_SVG_API GlyphSource {
public:
    GlyphSource() = default;
    GlyphSource(const GlyphSource&) = delete;
    GlyphSource& operator=(const GlyphSource&) = delete;
    virtual ~GlyphSource();

    /// Appends the glyphs of the run in drawing order. Glyphs without ink (blanks) may be left out.
    virtual void appendGlyphs(const Text& text, std::vector<PlacedGlyph>& glyphs) const = 0;

    /// What the outlines live in: a writer keeps it while it refers to them by their addresses, so that texts and their
    /// sources can be released as soon as they are written. Many sources share a few owners.
    virtual std::shared_ptr<const void> getOutlineOwner() const = 0;
};

}  // namespace kt::svg
