#pragma once

/// @file
/// Drawings of views.

#include "platform/annotation/ktAnnotationExport.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "platform/svg/SvgWriter.h"

#include <string>
#include <vector>

namespace kt {

/// Writes a view as one SVG file in millimetres with y pointing down: a point (x, y) of the view's plane stands at (x,
/// -y). Beneath everything lie the leaders and their heads in the annotations' colours; above them the annotations, in
/// order, each a group with the annotation's name as its title. The viewBox holds everything and a margin. The same
/// view gives the same bytes. A writer holds no state between views and may be used by several threads at once.
class KT_ANNOTATION_API ktCadViewSvgWriter {
public:
    struct Options {
        svg::SvgWriter::TextMode mTextMode = svg::SvgWriter::TextMode::Text;
        float mMargin = 5.0F;        ///< least margin around the drawing, in millimetres; not negative
        float mLineWidth = 0.25F;    ///< of leaders and outlines, in millimetres
        float mMarginShare = 0.01F;  ///< least margin as a share of the drawing's longer side; not negative
    };

    ktCadViewSvgWriter() = default;
    explicit ktCadViewSvgWriter(const Options& options) : mOptions(options) {}

    /// @param file      replaced by the file's text; its capacity is used again.
    /// @param warnings  receives a sentence for everything that was left out or replaced, with the annotation's name.
    void write(const ktCadAnnotationView& view, std::string& file, std::vector<std::string>& warnings) const;

private:
    Options mOptions;
};

}  // namespace kt
