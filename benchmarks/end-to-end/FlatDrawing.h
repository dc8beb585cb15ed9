#pragma once

/// @file
/// Drawings as plain shapes.

#include "platform/annotation/ktCadAnnotationView.h"

#include <string>
#include <vector>

namespace ktBenchmark {

/// A drawing as plain shapes in the drawing's frame (y down), ready to be painted by any painter: layout, frames and
/// leaders are done already.
struct FlatDrawing {
    struct Point {
        double x = 0.0;
        double y = 0.0;
    };
    struct TextRun {
        Point mPosition;  ///< left end of the baseline
        double mSize = 0.0;
        std::string mFont;
        std::string mText;
    };
    struct Outline {
        std::vector<Point> mPoints;  ///< at least two
        bool mIsClosed = false;
    };

    std::vector<Outline> mLines;     ///< leaders
    std::vector<Outline> mOutlines;  ///< heads and frames
    std::vector<TextRun> mTexts;

    // What must be shown: what lies outside of their page some painters leave out.
    Point mLow;
    Point mHigh;
};

/// All that the view shows but pictures; curves become their chords.
FlatDrawing flatten(const kt::ktCadAnnotationView& view);

}  // namespace ktBenchmark
