#include "platform/svg/SvgWriter.h"

#include "platform/svg/FileHead_p.h"
#include "platform/svg/ItemWriter_p.h"
#include "platform/svg/Node.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace kt::svg {

namespace {

/// What SVG paints with where nothing is said.
constexpr Paint sInitialPaint{"#000000", "none"};

/// Deepest group: below it stand an element and what that needs inside (a run of glyphs).
constexpr int sMaxGroupDepth = SvgWriter::sMaxDepth - 2;

/// Lines go on in another element when one has this many bytes.
constexpr std::size_t sLinesSize = 1'000'000;

/// A text whose font is worth saying once for the group: there are others. Null when there is none.
const Text* findCommonFont(const Node& node) {
    const auto isWritten = [](const auto& child) {
        return child->getKind() == ItemInterface::Kind::Text && SvgWriter::isWritable(*child) &&
               static_cast<const Text&>(*child).getSize() > 0.0F;
    };
    const auto& children = node.getChildren();
    const auto first = std::find_if(children.begin(), children.end(), isWritten);
    const bool hasOthers = first != children.end() && std::any_of(std::next(first), children.end(), isWritten);
    return hasOthers ? static_cast<const Text*>(first->get()) : nullptr;
}

/// Whether the product of both maps is a translation.
bool isUndone(const Affine& outer, const Transform& inner) {
    const auto xx = static_cast<double>(inner.mMatrix(0, 0));
    const auto xy = static_cast<double>(inner.mMatrix(0, 1));
    const auto yx = static_cast<double>(inner.mMatrix(1, 0));
    const auto yy = static_cast<double>(inner.mMatrix(1, 1));
    return outer.mXx * xx + outer.mXy * yx == 1.0 && outer.mXx * xy + outer.mXy * yy == 0.0 &&
           outer.mYx * xx + outer.mYy * yx == 0.0 && outer.mYx * xy + outer.mYy * yy == 1.0;
}

/// Whether the group's transform vanishes into its children: they are texts that stand upright only with it.
bool isUndoneByChildren(const Affine& map, const Node& node) {
    return std::all_of(node.getChildren().begin(), node.getChildren().end(), [&](const auto& child) {
        if (child->getKind() == ItemInterface::Kind::Rect && !static_cast<const Rect&>(*child).isVisible()) {
            return true;
        }
        return child->getKind() == ItemInterface::Kind::Text && child->getTransform() &&
               isUndone(map, *child->getTransform());
    });
}

}  // namespace

/// The file being written: the open groups, and the walk through trees of items.
class SvgWriter::Document {
public:
    explicit Document(const Options& options) : mOptions(options), mItems(*mBuffer, options) {}

    void start(std::string_view title);
    void selectLayer(Layer layer);
    std::vector<std::string_view> end(const BoundingBox& viewBox, std::string_view description);
    bool startGroup(const Group& group);
    void endGroup();
    void startLines();
    void addLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to);
    void endLines();
    void writeTree(const ItemInterface& item, const Affine& placement);
    std::vector<Warning> takeWarnings() { return mItems.takeWarnings(); }

private:
    /// A group opened by the caller. It keeps its colours: the caller's texts need not outlive the call.
    struct CallerGroup {
        std::string mColor;
        std::string mOutlineColor;
        double mScale;
        std::size_t mStart;         ///< where its tag begins
        std::size_t mContentStart;  ///< where its content begins
    };

    /// A group of the tree being walked.
    struct TreeGroup {
        const Node* mNode;
        std::size_t mNextChild;
        WriteContext mContext;  ///< of the children
        std::size_t mStart;
        std::size_t mContentStart;
        bool mIsOpen;  ///< has an element of its own
    };

    WriteContext getContext() const;
    /// Opens a group of the tree, unless there is nothing to write in it.
    void enter(const Node& node, const WriteContext& outer);
    void leave(const TreeGroup& group);
    /// Ends the innermost element; false when it held nothing and was taken back.
    bool closeElement(std::size_t start, std::size_t contentStart);
    bool canOpen() const { return mDepth < sMaxGroupDepth; }

    Options mOptions;
    std::string mTitle;
    std::string mHead;
    std::string mGround;
    TextBuffer mBeneath;
    TextBuffer mAbove;
    TextBuffer* mBuffer = &mAbove;  ///< of the layer that is written
    ItemWriter mItems;
    std::vector<CallerGroup> mCallerGroups;
    std::vector<TreeGroup> mTreeGroups;
    int mDepth = 0;
    std::size_t mLinesStart = 0;
    std::size_t mLinesContentStart = 0;
};

