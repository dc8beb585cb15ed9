#include "platform/svg/ComputeEstimatedBoundingBox.h"

#include "platform/svg/Affine_p.h"
#include "platform/svg/EllipticArc_p.h"
#include "platform/svg/Image.h"
#include "platform/svg/Node.h"
#include "platform/svg/Path.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory_resource>
#include <vector>

namespace kt::svg {

namespace {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

/// Relative error of the curve arithmetic; nearer to a float than this, the float is what is meant.
constexpr double sArithmeticError = 1e-12;

float toFloat(double value) {
    constexpr auto limit = static_cast<double>(std::numeric_limits<float>::max());
    if (std::abs(value) > limit) {
        return std::copysign(std::numeric_limits<float>::infinity(), static_cast<float>(std::copysign(1.0, value)));
    }
    return static_cast<float>(value);
}

/// The extent in double precision. Corners are told from curve points, because only the box of curves must be rounded
/// outwards: corners are exact up to the nearest float.
class Extent {
public:
    void addCorner(double x, double y) {
        if (!std::isunordered(x, y)) {
            addTo(mCornerX, x);
            addTo(mCornerY, y);
        }
    }
    /// The corners of a rectangle, given by the ranges that they span along both axes.
    void addCorners(double minX, double maxX, double minY, double maxY) {
        mCornerX = {std::min(mCornerX.mMin, minX), std::max(mCornerX.mMax, maxX)};
        mCornerY = {std::min(mCornerY.mMin, minY), std::max(mCornerY.mMax, maxY)};
    }
    void addCurveX(double x) { addTo(mCurveX, x); }
    void addCurveY(double y) { addTo(mCurveY, y); }

    BoundingBox toBox() const {
        // Curves start and end in corners, so there is no curve without them.
        if (!(mCornerX.mMin <= mCornerX.mMax)) {
            return {};
        }
        return {{lower(mCornerX.mMin, mCurveX.mMin), lower(mCornerY.mMin, mCurveY.mMin)},
                {-lower(-mCornerX.mMax, -mCurveX.mMax), -lower(-mCornerY.mMax, -mCurveY.mMax)}};
    }

private:
    struct Range {
        double mMin = std::numeric_limits<double>::infinity();
        double mMax = -std::numeric_limits<double>::infinity();
    };

    static void addTo(Range& range, double value) {
        range.mMin = std::min(range.mMin, value);
        range.mMax = std::max(range.mMax, value);
    }

    static float lower(double corner, double curve) {
        return curve < corner ? std::min(toFloat(corner), roundDown(curve)) : toFloat(corner);
    }

    static float roundDown(double value) {
        const float nearest = toFloat(value);
        if (static_cast<double>(nearest) <= value + std::abs(value) * sArithmeticError) {
            return nearest;
        }
        return std::nextafter(nearest, -std::numeric_limits<float>::infinity());
    }

    Range mCornerX;
    Range mCornerY;
    Range mCurveX;
    Range mCurveY;
};

/// A term of a product; nothing of something infinite is nothing here.
double multiply(double factor, double value) { return factor == 0.0 ? 0.0 : factor * value; }

Point mapPoint(const Affine& map, const Wm4::Vector2<float>& point) {
    const auto x = static_cast<double>(point.x);
    const auto y = static_cast<double>(point.y);
    const Point mapped{map.mapX(x, y), map.mapY(x, y)};
    if (!std::isunordered(mapped.x, mapped.y)) [[likely]] {
        return mapped;
    }
    return {std::isnan(mapped.x) ? multiply(map.mXx, x) + multiply(map.mXy, y) + map.mX : mapped.x,
            std::isnan(mapped.y) ? multiply(map.mYx, x) + multiply(map.mYy, y) + map.mY : mapped.y};
}

void addCorner(Extent& extent, const Affine& map, const Wm4::Vector2<float>& point) {
    const Point mapped = mapPoint(map, point);
    extent.addCorner(mapped.x, mapped.y);
}

/// A rectangle with infinite numbers: what is infinite beside a zero of the map counts as nothing.
[[gnu::noinline]] void addInfiniteRectangle(Extent& extent, const Affine& map, const Wm4::Vector2<float>& corner0,
                                            const Wm4::Vector2<float>& corner1) {
    if (std::isnan(corner0.x) || std::isnan(corner0.y) || std::isnan(corner1.x) || std::isnan(corner1.y)) {
        return;
    }
    addCorner(extent, map, corner0);
    addCorner(extent, map, corner1);
    if (map.mXy != 0.0 || map.mYx != 0.0) {
        addCorner(extent, map, {corner0.x, corner1.y});
        addCorner(extent, map, {corner1.x, corner0.y});
    }
}

/// What the sum of both terms of a mapped coordinate spans, over all corners.
struct MappedRange {
    [[gnu::always_inline]] MappedRange(double factorX, double factorY, double offset,
                                       const Wm4::Vector2<float>& corner0, const Wm4::Vector2<float>& corner1) {
        const double x0 = factorX * static_cast<double>(corner0.x);
        const double x1 = factorX * static_cast<double>(corner1.x);
        const double y0 = factorY * static_cast<double>(corner0.y);
        const double y1 = factorY * static_cast<double>(corner1.y);
        mMin = std::min(x0, x1) + std::min(y0, y1) + offset;
        mMax = std::max(x0, x1) + std::max(y0, y1) + offset;
        mTrace = (x0 + x1 + y0 + y1 + offset) * 0.0;
    }

