#include "migration/Allocation_p.h"
#include "migration/SvgColor_p.h"
#include "migration/Workspace_p.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/svg/PathBuilder.h"

#include <initializer_list>
#include <memory>

namespace ktLegacy {

namespace {

using kt::svg::ItemInterface;
using kt::svg::Node;
using kt::svg::PathBuilder;
using Wm4::Vector2;
using Wm4::Vector3;
using Leader = ktAnnotationInterface::Leader;

/// Local frame of a head: its origin is the leader's target point, with y pointing up.
struct HeadFrame {
    Vector2<float> mAlong;   ///< unit vector from the anchor to the target point; zero when there is no direction
    Vector2<float> mAcross;  ///< mAlong turned a quarter turn
    float mSize = 0.0F;
};

/// Builders of the two kinds of heads: each kind has a style of its own.
struct HeadBuilders {
    PathBuilder mLines;
    PathBuilder mFilled;
};

HeadFrame makeHeadFrame(const Vector3<float>& target, const Vector3<float>& anchor, float size) {
    const Vector2<float> difference(target.x - anchor.x, target.y - anchor.y);
    const float length = difference.Length();
    const Vector2<float> along = length > Wm4::Mathf::ZERO_TOLERANCE ? difference / length : Vector2<float>::ZERO;
    return {along, {-along.y, along.x}, size};
}

void appendContour(PathBuilder& builder, std::initializer_list<Vector2<float>> points) {
    builder.startContour();
    builder.appendSegmentListMove(points);
    builder.endContour(false);
}

void appendSquare(const HeadFrame& frame, PathBuilder& builder) {
    const float half = frame.mSize * 0.5F;
    const Vector2<float> along = half * frame.mAlong;
    const Vector2<float> across = half * frame.mAcross;
    appendContour(builder, {-along - across, -along + across, along + across, along - across});
}

void appendCircle(const HeadFrame& frame, PathBuilder& builder) {
    const float radius = frame.mSize * 0.5F;
    builder.appendEllipse(Vector2<float>::ZERO, {radius, radius}, 0.0F, 2.0F * Wm4::Mathf::PI);
}

void appendArrow(const HeadFrame& frame, PathBuilder& builder) {
    const Vector2<float> base = -frame.mSize * frame.mAlong;
    const Vector2<float> barb = (0.3F * frame.mSize) * frame.mAcross;
    appendContour(builder, {base + barb, Vector2<float>::ZERO, base - barb});
}

/// The triangle points the other way than the arrow, its base at the target point: intended.
void appendTriangle(const HeadFrame& frame, PathBuilder& builder) {
    const Vector2<float> base = frame.mSize * Vector2<float>(frame.mAlong.y, -frame.mAlong.x);
    appendContour(builder, {0.5F * base, -frame.mSize * frame.mAlong, -0.5F * base});
}

/// The plus keeps its arms of one unit whatever the head size: intended.
void appendPlus(PathBuilder& builder) {
    builder.appendLine({-1.0F, 0.0F}, {1.0F, 0.0F});
    builder.appendLine({0.0F, -1.0F}, {0.0F, 1.0F});
}

void appendCross(const HeadFrame& frame, PathBuilder& builder) {
    const float reach = frame.mSize * 0.7071F * 0.5F;
    builder.appendLine({-reach, -reach}, {reach, reach});
    builder.appendLine({-reach, reach}, {reach, -reach});
}

/// Adds the head's outline to the builder of its kind; false for an unknown head, which adds nothing.
bool appendHead(Leader::HeadType head, const HeadFrame& frame, HeadBuilders& builders) {
    switch (head) {
        case Leader::HeadNone:
            return true;
        case Leader::HeadSquare:
            appendSquare(frame, builders.mFilled);
            return true;
        case Leader::HeadCircle:
            appendCircle(frame, builders.mFilled);
            return true;
        case Leader::HeadArrow:
            appendArrow(frame, builders.mFilled);
            return true;
        case Leader::HeadPlus:
            appendPlus(builders.mLines);
            return true;
        case Leader::HeadCross:
            appendCross(frame, builders.mLines);
            return true;
        case Leader::HeadTriangle:
            appendTriangle(frame, builders.mFilled);
            return true;
    }
    return false;
}

/// Takes what the builders hold; null when that is nothing.
std::shared_ptr<Node> takeHeadNode(HeadBuilders& builders) {
    const std::shared_ptr<ItemInterface> lines = builders.mLines.createPathItem(true);
    const std::shared_ptr<ItemInterface> filled = builders.mFilled.createPathItem(true);
    if (lines == nullptr && filled == nullptr) {
        return nullptr;
    }
    auto node = migration::makeItem<Node>();
    if (lines != nullptr) {
        lines->setColor(migration::sNoPaint);
        lines->setStyleOption(ItemInterface::sStyleNonScalingStroke);
        node->appendChild(lines);
    }
    if (filled != nullptr) {
        filled->setOutlineColor(migration::sNoPaint);
        node->appendChild(filled);
    }
    node->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, Vector2<float>::ZERO});
    return node;
}

}  // namespace

bool ktAnnotationMigration::createLeaders(const std::vector<Leader>& leaders, kt::ktCadAnnotation& target,
                                          const Vector3<float>& anchor, const Vector2<float>& offset) {
    if (leaders.empty()) {
        return true;
    }
    const migration::FailureLog::Call call(mWorkspace->mLog);
    migration::reserveMore(target.mSegments, leaders.size());
    migration::reserveMore(target.mLeaderAnchors, leaders.size());

    HeadBuilders builders;
    for (const Leader& leader : leaders) {
        target.mSegments.emplace_back(leader.mPosition, anchor);
        target.mLeaderAnchors.emplace_back(anchor, offset);
        if (!appendHead(leader.mHead, makeHeadFrame(leader.mPosition, anchor, mHeadSize), builders)) {
            mWorkspace->mLog.tell(ktFindingCode::UnknownLeaderHead) << "Unhandled leader head";
        }
        if (std::shared_ptr<Node> node = takeHeadNode(builders)) {
            target.mShapes.emplace_back(std::move(node), leader.mPosition);
        }
    }
    return true;
}

}  // namespace ktLegacy