void SvgWriter::Document::start(std::string_view title) {
    mTitle = title;
    mDepth = 1;
}

void SvgWriter::Document::selectLayer(Layer layer) {
    mBuffer = layer == Layer::Beneath ? &mBeneath : &mAbove;
    mItems.setBuffer(*mBuffer);
}

std::vector<std::string_view> SvgWriter::Document::end(const BoundingBox& viewBox, std::string_view description) {
    mAbove.append("</svg>\n");
    const FileHead head(mOptions, viewBox);
    mHead = head.makeText(mTitle, description);
    mGround = head.makeGround();
    mDepth = 0;
    std::vector<std::string_view> pieces{mHead};
    mItems.getFonts().appendElement(pieces);
    if (!mItems.getGlyphs().isEmpty() || !mItems.getPictures().isEmpty()) {
        pieces.emplace_back("<defs>\n");
        mItems.getGlyphs().appendElements(pieces);
        mItems.getPictures().appendElements(pieces);
        pieces.emplace_back("</defs>\n");
    }
    pieces.emplace_back(mGround);
    mBeneath.appendPieces(pieces);
    mAbove.appendPieces(pieces);
    return pieces;
}

WriteContext SvgWriter::Document::getContext() const {
    if (mCallerGroups.empty()) {
        return {{}, 1.0, sInitialPaint, sInitialPaint};
    }
    const CallerGroup& group = mCallerGroups.back();
    const Paint paint{group.mColor, group.mOutlineColor};
    return {{}, group.mScale, paint, paint};
}

bool SvgWriter::Document::startGroup(const Group& group) {
    const Affine map(group.mTransform);
    if (!map.isFinite()) {
        mItems.warn(Warning::Kind::NumberNotFinite, "a group", sNotFinite);
        return false;
    }
    const WriteContext context = getContext();
    const Paint paint{group.mColor.empty() ? context.mWritten.mColor : group.mColor,
                      group.mOutlineColor.empty() ? context.mWritten.mOutlineColor : group.mOutlineColor};
    const std::size_t start = mBuffer->getSize();
    mBuffer->append("<g");
    if (group.mTransform != Transform()) {
        mItems.appendTransform(map, context.mScale);
    }
    mItems.appendPaint(paint, context.mWritten);
    mBuffer->append(">\n");
    const std::size_t contentStart = mBuffer->getSize();
    appendTitle(*mBuffer, group.mTitle);
    mCallerGroups.push_back({std::string(paint.mColor), std::string(paint.mOutlineColor),
                             context.mScale * map.getScale(), start, contentStart});
    ++mDepth;
    return true;
}

bool SvgWriter::Document::closeElement(std::size_t start, std::size_t contentStart) {
    if (mBuffer->getSize() == contentStart) {
        mBuffer->truncate(start);
        return false;
    }
    mBuffer->append("</g>\n");
    return true;
}

void SvgWriter::Document::endGroup() {
    closeElement(mCallerGroups.back().mStart, mCallerGroups.back().mContentStart);
    mCallerGroups.pop_back();
    --mDepth;
}

void SvgWriter::Document::startLines() {
    mLinesStart = mBuffer->getSize();
    mBuffer->append("<path d=\"");
    mLinesContentStart = mBuffer->getSize();
}

void SvgWriter::Document::addLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to) {
    if (!std::isfinite(from.x) || !std::isfinite(from.y) || !std::isfinite(to.x) || !std::isfinite(to.y)) {
        mItems.warn(Warning::Kind::NumberNotFinite, "a line", sNotFinite);
        return;
    }
    if (mBuffer->getSize() - mLinesStart > sLinesSize) {
        endLines();
        startLines();
    }
    constexpr std::size_t lineSize = std::size_t{4} * (sMaxNumberLength + 1);
    char* out = mBuffer->reserve(lineSize);
    *out++ = 'M';
    out = formatCoordinate(out, static_cast<double>(from.x));
    *out++ = ' ';
    out = formatCoordinate(out, static_cast<double>(from.y));
    *out++ = 'L';
    out = formatCoordinate(out, static_cast<double>(to.x));
    *out++ = ' ';
    mBuffer->commit(formatCoordinate(out, static_cast<double>(to.y)));
}

void SvgWriter::Document::endLines() {
    if (mBuffer->getSize() == mLinesContentStart) {
        mBuffer->truncate(mLinesStart);
    } else {
        mBuffer->append("\"/>\n");
    }
}