    double mMin;
    double mMax;
    double mTrace;  ///< 0 when all numbers are finite
};

/// Inline, because most items of a drawing are texts and rectangles.
[[gnu::always_inline]] inline void addRectangle(Extent& extent, const Affine& map, const Wm4::Vector2<float>& corner0,
                                                const Wm4::Vector2<float>& corner1) {
    const MappedRange x(map.mXx, map.mXy, map.mX, corner0, corner1);
    const MappedRange y(map.mYx, map.mYy, map.mY, corner0, corner1);
    if (x.mTrace + y.mTrace == 0.0) [[likely]] {
        extent.addCorners(x.mMin, x.mMax, y.mMin, y.mMax);
    } else {
        addInfiniteRectangle(extent, map, corner0, corner1);
    }
}

void addText(Extent& extent, const Affine& map, const Text& text) {
    if (!text.getExtent().isEmpty()) {
        addRectangle(extent, map, text.getPosition() + text.getExtent().getMinPoint(),
                     text.getPosition() + text.getExtent().getMaxPoint());
    }
}

/// Calls visit with the values that one coordinate of a cubic curve takes where it turns back between its ends.
template <typename Visit>
void visitCubicExtrema(double p0, double p1, double p2, double p3, Visit visit) {
    if (std::min(p0, p3) <= std::min(p1, p2) && std::max(p1, p2) <= std::max(p0, p3)) {
        return;
    }
    // The derivative is 3 (a t^2 + b t + c).
    const double a = p3 - p0 + 3.0 * (p1 - p2);
    const double b = 2.0 * (p0 - 2.0 * p1 + p2);
    const double c = p1 - p0;
    const auto visitAt = [&](double t) {
        if (t > 0.0 && t < 1.0) {
            const double s = 1.0 - t;
            visit(s * s * s * p0 + 3.0 * s * t * (s * p1 + t * p2) + t * t * t * p3);
        }
    };
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant < 0.0) {
        return;
    }
    // The sum of two terms of one sign loses no digits; the product of the roots gives the other root.
    const double q = -0.5 * (b + std::copysign(std::sqrt(discriminant), b));
    if (a != 0.0) {
        visitAt(q / a);
    }
    if (q != 0.0) {
        visitAt(c / q);
    }
}

void addCubic(Extent& extent, const Point& p0, const Point& p1, const Point& p2, const Point& p3) {
    extent.addCorner(p3.x, p3.y);
    if (!std::isfinite(p0.x + p0.y + p1.x + p1.y + p2.x + p2.y + p3.x + p3.y)) {
        extent.addCorner(p1.x, p1.y);
        extent.addCorner(p2.x, p2.y);
        return;
    }
    visitCubicExtrema(p0.x, p1.x, p2.x, p3.x, [&](double x) { extent.addCurveX(x); });
    visitCubicExtrema(p0.y, p1.y, p2.y, p3.y, [&](double y) { extent.addCurveY(y); });
}

/// Calls visit with the values of offset + u cos(t) + v sin(t) at its turning points that lie on the arc.
template <typename Visit>
void visitArcExtrema(const EllipticArc& arc, double offset, double u, double v, Visit visit) {
    const double amplitude = std::hypot(u, v);
    const double angle = std::atan2(v, u);
    if (arc.contains(angle)) {
        visit(offset + amplitude);
    }
    if (arc.contains(angle + Wm4::Mathd::PI)) {
        visit(offset - amplitude);
    }
}

void addArc(Extent& extent, const Affine& map, const Wm4::Vector2<float>& start, const Wm4::Vector2<float>* points) {
    addCorner(extent, map, points[2]);
    const EllipticArc arc = EllipticArc::fromEndPoints(start, points[0], points[1].x, points[1].y, points[2]);
    if (!arc.isCurved()) {
        return;
    }
    const double cosine = std::cos(arc.mRotation);
    const double sine = std::sin(arc.mRotation);
    const double ux = arc.mRadiusX * cosine;
    const double uy = arc.mRadiusX * sine;
    const double vx = -arc.mRadiusY * sine;
    const double vy = arc.mRadiusY * cosine;
    visitArcExtrema(arc, map.mapX(arc.mCenterX, arc.mCenterY), map.mXx * ux + map.mXy * uy, map.mXx * vx + map.mXy * vy,
                    [&](double x) { extent.addCurveX(x); });
    visitArcExtrema(arc, map.mapY(arc.mCenterX, arc.mCenterY), map.mYx * ux + map.mYy * uy, map.mYx * vx + map.mYy * vy,
                    [&](double y) { extent.addCurveY(y); });
}

void addPath(Extent& extent, const Affine& map, const Path& path) {
    const Wm4::Vector2<float>* points = path.getPoints().data();
    Wm4::Vector2<float> start;
    Wm4::Vector2<float> current;
    for (const Path::Command command : path.getCommands()) {
        if (command == Path::Command::Move) {
            // Counts with the first thing drawn from it: a move alone draws nothing.
            start = current = points[0];
            ++points;
            continue;
        }
        addCorner(extent, map, current);
        switch (command) {
            case Path::Command::Line:
                addCorner(extent, map, points[0]);
                break;
            case Path::Command::Cubic:
                addCubic(extent, mapPoint(map, current), mapPoint(map, points[0]), mapPoint(map, points[1]),
                         mapPoint(map, points[2]));
                break;
            case Path::Command::Arc:
                addArc(extent, map, current, points);
                break;
            case Path::Command::Move:
            case Path::Command::Close:
                break;
        }
        const int count = Path::getPointCount(command);
        points += count;
        current = command == Path::Command::Close ? start : points[-1];
    }
}

[[gnu::always_inline]] inline void addLeaf(Extent& extent, const Affine& map, const ItemInterface& item) {
    switch (item.getKind()) {
        case ItemInterface::Kind::Rect: {
            const auto& rect = static_cast<const Rect&>(item);
            addRectangle(extent, map, rect.getPosition(), rect.getPosition() + rect.getSize());
            break;
        }
        case ItemInterface::Kind::Image: {
            const auto& image = static_cast<const Image&>(item);
            addRectangle(extent, map, image.getPosition(), image.getPosition() + image.getSize());
            break;
        }
        case ItemInterface::Kind::Path:
            addPath(extent, map, static_cast<const Path&>(item));
            break;
        case ItemInterface::Kind::Text:
            addText(extent, map, static_cast<const Text&>(item));
            break;
        case ItemInterface::Kind::Node:
            break;
    }
}

struct PendingItem {
    const ItemInterface* mItem;
    Affine mOuter;
};

}  // namespace

