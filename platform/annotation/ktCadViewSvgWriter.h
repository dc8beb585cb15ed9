#pragma once

/// @file
/// Drawings of views.

#include "platform/annotation/ktAnnotationExport.h"
#include "platform/annotation/ktCadAnnotationView.h"
#include "platform/svg/SvgWriter.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kt {

/// Writes a view as one SVG file in millimetres with y pointing down: a point (x, y) of the view's plane stands at (x,
/// -y). Beneath everything lie the leaders and their heads in the annotations' colours; above them the annotations, in
/// order, each a group with the annotation's name as its title. The viewBox holds everything and a margin. The same
/// view gives the same bytes.
///
/// A drawing grows annotation by annotation (begin, add for each, finish), so that a view need not be in memory as a
/// whole: the writer holds the drawing's text and nothing of the annotations. Belongs to one thread at a time.
class KT_ANNOTATION_API ktCadViewSvgWriter {
public:
    struct Options {
        svg::SvgWriter::TextMode mTextMode = svg::SvgWriter::TextMode::Text;
        float mMargin = 5.0F;        ///< least margin around the drawing, in millimetres; not negative
        float mLineWidth = 0.25F;    ///< of leaders and outlines, in millimetres
        float mMarginShare = 0.01F;  ///< least margin as a share of the drawing's longer side; not negative
        /// Whether the black rectangles beneath images are drawn: line art on transparency cannot be seen on them.
        bool mDrawsPictureBackgrounds = false;
        std::string mBackground{};  ///< colour of the page, one that svg::SvgWriter::isColor accepts; empty: none
    };

    /// Something in an annotation that was left out or replaced.
    struct Warning : svg::SvgWriter::Warning {
        std::size_t mAnnotation = 0;  ///< which one of the drawing's, from 0
        std::string mName;            ///< the annotation's

        /// For people: "annotation 'A': an image was left out: ...".
        std::string getSentence() const;
    };

    ktCadViewSvgWriter();
    explicit ktCadViewSvgWriter(const Options& options);
    ktCadViewSvgWriter(const ktCadViewSvgWriter&) = delete;
    ktCadViewSvgWriter& operator=(const ktCadViewSvgWriter&) = delete;
    ~ktCadViewSvgWriter();

    /// Begins a drawing; one that is begun already is dropped.
    void begin(std::string_view viewName);

    /// Draws an annotation above those before it, and its leaders beneath all annotations. The annotation may be
    /// released or changed at once.
    void add(const ktCadAnnotation& annotation);

    /// Ends the drawing.
    /// @return the file's text in pieces, in order; valid until the next begin or write. Together they may take most of
    ///         the memory there is: write them one by one.
    std::vector<std::string_view> finish();

    /// What was left out or replaced in this drawing so far, in the order of the annotations.
    const std::vector<Warning>& getWarnings() const { return mWarnings; }

    /// Draws a whole view: begin, add for each annotation, finish.
    /// @param file  replaced by the file's text; its capacity is used again.
    void write(const ktCadAnnotationView& view, std::string& file);

private:
    void writeLeaders(const ktCadAnnotation& annotation);
    void writeContent(const ktCadAnnotation& annotation);
    /// Remembers where the page ends, when it grew.
    void noteReach(const ktCadAnnotation& annotation);
    void warnOfPage();

    Options mOptions;
    std::unique_ptr<svg::SvgWriter> mWriter;  ///< of the drawing that is begun
    svg::BoundingBox mBox;                    ///< holds what was added
    std::size_t mAnnotationCount = 0;
    std::vector<Warning> mWarnings;

    /// What reaches farthest from the origin, beyond what pages usually have.
    float mReach = 0.0F;
    std::size_t mReachingAnnotation = 0;
    std::string mReachingName;
};

}  // namespace kt
