#pragma once

/// @file
/// Graphics libraries to measure against.

#include "benchmarks/end-to-end/FlatDrawing.h"

#include <memory>
#include <string>

namespace ktBenchmark {

/// A graphics library that writes SVG. What it needs of a drawing in forms of its own is prepared by the constructor;
/// paint() is what is measured.
class Painter {
public:
    Painter() = default;
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;
    virtual ~Painter() = default;

    /// The whole drawing as SVG bytes.
    virtual std::string paint() = 0;
    /// The width of all texts painted last, 0 when nothing is measured.
    double getTextWidth() const { return mTextWidth; }

protected:
    double mTextWidth = 0.0;
};

/// What a painter does with texts before it draws them.
enum class TextWork {
    Draw,     ///< nothing: where they go is known
    Measure,  ///< asks for their width, as whoever lays out lines must
};

/// Qt's SVG generator. Call once the process has a QGuiApplication, which startQt() makes.
void startQt(int& argumentCount, char** arguments);
std::unique_ptr<Painter> createQtPainter(const FlatDrawing& drawing, TextWork work);

/// Cairo's SVG surface with text by Pango.
std::unique_ptr<Painter> createCairoPainter(const FlatDrawing& drawing, TextWork work);

}  // namespace ktBenchmark
