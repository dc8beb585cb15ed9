#include "platform/svg/PathBuilder.h"

#include "platform/wm4/Wm4Math.h"

#include <cmath>
#include <utility>

namespace kt::svg {

namespace {

/// Angles that differ by less than this (radians) differ by rounding.
constexpr double sAngleTolerance = 1e-5;

Wm4::Vector2<float> pointOnEllipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, double angle) {
    return {static_cast<float>(static_cast<double>(center.x) + static_cast<double>(radii.x) * std::cos(angle)),
            static_cast<float>(static_cast<double>(center.y) + static_cast<double>(radii.y) * std::sin(angle))};
}

}  // namespace

PathBuilder::PathBuilder() = default;
PathBuilder::~PathBuilder() = default;

Path& PathBuilder::editPath() {
    if (!mPath) {
        mPath = std::make_shared<Path>();
    }
    return *mPath;
}

void PathBuilder::startContour() { mIsContourStarted = false; }

void PathBuilder::appendSegmentListMove(std::span<const Wm4::Vector2<float>> points) {
    if (points.empty()) {
        return;
    }
    Path& path = editPath();
    if (!mIsContourStarted) {
        path.moveTo(points.front());
        points = points.subspan(1);
        mIsContourStarted = true;
    }
    for (const Wm4::Vector2<float>& point : points) {
        path.lineTo(point);
    }
}

void PathBuilder::endContour(bool keepOpen) {
    if (mIsContourStarted && !keepOpen) {
        editPath().close();
    }
    mIsContourStarted = false;
}

void PathBuilder::appendLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to) {
    editPath().moveTo(from);
    editPath().lineTo(to);
    mIsContourStarted = false;
}

void PathBuilder::appendCubic(const Wm4::Vector2<float>& control1, const Wm4::Vector2<float>& control2,
                              const Wm4::Vector2<float>& end) {
    if (!mIsContourStarted) {
        editPath().moveTo(control1);
        mIsContourStarted = true;
    }
    editPath().cubicTo(control1, control2, end);
}

void PathBuilder::appendEllipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float startAngle,
                                float endAngle) {
    const Wm4::Vector2<float> positiveRadii(std::abs(radii.x), std::abs(radii.y));
    const auto start = static_cast<double>(startAngle);
    const double span = static_cast<double>(endAngle) - start;
    const bool isSweep = span >= 0.0;
    const bool isFullTurn = std::abs(span) >= 2.0 * Wm4::Mathd::PI - sAngleTolerance;
    const Wm4::Vector2<float> first = pointOnEllipse(center, positiveRadii, start);

    Path& path = editPath();
    path.moveTo(first);
    if (isFullTurn) {
        path.arcTo(positiveRadii, 0.0F, false, isSweep, center * 2.0F - first);
        path.arcTo(positiveRadii, 0.0F, false, isSweep, first);
        path.close();
    } else {
        // Halves: an arc of nearly a full turn would leave its centre to the rounding of its two end points.
        if (std::abs(span) > Wm4::Mathd::PI + sAngleTolerance) {
            path.arcTo(positiveRadii, 0.0F, false, isSweep, pointOnEllipse(center, positiveRadii, start + span * 0.5));
        }
        path.arcTo(positiveRadii, 0.0F, false, isSweep, pointOnEllipse(center, positiveRadii, start + span));
    }
    mIsContourStarted = false;
}

std::shared_ptr<Path> PathBuilder::createPathItem(bool reset) {
    if (!mPath) {
        return nullptr;
    }
    if (!reset) {
        return std::make_shared<Path>(*mPath);
    }
    mIsContourStarted = false;
    return std::exchange(mPath, nullptr);
}

}  // namespace kt::svg
