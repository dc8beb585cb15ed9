#pragma once

/// @file
/// Builds paths contour by contour.

#include "platform/svg/Path.h"

#include <initializer_list>
#include <memory>
#include <span>

namespace kt::svg {

/// Collects contours, lines and ellipses and hands them over as one path item.
class KT_SVG_API PathBuilder {
public:
    PathBuilder();
    ~PathBuilder();
    PathBuilder(const PathBuilder&) = delete;
    PathBuilder& operator=(const PathBuilder&) = delete;

    /// Begins a new contour.
    void startContour();
    /// Adds points to the contour: a move to the first one of a contour, lines to all others.
    void appendSegmentListMove(std::span<const Wm4::Vector2<float>> points);
    void appendSegmentListMove(std::initializer_list<Wm4::Vector2<float>> points) {
        appendSegmentListMove(std::span(points.begin(), points.size()));
    }
    /// Ends the contour: closed when keepOpen is false, open when it is true. Contours that collapse to a point stay.
    void endContour(bool keepOpen);

    /// An open contour of one line.
    void appendLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to);
    /// A cubic curve from the contour's last point; from its own first control when the contour has no point yet.
    void appendCubic(const Wm4::Vector2<float>& control1, const Wm4::Vector2<float>& control2,
                     const Wm4::Vector2<float>& end);
    /// An arc of an axis-parallel ellipse from startAngle to endAngle (radians, counter-clockwise where y points up) as
    /// a contour of its own; a full turn or more gives the closed ellipse.
    void appendEllipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float startAngle,
                       float endAngle);

    /// The path built so far; null when there is none. With reset true the path is handed over and the builder is empty
    /// afterwards, otherwise a copy is given and building goes on.
    std::shared_ptr<Path> createPathItem(bool reset);

private:
    Path& editPath();

    std::shared_ptr<Path> mPath;     ///< null while there is nothing in it
    bool mIsContourStarted = false;  ///< the contour has its first point
};

}  // namespace kt::svg
