#pragma once

/// @file
/// Lays texts out for tests.

#include "platform/annotation/TextArea.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "tests/annotation/ReferenceShaping.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt::test {

inline text::TextProperties makeProperties(const std::string& font, float size, std::uint8_t style = 0) {
    text::TextProperties properties;
    properties.mFontName = font;
    properties.mFontSize = size;
    properties.mStyle = style;
    return properties;
}

inline text::TextSegment makeSegment(std::string_view bytes,
                                     text::TextSegment::SegmentType type = text::TextSegment::Normal,
                                     const text::TextProperties* properties = nullptr) {
    text::TextSegment segment(nullptr, type, properties);
    segment.setText(bytes.data(), bytes.size());
    return segment;
}

/// One line of segments.
inline text::TextArea makeLine(const text::TextProperties& properties, const std::vector<std::string>& segments) {
    text::TextArea area{properties, {{}}};
    for (const std::string& bytes : segments) {
        area.mLines.front().push_back(makeSegment(bytes));
    }
    return area;
}

/// What the converter adds to an empty group.
struct LaidOutText {
    explicit LaidOutText(const text::TextArea& area, const text::TextSegmentToSvgConverter& converter = {})
        : mIsDone(converter.convertTextAreaToSvg(area, mGroup, &mSize, "block")) {
        for (const std::shared_ptr<svg::ItemInterface>& item : mGroup.getChildren()) {
            if (auto text = std::dynamic_pointer_cast<const svg::Text>(item)) {
                text->getGlyphSource()->appendGlyphs(*text, mGlyphs);
                mTexts.push_back(std::move(text));
            }
        }
    }
    /// One segment on one line.
    LaidOutText(const text::TextProperties& properties, std::string_view bytes)
        : LaidOutText(makeLine(properties, {std::string(bytes)})) {}

    svg::Node mGroup;
    Wm4::Vector2<float> mSize{-1.0F, -1.0F};
    bool mIsDone;
    std::vector<std::shared_ptr<const svg::Text>> mTexts;
    std::vector<svg::PlacedGlyph> mGlyphs;  ///< of all texts
};

/// The block must be one text, shown thus, of exactly the glyphs with outlines that HarfBuzz shapes from it.
inline void expectShaped(const LaidOutText& block, std::string_view shown, const ReferenceFont& font) {
    ASSERT_EQ(block.mTexts.size(), 1U);
    EXPECT_EQ(block.mTexts[0]->getText(), shown);
    ReferenceRun shaped = shapeReference(font, shown);
    std::erase_if(shaped.mGlyphs, [&font](const ReferenceGlyph& glyph) { return font.isBlank(glyph.mGlyph); });
    const double scale = static_cast<double>(block.mTexts[0]->getSize()) / font.getUnitsPerEm();
    EXPECT_FLOAT_EQ(block.mTexts[0]->getLength(), static_cast<float>(static_cast<double>(shaped.mAdvance) * scale));
    ASSERT_EQ(block.mGlyphs.size(), shaped.mGlyphs.size()) << shown;
    for (std::size_t index = 0; index < block.mGlyphs.size(); ++index) {
        const svg::PlacedGlyph& glyph = block.mGlyphs[index];
        ASSERT_FLOAT_EQ(glyph.mPosition.x, static_cast<float>(static_cast<double>(shaped.mGlyphs[index].mX) * scale));
        ASSERT_FLOAT_EQ(glyph.mPosition.y, static_cast<float>(static_cast<double>(-shaped.mGlyphs[index].mY) * scale));
        ASSERT_FLOAT_EQ(glyph.mScale, static_cast<float>(scale));
    }
}

}  // namespace kt::test
