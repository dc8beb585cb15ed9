#include "migration/Allocation_p.h"
#include "migration/SvgColor_p.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/svg/PathBuilder.h"
#include "platform/svg/Rect.h"

#include <array>
#include <cmath>
#include <memory>
#include <span>

namespace ktLegacy {

namespace {

using kt::svg::BoundingBox;
using kt::svg::ItemInterface;
using Wm4::Vector2;
using FrameShape = ktAnnotationInterface::FrameShape;

/// How far the points of flags and parallelograms stick out, as a part of the height.
constexpr float sTipLength = 0.4F;

std::shared_ptr<ItemInterface> makeRectangle(const BoundingBox& box) {
    return migration::makeItem<kt::svg::Rect>(box.getMinPoint(), box.getSize());
}

std::shared_ptr<ItemInterface> makeClosedPath(std::span<const Vector2<float>> points) {
    kt::svg::PathBuilder builder;
    builder.startContour();
    builder.appendSegmentListMove(points);
    builder.endContour(false);
    return builder.createPathItem(true);
}

/// The smallest square around the box with the same centre.
BoundingBox makeSquare(const BoundingBox& box) {
    const float width = box.getWidth();
    const float height = box.getHeight();
    const float margin = std::abs(width - height) * 0.5F;
    BoundingBox square = box;
    square.addMargin(width > height ? Vector2<float>(0.0F, margin) : Vector2<float>(margin, 0.0F));
    return square;
}

std::shared_ptr<ItemInterface> makeFlag(const BoundingBox& box, bool hasLeftTip, bool hasRightTip) {
    const Vector2<float>& corner = box.getMinPoint();
    const float width = box.getWidth();
    const float height = box.getHeight();

    std::array<Vector2<float>, 6> points;
    std::size_t count = 0;
    if (hasLeftTip) {
        points[count++] = corner + Vector2<float>(-sTipLength * height, 0.5F * height);
    }
    points[count++] = corner + Vector2<float>(0.0F, height);
    points[count++] = corner + Vector2<float>(width, height);
    if (hasRightTip) {
        points[count++] = box.getMaxPoint() + Vector2<float>(sTipLength * height, -0.5F * height);
    }
    points[count++] = corner + Vector2<float>(width, 0.0F);
    points[count++] = corner;
    return makeClosedPath({points.data(), count});
}

/// The slanted sides pass through the lower left and the upper right corner, so that the whole box lies inside.
std::shared_ptr<ItemInterface> makeParallelogram(const BoundingBox& box) {
    const Vector2<float>& corner = box.getMinPoint();
    const float width = box.getWidth();
    const float height = box.getHeight();
    return makeClosedPath(std::array{corner, corner + Vector2<float>(-sTipLength * height, height), box.getMaxPoint(),
                                     corner + Vector2<float>(width + sTipLength * height, 0.0F)});
}

/// @param outline  the content box; enlarged where the shape asks for it. Tips never count.
std::shared_ptr<ItemInterface> makeFrameItem(int frameCode, BoundingBox& outline) {
    switch (frameCode) {
        case FrameShape::FrameSquare:
            outline = makeSquare(outline);
            return makeRectangle(outline);
        case FrameShape::FrameFlagRight:
            return makeFlag(outline, false, true);
        case FrameShape::FrameFlagLeft:
            return makeFlag(outline, true, false);
        case FrameShape::FrameFlagBoth:
            return makeFlag(outline, true, true);
        case FrameShape::FrameParallelogram:
            return makeParallelogram(outline);
        default:
            // Diamonds, triangles, hexagons, pentagons, circles and oblongs are drawn as rectangles: intended.
            return makeRectangle(outline);
    }
}

}  // namespace

int ktAnnotationMigration::buildAnnotationFrame(int frameCode, const BoundingBox& content, BoundingBox& outline,
                                                kt::svg::Node& root, const Wm4::Vector3<unsigned char>& color,
                                                const Wm4::Vector3<unsigned char>& /*textColor*/) {
    if (frameCode > FrameShape::FrameOblongRight) {
        return 0;
    }
    outline = content;
    const std::shared_ptr<ItemInterface> item = makeFrameItem(frameCode, outline);

    item->setColor(migration::colorToSvgString(color));
    item->setStyleOption(ItemInterface::sStyleNonScalingStroke);
    if (frameCode == FrameShape::FrameNone) {
        item->setOutlineColor(migration::sNoPaint);
        item->setClass("border");
    } else {
        item->setOutlineColor(migration::sBlackPaint);
    }
    root.prependChild(item);
    return 1;
}

}  // namespace ktLegacy
