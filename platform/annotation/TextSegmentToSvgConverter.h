#pragma once

/// @file
/// Text layout.

#include "platform/annotation/TextArea.h"
#include "platform/annotation/ktAnnotationExport.h"
#include "platform/svg/Node.h"
#include "platform/wm4/Wm4Vector2.h"

#include <memory>

namespace kt::text {

/// Lays text out and turns it into SVG items. One converter serves one thread at a time; several converters may work on
/// several threads at once. It keeps fonts open and remembers what it has measured, so one converter should serve many
/// texts.
class KT_ANNOTATION_API TextSegmentToSvgConverter {
public:
    TextSegmentToSvgConverter();
    TextSegmentToSvgConverter(const TextSegmentToSvgConverter&) = delete;
    TextSegmentToSvgConverter& operator=(const TextSegmentToSvgConverter&) = delete;
    ~TextSegmentToSvgConverter();

    /// Lays the area out and appends its items to target, in a frame with y pointing up: the first line on top, later
    /// lines at smaller y. Every text item is mirrored about its own base line, so that glyphs stand upright once the
    /// group is mirrored for SVG's y-down frame. An invisible rectangle covers the text block exactly.
    /// @param size           receives the block's width and height when not null.
    /// @param boundingBoxId  id of the invisible rectangle; null: no rectangle.
    /// @return false when the text could not be laid out; target is unchanged then. A block without extent is no
    /// failure:
    ///         it adds nothing.
    bool convertTextAreaToSvg(const TextArea& area, svg::Node& target, Wm4::Vector2<float>* size,
                              const char* boundingBoxId) const;

private:
    class Layout;
    std::unique_ptr<Layout> mLayout;
};

}  // namespace kt::text
