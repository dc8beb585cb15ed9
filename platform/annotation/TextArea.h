#pragma once

/// @file
/// Block of text to lay out.

#include "platform/annotation/TextSegment.h"

#include <vector>

namespace kt::text {

/// Lines of segments with the properties of all segments that have none of their own. A plain value.
struct TextArea {
    using Line = std::vector<TextSegment>;

    TextProperties mDefaultProperties;
    std::vector<Line> mLines;
};

}  // namespace kt::text
