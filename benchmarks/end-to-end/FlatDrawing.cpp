#include "benchmarks/end-to-end/FlatDrawing.h"

#include "platform/svg/Path.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ktBenchmark {

namespace {

using kt::svg::ItemInterface;
using kt::svg::Node;
using kt::svg::Transform;

class Flattener {
public:
    explicit Flattener(FlatDrawing& drawing) : mDrawing(drawing) {}

    void addItem(const ItemInterface& item, const Transform& outer) {
        const Transform frame = item.getTransform() ? outer * *item.getTransform() : outer;
        switch (item.getKind()) {
            case ItemInterface::Kind::Node:
                for (const auto& child : static_cast<const Node&>(item).getChildren()) {
                    addItem(*child, frame);
                }
                break;
            case ItemInterface::Kind::Rect:
                addRect(static_cast<const kt::svg::Rect&>(item), frame);
                break;
            case ItemInterface::Kind::Path:
                addPath(static_cast<const kt::svg::Path&>(item), frame);
                break;
            case ItemInterface::Kind::Text:
                addText(static_cast<const kt::svg::Text&>(item), frame);
                break;
            case ItemInterface::Kind::Image:
                break;
        }
    }

private:
    static FlatDrawing::Point map(const Transform& frame, const Wm4::Vector2<float>& point) {
        const Wm4::Vector2<float> mapped = frame * point;
        return {mapped.x, mapped.y};
    }

    void addRect(const kt::svg::Rect& rect, const Transform& frame) {
        if (!rect.isVisible()) {
            return;
        }
        const Wm4::Vector2<float> low = rect.getPosition();
        const Wm4::Vector2<float> high = low + rect.getSize();
        mDrawing.mOutlines.push_back(
            {{map(frame, low), map(frame, {high.x, low.y}), map(frame, high), map(frame, {low.x, high.y})}, true});
    }

    void addPath(const kt::svg::Path& path, const Transform& frame) {
        const Wm4::Vector2<float>* point = path.getPoints().data();
        for (const auto command : path.getCommands()) {
            const int count = kt::svg::Path::getPointCount(command);
            if (command == kt::svg::Path::Command::Move) {
                mDrawing.mOutlines.emplace_back();
            }
            if (command == kt::svg::Path::Command::Close) {
                mDrawing.mOutlines.back().mIsClosed = true;
            } else {
                mDrawing.mOutlines.back().mPoints.push_back(map(frame, point[count - 1]));
            }
            point += count;
        }
    }

    void addText(const kt::svg::Text& text, const Transform& frame) {
        mDrawing.mTexts.push_back({map(frame, text.getPosition()), text.getSize(), text.getFont(), text.getText()});
    }

    FlatDrawing& mDrawing;
};

void setExtent(FlatDrawing& drawing) {
    constexpr double limit = std::numeric_limits<double>::max();
    // Texts are a little wider and higher than where they start.
    constexpr double margin = 100.0;
    FlatDrawing::Point low{limit, limit};
    FlatDrawing::Point high{-limit, -limit};
    const auto add = [&](const FlatDrawing::Point& point) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    };
    for (const auto* outlines : {&drawing.mLines, &drawing.mOutlines}) {
        for (const FlatDrawing::Outline& outline : *outlines) {
            std::for_each(outline.mPoints.begin(), outline.mPoints.end(), add);
        }
    }
    for (const FlatDrawing::TextRun& text : drawing.mTexts) {
        add(text.mPosition);
    }
    drawing.mLow = {low.x - margin, low.y - margin};
    drawing.mHigh = {high.x + margin, high.y + margin};
}

}  // namespace

FlatDrawing flatten(const kt::ktCadAnnotationView& view) {
    static const Transform sFlip{Wm4::Matrix2<float>(1.0F, 0.0F, 0.0F, -1.0F), {}};
    FlatDrawing drawing;
    Flattener flattener(drawing);
    for (const auto& annotation : view.mAnnotations) {
        for (const auto& segment : annotation->mSegments) {
            drawing.mLines.push_back(
                {{{segment.mStart.x, -segment.mStart.y}, {segment.mEnd.x, -segment.mEnd.y}}, false});
        }
        for (const auto& shape : annotation->mShapes) {
            flattener.addItem(*shape.mNode, sFlip * Transform::makeTranslation({shape.mPosition.x, shape.mPosition.y}));
        }
        const Wm4::Vector2<float> position(annotation->mPosition.x, annotation->mPosition.y);
        flattener.addItem(*annotation->mRoot, sFlip * Transform::makeTranslationRotationScale(
                                                          position, annotation->mRotation, annotation->mScale));
    }
    setExtent(drawing);
    return drawing;
}

}  // namespace ktBenchmark
