#pragma once

/// @file
/// Lays texts out for tests.

#include "platform/annotation/TextArea.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"

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

inline text::TextArea makeArea(const text::TextProperties& properties, std::vector<text::TextArea::Line> lines) {
    return {properties, std::move(lines)};
}

/// What the converter adds to an empty group.
struct LaidOutText {
    explicit LaidOutText(const text::TextArea& area) : LaidOutText(text::TextSegmentToSvgConverter(), area) {}
    LaidOutText(const text::TextSegmentToSvgConverter& converter, const text::TextArea& area)
        : mIsDone(converter.convertTextAreaToSvg(area, mGroup, &mSize, "block")) {
        for (const std::shared_ptr<svg::ItemInterface>& item : mGroup.getChildren()) {
            if (auto text = std::dynamic_pointer_cast<const svg::Text>(item)) {
                mTexts.push_back(std::move(text));
            }
        }
    }

    const svg::Rect* getRectangle() const {
        return mGroup.getChildren().empty() ? nullptr
                                            : dynamic_cast<const svg::Rect*>(mGroup.getChildren().front().get());
    }

    svg::Node mGroup;
    Wm4::Vector2<float> mSize{-1.0F, -1.0F};
    bool mIsDone;
    std::vector<std::shared_ptr<const svg::Text>> mTexts;
};

/// One segment on one line.
inline LaidOutText layOutString(const text::TextProperties& properties, std::string_view bytes) {
    return LaidOutText(makeArea(properties, {{makeSegment(bytes)}}));
}

}  // namespace kt::test
