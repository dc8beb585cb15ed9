#pragma once

/// @file
/// Run of text in one style.

#include "platform/svg/BoundingBox.h"
#include "platform/svg/GlyphSource.h"
#include "platform/svg/ItemInterface.h"

#include <memory>

namespace kt::svg {

/// A run of text on one base line in one style, already measured. The position is the start of the base line at the
/// run's left edge (also for right-to-left text); in the item's own coordinates glyphs rise towards smaller y, as in
/// SVG.
class KT_SVG_API Text final : public ItemInterface {
public:
    Text() : ItemInterface(Kind::Text) {}
    ~Text() override;

    /// Valid UTF-8, in logical order.
    const std::string& getText() const { return mText; }
    void setText(std::string_view text) { mText = text; }

    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    void setPosition(const Wm4::Vector2<float>& position) { mPosition = position; }

    /// Family name as the document asks for it.
    const std::string& getFont() const { return mFont; }
    void setFont(std::string_view family) { mFont = family; }

    /// Font size (the em) in drawing units.
    float getSize() const { return mSize; }
    void setSize(float size) { mSize = size; }

    bool isBold() const { return mIsBold; }
    void setBold(bool bold) { mIsBold = bold; }
    bool isItalic() const { return mIsItalic; }
    void setItalic(bool italic) { mIsItalic = italic; }
    bool isRightToLeft() const { return mIsRightToLeft; }
    void setRightToLeft(bool rightToLeft) { mIsRightToLeft = rightToLeft; }

    /// Measured advance of the run in drawing units; renderers with other fonts stretch the text to it.
    float getLength() const { return mLength; }
    void setLength(float length) { mLength = length; }

    /// What the run covers, in the item's own coordinates relative to the position: advance width by font ascent and
    /// descent, and the ink of glyphs that reach beyond.
    const BoundingBox& getExtent() const { return mExtent; }
    void setExtent(const BoundingBox& extent) { mExtent = extent; }

    /// Gives the glyph outlines on demand; null when the text cannot be drawn as outlines.
    const std::shared_ptr<const GlyphSource>& getGlyphSource() const { return mGlyphSource; }
    void setGlyphSource(std::shared_ptr<const GlyphSource> source) { mGlyphSource = std::move(source); }

private:
    bool mIsBold = false;
    bool mIsItalic = false;
    bool mIsRightToLeft = false;
    std::string mText;
    std::string mFont;
    Wm4::Vector2<float> mPosition{};
    float mSize = 0.0F;
    float mLength = 0.0F;
    BoundingBox mExtent;
    std::shared_ptr<const GlyphSource> mGlyphSource;
};

}  // namespace kt::svg
