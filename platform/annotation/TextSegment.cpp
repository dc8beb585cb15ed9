#include "platform/annotation/TextSegment.h"

namespace kt::text {

TextSegment::TextSegment(const char* text, SegmentType type, const TextProperties* properties)
    : mText(text != nullptr ? text : ""), mType(type) {
    if (properties != nullptr) {
        mProperties = *properties;
    }
}

void TextSegment::setText(const char* text, unsigned long length) {
    if (text == nullptr) {
        mText.clear();
    } else {
        mText.assign(text, length);
    }
}

}  // namespace kt::text