void SvgWriter::Document::enter(const Node& node, const WriteContext& outer) {
    if (node.getChildren().empty()) {
        return;
    }
    WriteContext context = outer;
    if (node.getTransform()) {
        context.mMap = outer.mMap * Affine(*node.getTransform());
        if (!context.mMap.isFinite()) {
            mItems.warn(Warning::Kind::NumberNotFinite, "a group", sNotFinite);
            return;
        }
    }
    context.mInherited = mItems.getPaint(node, outer.mInherited);

    const Text* font = mOptions.mTextMode == TextMode::Text && outer.mFont == nullptr ? findCommonFont(node) : nullptr;

    // A single child bears its group's transform and colours itself.
    const bool isForMany = node.getChildren().size() > 1;
    const bool hasNames = node.getId() || node.getClass();
    const bool hasColor = isForMany && node.getColor() && context.mInherited.mColor != outer.mWritten.mColor;
    const bool hasTransform = isForMany && !context.mMap.isTranslation() && !isUndoneByChildren(context.mMap, node);
    if (!canOpen() || !(hasNames || hasColor || hasTransform || font != nullptr)) {
        mTreeGroups.push_back({&node, 0, context, 0, 0, false});
        return;
    }
    const std::size_t start = mBuffer->getSize();
    mBuffer->append("<g");
    if (hasTransform) {
        mItems.appendTransform(context.mMap, outer.mScale);
        context.mScale *= context.mMap.getScale();
        context.mMap = {};
    }
    if (hasColor) {
        context.mWritten.mColor = context.mInherited.mColor;
        mItems.appendPaint(context.mWritten, outer.mWritten);
    }
    std::string_view fontClass;
    if (font != nullptr) {
        context.mFont = &mItems.findFont(*font, getDecimals(context.mScale));
        fontClass = context.mFont->mClass;
    }
    mItems.appendNames(node, fontClass);
    mBuffer->append(">\n");
    ++mDepth;
    mTreeGroups.push_back({&node, 0, context, start, mBuffer->getSize(), true});
}

void SvgWriter::Document::leave(const TreeGroup& group) {
    if (!group.mIsOpen) {
        return;
    }
    --mDepth;
    if (!closeElement(group.mStart, group.mContentStart) && group.mNode->getId()) {
        mItems.forgetId(*group.mNode->getId());
    }
}

void SvgWriter::Document::writeTree(const ItemInterface& item, const Affine& placement) {
    const auto visit = [this](const ItemInterface& visited, const WriteContext& context) {
        if (visited.getKind() == ItemInterface::Kind::Node) {
            enter(static_cast<const Node&>(visited), context);
        } else {
            mItems.writeItem(visited, context);
        }
    };

    mItems.startTree();
    WriteContext context = getContext();
    context.mMap = placement;
    visit(item, context);
    while (!mTreeGroups.empty()) {
        TreeGroup& group = mTreeGroups.back();
        if (group.mNextChild == group.mNode->getChildren().size()) {
            leave(group);
            mTreeGroups.pop_back();
        } else {
            const Node::Children& children = group.mNode->getChildren();
            const ItemInterface& child = *children[group.mNextChild++];
            const bool isLeftOut = !mOptions.mDrawsPictureBackgrounds && group.mNextChild < children.size() &&
                                   mItems.isPictureBackground(child, *children[group.mNextChild]);
            if (!isLeftOut) {
                visit(child, group.mContext);
            }
        }
    }
}

SvgWriter::SvgWriter(const Options& options) : mDocument(std::make_unique<Document>(options)) {}

SvgWriter::~SvgWriter() = default;

void SvgWriter::startDocument(std::string_view title) { mDocument->start(title); }

void SvgWriter::selectLayer(Layer layer) { mDocument->selectLayer(layer); }

bool SvgWriter::startGroup(const Group& group) { return mDocument->startGroup(group); }

void SvgWriter::endGroup() { mDocument->endGroup(); }

void SvgWriter::startLines() { mDocument->startLines(); }

void SvgWriter::addLine(const Wm4::Vector2<float>& from, const Wm4::Vector2<float>& to) {
    mDocument->addLine(from, to);
}

void SvgWriter::endLines() { mDocument->endLines(); }

void SvgWriter::writeItem(const ItemInterface& item, const Transform* placement) {
    mDocument->writeTree(item, placement != nullptr ? Affine(*placement) : Affine());
}

std::vector<std::string_view> SvgWriter::endDocument(const BoundingBox& viewBox, std::string_view description) {
    return mDocument->end(viewBox, description);
}

std::vector<SvgWriter::Warning> SvgWriter::takeWarnings() { return mDocument->takeWarnings(); }

}  // namespace kt::svg
