#include "platform/annotation/ktCadViewSvgWriter.h"

#include "platform/annotation/ColorText_p.h"
#include "platform/svg/ComputeEstimatedBoundingBox.h"

#include <algorithm>
#include <cmath>

namespace kt {

namespace {

using svg::BoundingBox;
using svg::Transform;
using Point2 = Wm4::Vector2<float>;
using Point3 = Wm4::Vector3<float>;

/// From the view's plane, y up, to the drawing, y down.
Point2 toDrawing(const Point3& point) { return {point.x, -point.y}; }

bool isFinite(const Point2& point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool isFinite(const Transform& transform) {
    return isFinite(transform.mTranslation) && isFinite(transform * Point2::ONE);
}

Transform getPlacement(const ktCadAnnotation& annotation) {
    return Transform::makeTranslationRotationScale(toDrawing(annotation.mPosition), annotation.mRotation,
                                                   annotation.mScale);
}

void addTree(BoundingBox& box, const svg::Node* node, const Transform& placement) {
    if (node == nullptr || !isFinite(placement)) {
        return;
    }
    BoundingBox tree = svg::ComputeEstimatedBoundingBox(*node, nullptr, &placement);
    if (!tree.isEmpty() && !(isFinite(tree.getMinPoint()) && isFinite(tree.getMaxPoint()))) {
        // Items that will not be written must not spoil the box.
        tree = svg::ComputeEstimatedBoundingBox(*node, &svg::SvgWriter::isWritable, &placement);
    }
    box.addBox(tree);
}

void addLeaders(BoundingBox& box, const ktCadAnnotation& annotation) {
    for (const ktCadAnnotation::LineSegment& segment : annotation.mSegments) {
        const Point2 start = toDrawing(segment.mStart);
        const Point2 end = toDrawing(segment.mEnd);
        if (isFinite(start) && isFinite(end)) {
            box.addPoint(start);
            box.addPoint(end);
        }
    }
    for (const ktCadAnnotation::Shape& shape : annotation.mShapes) {
        addTree(box, shape.mNode.get(), Transform::makeTranslation(toDrawing(shape.mPosition)));
    }
}

void writeLeaders(svg::SvgWriter& writer, const ktCadAnnotation& annotation) {
    if (annotation.mSegments.empty() && annotation.mShapes.empty()) {
        return;
    }
    const ColorText color(annotation.mColor);
    svg::SvgWriter::Group group;
    group.mColor = color.get();
    group.mOutlineColor = color.get();
    writer.startGroup(group);
    writer.startLines();
    for (const ktCadAnnotation::LineSegment& segment : annotation.mSegments) {
        writer.addLine(toDrawing(segment.mStart), toDrawing(segment.mEnd));
    }
    writer.endLines();
    for (const ktCadAnnotation::Shape& shape : annotation.mShapes) {
        if (shape.mNode) {
            const Transform placement = Transform::makeTranslation(toDrawing(shape.mPosition));
            writer.writeItem(*shape.mNode, &placement);
        }
    }
    writer.endGroup();
}

void writeContent(svg::SvgWriter& writer, const ktCadAnnotation& annotation, const Transform& placement) {
    svg::SvgWriter::Group group;
    group.mTitle = annotation.mName;
    group.mTransform = placement;
    if (writer.startGroup(group)) {
        if (annotation.mRoot) {
            writer.writeItem(*annotation.mRoot);
        }
        writer.endGroup();
    }
}

/// Calls write for every annotation, and tells in the warnings which one they are about.
template <typename Write>
void writeAnnotations(svg::SvgWriter& writer, const ktCadAnnotationView& view, std::vector<std::string>& warnings,
                      Write write) {
    for (const auto& annotation : view.mAnnotations) {
        std::size_t next = writer.getWarnings().size();
        write(*annotation);
        for (; next < writer.getWarnings().size(); ++next) {
            warnings.push_back("annotation '" + annotation->mName + "': " + writer.getWarnings()[next]);
        }
    }
}

}  // namespace

void ktCadViewSvgWriter::write(const ktCadAnnotationView& view, std::string& file,
                               std::vector<std::string>& warnings) const {
    file.clear();
    BoundingBox box;
    svg::SvgWriter writer(file, {mOptions.mTextMode, mOptions.mLineWidth});
    writer.startDocument(view.mName);
    writeAnnotations(writer, view, warnings, [&](const ktCadAnnotation& annotation) {
        writeLeaders(writer, annotation);
        addLeaders(box, annotation);
    });
    writeAnnotations(writer, view, warnings, [&](const ktCadAnnotation& annotation) {
        const Transform placement = getPlacement(annotation);
        writeContent(writer, annotation, placement);
        addTree(box, annotation.mRoot.get(), placement);
    });
    if (box.isEmpty()) {
        box.addPoint(Point2::ZERO);
    }
    // Glyphs may reach a little out of their boxes, by millimetres when the text is metres high.
    // No margin may reach beyond the numbers there are.
    constexpr float sMaxSide = 1e36F;
    const float longerSide = std::min(std::max(box.getWidth(), box.getHeight()), sMaxSide);
    const float margin = std::max(mOptions.mMargin, mOptions.mMarginShare * longerSide);
    box.addMargin({margin, margin});
    writer.endDocument(box);
}

}  // namespace kt
