#include "migration/Allocation_p.h"
#include "migration/Workspace_p.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/wm4/Wm4IntrLine2Line2.h"
#include "platform/wm4/Wm4Line2.h"
#include "platform/wm4/Wm4Math.h"

#include <optional>

namespace ktLegacy {

namespace {

using Wm4::Vector2;
using Wm4::Vector3;
using MeasureLeader = ktAnnotationInterface::MeasureLeader;
using LineSegment = kt::ktCadAnnotation::LineSegment;

/// Half the width of an arrow head of length 1: it opens 15 degrees to each side.
constexpr float sTangentOf15Degrees = 0.2679F;

/// Segments of one measure leader: at most two of the dimension line, two for each head, one extension line each.
constexpr std::size_t sMaxSegments = 8;

Vector2<float> toPlane(const Vector3<float>& point) { return {point.x, point.y}; }

Vector3<float> toSpace(const Vector2<float>& point, float z) { return {point.x, point.y, z}; }

/// Lines of one measure leader within the view's plane.
struct Construction {
    Vector2<float> mAcross;  ///< from the measured points to the dimension line; unit vector
    Vector2<float> mAlong;   ///< along the dimension line; unit vector
    Vector2<float> mFootA;   ///< where the perpendicular through point A meets the dimension line
    Vector2<float> mFootB;
};

/// Direction from the measured points to the dimension line. Without an offset it is perpendicular to the line from A
/// to B; with neither it is zero, and the construction fails.
Vector2<float> findAcrossDirection(const MeasureLeader& leader) {
    const Vector2<float> offset = toPlane(leader.mOffsetVector);
    const float offsetLength = offset.Length();
    if (offsetLength > Wm4::Mathf::ZERO_TOLERANCE) {
        const Vector2<float> direction = offset / offsetLength;
        if (direction.SquaredLength() != 0.0F) {
            return direction;
        }
    }
    const Vector2<float> measured = toPlane(leader.mPointA) - toPlane(leader.mPointB);
    const float measuredLength = measured.Length();
    if (measuredLength > Wm4::Mathf::ZERO_TOLERANCE) {
        return Vector2<float>(-measured.y, measured.x) / measuredLength;
    }
    return {-0.0F, 0.0F};
}

std::optional<Vector2<float>> intersect(const Wm4::Line2<float>& line0, const Wm4::Line2<float>& line1) {
    Wm4::IntrLine2Line2<float> intersection(line0, line1);
    if (!intersection.Find() || intersection.GetIntersectionType() != Wm4::IntrLine2Line2<float>::IT_POINT) {
        return std::nullopt;
    }
    return intersection.GetPoint();
}

std::optional<Construction> construct(const MeasureLeader& leader, const Vector2<float>& anchor) {
    const Vector2<float> across = findAcrossDirection(leader);
    const Vector2<float> along(-across.y, across.x);
    const Wm4::Line2<float> dimensionLine(anchor, along);
    const auto footA = intersect({toPlane(leader.mPointA), across}, dimensionLine);
    const auto footB = intersect({toPlane(leader.mPointB), across}, dimensionLine);
    if (!footA || !footB) {
        return std::nullopt;
    }
    return Construction{across, along, *footA, *footB};
}

/// Draws from the anchor to both feet when it lies between them, else to the farther one; a tie goes to A.
void appendDimensionLine(const Construction& construction, const Vector3<float>& anchor,
                         std::vector<LineSegment>& segments) {
    const Vector2<float> toA = construction.mFootA - toPlane(anchor);
    const Vector2<float> toB = construction.mFootB - toPlane(anchor);
    const Vector3<float> footA = toSpace(construction.mFootA, anchor.z);
    const Vector3<float> footB = toSpace(construction.mFootB, anchor.z);
    if (toA.Dot(toB) < 0.0F) {
        segments.emplace_back(anchor, footB);
        segments.emplace_back(anchor, footA);
    } else {
        segments.emplace_back(anchor, toB.SquaredLength() > toA.SquaredLength() ? footB : footA);
    }
}

/// Where the barbs of the two heads lie as seen from their tips, the feet.
struct BarbDirections {
    Vector2<float> mAtA;
    Vector2<float> mAtB;
};

BarbDirections findBarbDirections(MeasureLeader::ArrowDirection arrows, const Vector2<float>& along) {
    switch (arrows) {
        case MeasureLeader::ArrowsUnspecified:
            return {-along, along};
        case MeasureLeader::ArrowsOutOut:
            return {along, -along};
        case MeasureLeader::ArrowsInOut:
            return {-along, -along};
        case MeasureLeader::ArrowsOutIn:
            break;
    }
    return {along, along};
}

/// An open head of two lines: from the first barb to the tip and on to the second barb.
void appendArrowHead(const Vector3<float>& tip, const Vector2<float>& barbDirection, const Vector2<float>& across,
                     float size, std::vector<LineSegment>& segments) {
    const Vector2<float> middle = toPlane(tip) + size * barbDirection;
    const Vector2<float> halfWidth = (sTangentOf15Degrees * size) * across;
    segments.emplace_back(toSpace(middle + halfWidth, tip.z), tip);
    segments.emplace_back(tip, toSpace(middle - halfWidth, tip.z));
}

/// Reaches the foot or the tip of the offset vector, whichever is farther from the measured point.
void appendExtensionLine(const Vector3<float>& measured, const Vector3<float>& offset, const Vector3<float>& foot,
                         std::vector<LineSegment>& segments) {
    const Vector2<float> toFoot = toPlane(foot) - toPlane(measured);
    const bool isTipFarther = toPlane(offset).SquaredLength() > toFoot.SquaredLength();
    segments.emplace_back(measured, isTipFarther ? measured + offset : foot);
}

}  // namespace

bool ktAnnotationMigration::createMeasureLeaders(const std::vector<MeasureLeader>& leaders, kt::ktCadAnnotation& target,
                                                 const Vector3<float>& anchor, const Vector2<float>& offset) {
    if (leaders.empty()) {
        return true;
    }
    const migration::FailureLog::Call call(mWorkspace->mLog);
    migration::reserveMore(target.mSegments, leaders.size() * sMaxSegments);
    migration::reserveMore(target.mLeaderAnchors, leaders.size());

    for (const MeasureLeader& leader : leaders) {
        const std::optional<Construction> construction = construct(leader, toPlane(anchor));
        if (!construction) {
            mWorkspace->mLog.tell(ktFindingCode::NoPerpendicularLine) << "Fail to compute perpendicular line";
            return false;
        }
        appendDimensionLine(*construction, anchor, target.mSegments);
        target.mLeaderAnchors.emplace_back(anchor, offset);

        const Vector3<float> footA = toSpace(construction->mFootA, anchor.z);
        const Vector3<float> footB = toSpace(construction->mFootB, anchor.z);
        const BarbDirections barbs = findBarbDirections(leader.mArrowDirection, construction->mAlong);
        appendArrowHead(footA, barbs.mAtA, construction->mAcross, mHeadSize, target.mSegments);
        appendArrowHead(footB, barbs.mAtB, construction->mAcross, mHeadSize, target.mSegments);

        appendExtensionLine(leader.mPointA, leader.mOffsetVector, footA, target.mSegments);
        appendExtensionLine(leader.mPointB, leader.mOffsetVector, footB, target.mSegments);
    }
    return true;
}

}  // namespace ktLegacy
