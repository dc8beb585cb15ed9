#pragma once

/// @file
/// Run of characters of one style.

#include "platform/annotation/TextProperties.h"
#include "platform/annotation/ktAnnotationExport.h"

#include <optional>
#include <string>
#include <utility>

namespace kt::text {

/// Characters of one style within a line. Text is UTF-8; what is not is shown with the replacement character.
class KT_ANNOTATION_API TextSegment {
public:
    enum SegmentType : std::uint8_t { Normal = 0, Subscript = 1, Superscript = 2 };

    TextSegment() = default;
    /// @param text        NUL-terminated, may be null.
    /// @param properties  copied as the segment's own; null: the area's default properties apply.
    TextSegment(const char* text, SegmentType type, const TextProperties* properties);

    const std::string& getText() const { return mText; }
    /// Sets length bytes as the text, which may hold NULs; a null text gives the empty one.
    void setText(const char* text, unsigned long length);

    SegmentType getType() const { return mType; }
    void setType(SegmentType type) { mType = type; }

    const std::optional<TextProperties>& getProperties() const { return mProperties; }
    void setProperties(TextProperties properties) { mProperties = std::move(properties); }
    void clearProperties() { mProperties.reset(); }

private:
    std::string mText;
    std::optional<TextProperties> mProperties;
    SegmentType mType = Normal;
};

}  // namespace kt::text
