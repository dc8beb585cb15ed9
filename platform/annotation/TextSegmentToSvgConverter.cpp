#include "platform/annotation/TextSegmentToSvgConverter.h"

#include "platform/annotation/TextLayout_p.h"
#include "platform/encoding/ColorText.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "platform/system/memory/ktBlockPool.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace kt::text {

namespace {

/// What the run covers in its item's own frame, y down, relative to its position.
svg::BoundingBox getItemExtent(const LaidOutRun& run) {
    const RunExtent& extent = run.mExtent;
    const auto size = static_cast<double>(run.mSize);
    const double top = std::max(static_cast<double>(run.mMetrics->mAscent), extent.mInkTop) * size;
    const double bottom = std::min(-static_cast<double>(run.mMetrics->mDescent), extent.mInkBottom) * size;
    const double left = std::min(0.0, extent.mInkLeft) * size;
    const double right = std::max(extent.mAdvance, extent.mInkRight) * size;
    return {{static_cast<float>(left), static_cast<float>(-top)},
            {static_cast<float>(right), static_cast<float>(-bottom)}};
}

std::shared_ptr<svg::Text> createItem(LaidOutRun& run, double x, double y) {
    // Texts are many; a drawing's are made together and die together.
    auto item = std::allocate_shared<svg::Text>(ktPoolAllocator<svg::Text>());
    const Wm4::Vector2<float> position(static_cast<float>(x), static_cast<float>(y));
    item->setText(run.getText());
    item->setPosition(position);
    item->setFont(run.mProperties->mFontName);
    item->setSize(run.mSize);
    item->setBold(run.mProperties->isBold());
    item->setItalic(run.mProperties->isItalic());
    item->setRightToLeft((run.mLevel & 1) != 0);
    item->setLength(static_cast<float>(run.getAdvance()));
    item->setExtent(getItemExtent(run));
    item->setGlyphSource(std::move(run.mGlyphs));
    item->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, {0.0F, 2.0F * position.y}});
    if (run.mHasOwnProperties) {
        item->setColor(encoding::ColorText(run.mProperties->mColor).get());
    }
    return item;
}

std::shared_ptr<svg::Rect> createBlockRectangle(double width, double height, const char* id) {
    auto rectangle = std::allocate_shared<svg::Rect>(
        ktPoolAllocator<svg::Rect>(), Wm4::Vector2<float>(0.0F, -static_cast<float>(height)),
        Wm4::Vector2<float>(static_cast<float>(width), static_cast<float>(height)));
    rectangle->setVisible(false);
    rectangle->setId(id);
    return rectangle;
}

}  // namespace

class TextSegmentToSvgConverter::Layout {
public:
    /// The layout at work; its buffers serve text after text.
    TextLayout mTextLayout;
};

TextSegmentToSvgConverter::TextSegmentToSvgConverter() : mLayout(std::make_unique<Layout>()) {}

TextSegmentToSvgConverter::~TextSegmentToSvgConverter() = default;

std::vector<FontProblem> TextSegmentToSvgConverter::takeFontProblems() const {
    std::vector<FontProblem> problems;
    mLayout->mTextLayout.takeFontProblems(problems);
    for (auto problem = problems.begin(); problem != problems.end();) {
        problem = std::find(problems.begin(), problem, *problem) != problem ? problems.erase(problem) : problem + 1;
    }
    return problems;
}

bool TextSegmentToSvgConverter::convertTextAreaToSvg(const TextArea& area, svg::Node& target, Wm4::Vector2<float>* size,
                                                     const char* boundingBoxId) const {
    TextLayout& layout = mLayout->mTextLayout;
    if (!layout.layOut(area)) {
        return false;
    }
    const bool hasExtent = layout.hasExtent();
    if (size != nullptr) {
        *size = hasExtent
                    ? Wm4::Vector2<float>(static_cast<float>(layout.getWidth()), static_cast<float>(layout.getHeight()))
                    : Wm4::Vector2<float>();
    }
    if (!hasExtent) {
        return true;
    }
    svg::Node::Children& items = target.editChildren();
    if (items.empty()) {
        items.reserve(layout.editRuns().size() + 1);
    }
    if (boundingBoxId != nullptr) {
        items.push_back(createBlockRectangle(layout.getWidth(), layout.getHeight(), boundingBoxId));
    }
    double top = 0.0;
    for (const LaidOutLine& line : layout.getLines()) {
        const double left = line.mIsRightToLeft ? layout.getWidth() - line.mWidth : 0.0;
        const double baseLine = top - line.mAscent;
        for (std::size_t index = line.mFirstRun; index < line.mFirstRun + line.mRunCount; ++index) {
            LaidOutRun& run = layout.editRuns()[index];
            items.push_back(createItem(run, left + run.mX, baseLine + run.mShift));
        }
        top = baseLine - line.mDescent - line.mGap;
    }
    return true;
}

}  // namespace kt::text
