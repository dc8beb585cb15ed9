#include "platform/annotation/ktCadViewSvgWriter.h"

#include "platform/encoding/ColorText.h"
#include "platform/svg/ComputeEstimatedBoundingBox.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kt {

namespace {

using svg::BoundingBox;
using svg::Transform;
using Point2 = Wm4::Vector2<float>;
using Point3 = Wm4::Vector3<float>;

/// Parts of any drawing lie nearer to its origin than this, in millimetres: a kilometre.
constexpr float sUsualReach = 1e6F;

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

}  // namespace

std::string ktCadViewSvgWriter::Warning::getSentence() const { return "annotation '" + mName + "': " + mWhat; }

ktCadViewSvgWriter::ktCadViewSvgWriter() = default;

ktCadViewSvgWriter::ktCadViewSvgWriter(const Options& options) : mOptions(options) {}

ktCadViewSvgWriter::~ktCadViewSvgWriter() = default;

void ktCadViewSvgWriter::begin(std::string_view viewName) {
    using svg::SvgWriter;
    mWriter = std::make_unique<SvgWriter>(SvgWriter::Options{mOptions.mTextMode, mOptions.mLineWidth,
                                                             mOptions.mDrawsPictureBackgrounds, mOptions.mBackground});
    mWriter->startDocument(viewName);
    mBox = {};
    mAnnotationCount = 0;
    mWarnings.clear();
    mReach = sUsualReach;
}

void ktCadViewSvgWriter::add(const ktCadAnnotation& annotation) {
    writeLeaders(annotation);
    writeContent(annotation);
    for (svg::SvgWriter::Warning& warning : mWriter->takeWarnings()) {
        mWarnings.push_back({std::move(warning), mAnnotationCount, annotation.mName});
    }
    noteReach(annotation);
    ++mAnnotationCount;
}

void ktCadViewSvgWriter::noteReach(const ktCadAnnotation& annotation) {
    const float reach =
        mBox.isEmpty()
            ? 0.0F
            : std::max({-mBox.getMinPoint().x, -mBox.getMinPoint().y, mBox.getMaxPoint().x, mBox.getMaxPoint().y});
    if (reach > mReach) {
        mReach = reach;
        mReachingAnnotation = mAnnotationCount;
        mReachingName = annotation.mName;
    }
}

void ktCadViewSvgWriter::warnOfPage() {
    if (!(mReach > sUsualReach)) {
        return;
    }
    const bool isWide = mBox.getWidth() >= mBox.getHeight();
    const double kilometres = static_cast<double>(std::max(mBox.getWidth(), mBox.getHeight())) * 1e-6;
    std::array<char, 32> digits{};
    char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), kilometres, std::chars_format::general, 3).ptr;
    std::string what = "a coordinate makes the page ";
    what.append(static_cast<const char*>(digits.data()), static_cast<const char*>(end))
        .append(isWide ? " km wide" : " km high")
        .append(": nothing can be seen on it");
    Warning& warning = mWarnings.emplace_back();
    warning.mKind = Warning::Kind::PageTooLarge;
    warning.mWhat = std::move(what);
    warning.mAnnotation = mReachingAnnotation;
    warning.mName = mReachingName;
}

void ktCadViewSvgWriter::writeLeaders(const ktCadAnnotation& annotation) {
    if (annotation.mSegments.empty() && annotation.mShapes.empty()) {
        return;
    }
    const encoding::ColorText color(annotation.mColor);
    svg::SvgWriter::Group group;
    group.mColor = color.get();
    group.mOutlineColor = color.get();
    mWriter->selectLayer(svg::SvgWriter::Layer::Beneath);
    mWriter->startGroup(group);
    mWriter->startLines();
    for (const ktCadAnnotation::LineSegment& segment : annotation.mSegments) {
        mWriter->addLine(toDrawing(segment.mStart), toDrawing(segment.mEnd));
    }
    mWriter->endLines();
    for (const ktCadAnnotation::Shape& shape : annotation.mShapes) {
        if (shape.mNode) {
            const Transform placement = Transform::makeTranslation(toDrawing(shape.mPosition));
            mWriter->writeItem(*shape.mNode, &placement);
        }
    }
    mWriter->endGroup();
    addLeaders(mBox, annotation);
}

void ktCadViewSvgWriter::writeContent(const ktCadAnnotation& annotation) {
    svg::SvgWriter::Group group;
    group.mTitle = annotation.mName;
    group.mTransform = getPlacement(annotation);
    mWriter->selectLayer(svg::SvgWriter::Layer::Above);
    if (mWriter->startGroup(group)) {
        if (annotation.mRoot) {
            mWriter->writeItem(*annotation.mRoot);
        }
        mWriter->endGroup();
    }
    addTree(mBox, annotation.mRoot.get(), group.mTransform);
}

std::vector<std::string_view> ktCadViewSvgWriter::finish() {
    if (mBox.isEmpty()) {
        mBox.addPoint(Point2::ZERO);
    }
    warnOfPage();
    // Glyphs may reach a little out of their boxes, by millimetres when the text is metres high.
    // No margin may reach beyond the numbers there are.
    constexpr float sMaxSide = 1e36F;
    const float longerSide = std::min(std::max(mBox.getWidth(), mBox.getHeight()), sMaxSide);
    const float margin = std::max(mOptions.mMargin, mOptions.mMarginShare * longerSide);
    mBox.addMargin({margin, margin});
    const std::string count = std::to_string(mAnnotationCount);
    return mWriter->endDocument(mBox, count + (mAnnotationCount == 1 ? " annotation" : " annotations"));
}

void ktCadViewSvgWriter::write(const ktCadAnnotationView& view, std::string& file) {
    begin(view.mName);
    for (const auto& annotation : view.mAnnotations) {
        add(*annotation);
    }
    file.clear();
    for (const std::string_view piece : finish()) {
        file += piece;
    }
}

}  // namespace kt