BoundingBox ComputeEstimatedBoundingBox(const ItemInterface& item, ItemFilter filter, const Transform* matrix) {
    // Trees of the usual size need no memory of their own.
    constexpr std::size_t usualGroupCount = 16;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): filling it would cost more than the walk.
    alignas(PendingItem) std::array<std::byte, usualGroupCount * sizeof(PendingItem)> room;
    std::pmr::monotonic_buffer_resource memory(room.data(), room.size());
    std::pmr::vector<PendingItem> groups(&memory);
    groups.reserve(usualGroupCount);
    Extent extent;
    const auto visit = [&](const ItemInterface& visited, const Affine& outer) {
        if (filter != nullptr && !filter(visited)) {
            return;
        }
        const auto& transform = visited.getTransform();
        const Affine map = transform ? outer * Affine(*transform) : outer;
        if (visited.getKind() == ItemInterface::Kind::Node) {
            groups.push_back({&visited, map});
        } else {
            addLeaf(extent, map, visited);
        }
    };

    visit(item, matrix != nullptr ? Affine(*matrix) : Affine());
    while (!groups.empty()) {
        const PendingItem group = groups.back();
        groups.pop_back();
        for (const auto& child : static_cast<const Node&>(*group.mItem).getChildren()) {
            visit(*child, group.mOuter);
        }
    }
    return extent.toBox();
}

}  // namespace kt::svg
