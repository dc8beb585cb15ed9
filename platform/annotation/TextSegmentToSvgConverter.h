#pragma once

/// @file
/// Text layout.

#include "platform/annotation/FontProblem.h"
#include "platform/annotation/TextArea.h"
#include "platform/annotation/ktAnnotationExport.h"
#include "platform/svg/Node.h"
#include "platform/wm4/Wm4Vector2.h"

#include <memory>
#include <vector>

namespace kt::text {

/// Lays text out and turns it into SVG items. One converter serves one thread at a time; several converters may work on
/// several threads at once. It keeps fonts open and remembers what it has measured, so one converter should serve many
/// texts.
///
/// **Order.** A line runs in the direction of its first letter, and its characters stand in the order of the Unicode
/// bidirectional algorithm. In lines with right-to-left letters, *technical values* keep their own order from left to
/// right, as isolates do, while the order of values and words follows the line: "⌀.250 ±.008 دقیقهٔ" shows the
/// dimension as it is written, at the right of its unit.
/// - A value is what stands between right-to-left letters and holds a digit: words of digits (of any script), letters
///   and signs such as . , + - ± × ⌀ ° % ' " / : | and brackets that open and close within it.
/// - Its words stay together, tolerances, units, counts and datums with their dimension: "4X ⌀8 H7", "6 1/2", "5' 6"".
///   Two words are values of a list, which follows the line, when the one before the blank ends in a digit, a degree,
///   inch or percent sign, and the one behind begins with a digit or a symbol such as ⌀: "12.5, 25.4".
/// - Punctuation at its ends, quotation marks around it, and a hyphen or slash that ties it to a right-to-left letter
///   belong to the line.
///
/// Lines with directional embeddings, overrides or isolates of their own are left to the algorithm.
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
    ///         failure: it adds nothing. So is text of a size that is not above 0; beside other text it is kept, too
    ///         small to be seen. Marks without a base letter have the extent of their ink.
    bool convertTextAreaToSvg(const TextArea& area, svg::Node& target, Wm4::Vector2<float>* size,
                              const char* boundingBoxId) const;

    /// What kept fonts from being used for the texts since the last call, each once: they may be set in other fonts
    /// than they should be. Empty on a machine that is well.
    std::vector<FontProblem> takeFontProblems() const;

private:
    class Layout;
    std::unique_ptr<Layout> mLayout;
};

}  // namespace kt::text
