#include "migration/ktAnnotationMigration.h"

#include "migration/Allocation_p.h"
#include "migration/SvgColor_p.h"
#include "migration/Workspace_p.h"
#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/Transform.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <algorithm>
#include <array>
#include <list>
#include <optional>
#include <string_view>
#include <utility>

namespace ktLegacy {

using kt::svg::BoundingBox;
using kt::svg::Transform;
using Wm4::Vector2;
using Wm4::Vector3;
using Color = Wm4::Vector3<unsigned char>;
using SubAnnot = ktAnnotationInterface::SubAnnot;

/// An annotation under conversion: its own content is converted, its sub-annotations are added one by one.
struct ktAnnotationMigration::OpenAnnotation {
    explicit OpenAnnotation(const ktAnnotationInterface& legacy)
        : mLegacy(&legacy), mCreated(new kt::ktCadAnnotation), mSubAnnotsLeft(legacy.getSubAnnotsCount()) {
        // Annotations without children share a list that is there only while the library is initialised.
        if (mSubAnnotsLeft != 0) {
            mSubAnnot = legacy.getSubAnnots().begin();
        }
    }

    const ktAnnotationInterface* mLegacy;
    kt::ktPointer<kt::ktCadAnnotation> mCreated;
    BoundingBox mOutline;
    std::list<SubAnnot>::const_iterator mSubAnnot;  ///< the one to add next, while there are some left
    unsigned int mSubAnnotsLeft;
};

namespace {

/// Items that a root holds before sub-annotations: the frame, and at most an image with its rectangle.
constexpr std::size_t sMaxOwnItems = 3;

/// Space between text and its frame.
constexpr Vector2<float> sTextMargin{2.0F, 2.0F};

constexpr std::array<std::string_view, 7> sKnownMetadataKeys = {
    "AnnotationGroup", "InactivationFlag",   "NOA", "NOA_Graphical representation", "NOA_Hidden Text",
    "NOA_Type of Noa", "ReferencedEntities",
};

/// Black, or white on an annotation colour that is dark. The luminance of components up to 255 is compared with a
/// threshold for components up to 1, so that only colours next to pure black give white: intended.
Color chooseTextColor(const Color& annotationColor) {
    const float luminance = 0.3F * static_cast<float>(annotationColor.x) +
                            0.59F * static_cast<float>(annotationColor.y) +
                            0.11F * static_cast<float>(annotationColor.z);
    return static_cast<double>(luminance) < 0.3 ? Color(255, 255, 255) : Color(0, 0, 0);
}

/// Whether all of the annotation's metadata may be dropped. The first key that must not be is told to the log.
bool isMetadataAccepted(const kt::ktVariant::ktVariantMapImpl& metadata, int flags, migration::FailureLog& log) {
    for (const auto& [key, value] : metadata) {
        const bool isKnown =
            std::find(sKnownMetadataKeys.begin(), sKnownMetadataKeys.end(), key) != sKnownMetadataKeys.end();
        if (isKnown && (flags & ktAnnotationMigration::AcceptKnownMetadata) == 0) {
            // No blank before "in": intended.
            log.tell(ktFindingCode::KnownMetadata) << "Found CT metadata " << key << "in annotation";
            return false;
        }
        if (!isKnown && (flags & ktAnnotationMigration::AcceptOtherMetadata) == 0) {
            log.tell(ktFindingCode::OtherMetadata) << "Found unexpected metadata " << key << " in annotation";
            return false;
        }
    }
    return true;
}

/// Moves the content so that the box around it is centred on the origin.
void centreContent(kt::svg::Node& root, BoundingBox& box) {
    const Vector2<float> shift = -box.getCenter();
    if (shift != Vector2<float>::ZERO) {
        for (const auto& child : root.getChildren()) {
            child->translate(shift);
        }
    }
    box.translate(shift);
}

std::uint8_t convertFlags(const ktAnnotationInterface& annotation) {
    using DisplayFlag = kt::ktCadAnnotation::DisplayFlag;
    int flags = annotation.mIsScaleLocked ? DisplayFlag::FlagScaleLocked : DisplayFlag::FlagScalesWithView;
    if (annotation.mIsIgnoreZTest) {
        flags |= DisplayFlag::FlagIgnoreZTest;
    }
    // A locked frame clears the bit: intended.
    if (!annotation.mIsFrameLocked) {
        flags |= DisplayFlag::FlagFacesViewer;
    }
    return static_cast<std::uint8_t>(flags);
}

/// Where a sub-annotation stands: in the parent's content, and the matching point of the view's frame.
struct Placement {
    Transform mTransform;
    Vector2<float> mOffset;
    Vector3<float> mAnchor;
};

/// Parts of the parent's and of the child's size that make up the child's offset.
struct PlacementFactors {
    Vector2<float> mOfParent;
    Vector2<float> mOfChild;
};

/// By anchor location, from AnchorBottomLeft on.
constexpr std::array<PlacementFactors, 12> sPlacementFactors = {{
    {{-0.5F, 0.5F}, {0.5F, 0.5F}},
    {{0.0F, 0.5F}, {0.0F, 0.5F}},
    {{0.5F, 0.5F}, {-0.5F, 0.5F}},
    {{-0.5F, -0.5F}, {0.5F, -0.5F}},
    {{0.0F, -0.5F}, {0.0F, -0.5F}},
    {{0.5F, -0.5F}, {-0.5F, -0.5F}},
    {{-0.5F, 0.5F}, {-0.5F, -0.5F}},
    {{-0.5F, 0.0F}, {-0.5F, 0.0F}},
    {{-0.5F, -0.5F}, {-0.5F, 0.5F}},
    {{0.5F, 0.5F}, {0.5F, -0.5F}},
    {{0.5F, 0.0F}, {0.5F, 0.0F}},
    {{0.5F, -0.5F}, {0.5F, 0.5F}},
}};

Vector2<float> multiplyComponents(const Vector2<float>& a, const Vector2<float>& b) { return {a.x * b.x, a.y * b.y}; }

Placement placeFreely(const Vector3<float>& parentPosition, const kt::ktCadAnnotation& child) {
    const Vector3<float>& own = child.mPosition;
    const Vector2<float> offset(own.x, -own.y);
    return {Transform::makeTranslationRotationScale(offset, child.mRotation, child.mScale),
            offset,
            {parentPosition.x + own.x, parentPosition.y + own.y, parentPosition.z}};
}

Placement placeAtSide(const PlacementFactors& factors, const Vector3<float>& parentPosition,
                      const Vector2<float>& parentSize, const Vector2<float>& childSize) {
    const Vector2<float> offset =
        multiplyComponents(parentSize, factors.mOfParent) + multiplyComponents(childSize, factors.mOfChild);
    return {Transform::makeTranslation(offset),
            offset,
            {parentPosition.x + offset.x, parentPosition.y - offset.y, parentPosition.z}};
}

/// Nothing for anchor locations that are not defined.
std::optional<Placement> findPlacement(SubAnnot::AnchorLocation location, const Vector3<float>& parentPosition,
                                       const Vector2<float>& parentSize, const kt::ktCadAnnotation& child,
                                       const Vector2<float>& childSize) {
    if (location == SubAnnot::AnchorNone) {
        return placeFreely(parentPosition, child);
    }
    if (location < SubAnnot::AnchorBottomLeft || location > SubAnnot::AnchorRightTop) {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(location - SubAnnot::AnchorBottomLeft);
    return placeAtSide(sPlacementFactors[index], parentPosition, parentSize, childSize);
}

}  // namespace

ktAnnotationMigration::ktAnnotationMigration(int flags, RasterCallback rasterCallback, void* rasterUserData,
                                             float headSize)
    : mFlags(flags),
      mRasterCallback(rasterCallback),
      mRasterUserData(rasterUserData),
      mHeadSize(headSize),
      mWorkspace(std::make_unique<Workspace>()),
      mSparePath(std::make_unique<Path>()) {}

ktAnnotationMigration::~ktAnnotationMigration() = default;

void ktAnnotationMigration::setMissingPicturesReplaced(bool areReplaced) {
    mWorkspace->mReplacesMissingPictures = areReplaced;
}

const std::vector<ktAnnotationMigration::LogLine>& ktAnnotationMigration::getLogLines() const {
    return mWorkspace->mLog.getLines();
}

const std::vector<unsigned int>& ktAnnotationMigration::getFailedSubAnnot() const {
    return mWorkspace->mFailedSubAnnot;
}

bool ktAnnotationMigration::acceptViewMetadata(const ktAnnotationView& view) {
    const migration::FailureLog::Call call(mWorkspace->mLog);
    mWorkspace->mFailedSubAnnot.clear();
    if (view.mMetadata.empty() || (mFlags & AcceptViewMetadata) != 0) {
        return true;
    }
    mWorkspace->mLog.tell(ktFindingCode::ViewMetadata) << "Found metadata in annotation view";
    return false;
}

bool ktAnnotationMigration::migrateAnnotationView(const kt::ktPointer<ktAnnotationView>& view,
                                                  kt::ktPointer<kt::ktCadAnnotationView>& result) {
    const migration::FailureLog::Call call(mWorkspace->mLog);
    if (view == nullptr || result != nullptr) {
        return false;
    }
    kt::ktPointer<kt::ktCadAnnotationView> created(new kt::ktCadAnnotationView);
    if (!convertView(*view, *created)) {
        return false;
    }
    result = std::move(created);
    return true;
}

bool ktAnnotationMigration::convertView(const ktAnnotationView& view, kt::ktCadAnnotationView& result) {
    result.SetName(view.GetName());
    result.mOrigin = view.mOrigin;
    result.mNormal = view.mNormal;
    result.mAxis = view.mAxis;
    if (!acceptViewMetadata(view)) {
        return false;
    }

    result.mAnnotations.reserve(view.mAnnotations.size());
    for (const kt::ktPointer<ktAnnotationInterface>& annotation : view.mAnnotations) {
        if (annotation == nullptr) {
            continue;
        }
        kt::ktPointer<kt::ktCadAnnotation> created;
        if (!migrateAnnotation(*annotation, view.GetName(), created)) {
            return false;
        }
        result.mAnnotations.push_back(std::move(created));
    }
    return true;
}

bool ktAnnotationMigration::migrateAnnotation(const ktAnnotationInterface& annotation, const std::string& viewName,
                                              kt::ktPointer<kt::ktCadAnnotation>& result) {
    const migration::FailureLog::Call call(mWorkspace->mLog);
    const auto fail = [&](ktFindingCode code, std::string_view what) {
        mWorkspace->mLog.tell(code) << "Fail to migrate " << what << " '" << annotation.GetName() << "' of view '"
                                    << viewName << "'";
        return false;
    };
    BoundingBox box;
    kt::ktPointer<kt::ktCadAnnotation> created;
    if (!createAnnotationFrame(&annotation, created, box)) {
        return fail(ktFindingCode::AnnotationNotMigrated, "annotation");
    }
    if (!createLeaders(annotation.mLeaders, *created, created->mPosition, Vector2<float>::ZERO)) {
        return fail(ktFindingCode::LeadersNotMigrated, "leaders of annotation");
    }
    if (!createMeasureLeaders(annotation.mMeasureLeaders, *created, created->mPosition, Vector2<float>::ZERO)) {
        return fail(ktFindingCode::MeasureLeadersNotMigrated, "measure leaders of annotation");
    }
    result = std::move(created);
    return true;
}

bool ktAnnotationMigration::createAnnotationFrame(const ktAnnotationInterface* annotation,
                                                  kt::ktPointer<kt::ktCadAnnotation>& result, BoundingBox& box) {
    if (annotation == nullptr) {
        return false;
    }
    const migration::FailureLog::Call call(mWorkspace->mLog);
    mWorkspace->mFailedSubAnnot.clear();
    // A path of its own for each call: a callback may migrate something else with this object.
    Path path = std::move(*mSparePath);
    const bool isGood = convertTree(*annotation, path);
    if (isGood) {
        box = path.front().mOutline;
        result = std::move(path.front().mCreated);
        path.pop_back();
    }
    for (const OpenAnnotation& open : path) {
        mWorkspace->mFailedSubAnnot.push_back(open.mLegacy->getSubAnnotsCount() - open.mSubAnnotsLeft);
    }
    for (; !path.empty(); path.pop_back()) {
        mWorkspace->mLog.tell(ktFindingCode::SubAnnotationNotMigrated)
            << "Fail to migrate sub annotation of '" << path.back().mLegacy->GetName() << "'";
    }
    *mSparePath = std::move(path);
    return isGood;
}

bool ktAnnotationMigration::convertTree(const ktAnnotationInterface& annotation, Path& path) {
    path.emplace_back(annotation);
    bool isGood = convertOwnContent(path.back());
    while (isGood) {
        OpenAnnotation& current = path.back();
        if (current.mSubAnnotsLeft != 0) {
            const ktAnnotationInterface* child = current.mSubAnnot->mAnnotation.get();
            if (child == nullptr) {
                return false;
            }
            path.emplace_back(*child);
            isGood = convertOwnContent(path.back());
        } else if (path.size() > 1) {
            const OpenAnnotation child = std::move(current);
            path.pop_back();
            isGood = attachSubAnnotation(path.back(), child);
        } else {
            return true;
        }
    }
    path.pop_back();
    return false;
}

bool ktAnnotationMigration::convertOwnContent(OpenAnnotation& annotation) {
    const ktAnnotationInterface& legacy = *annotation.mLegacy;
    kt::ktCadAnnotation& created = *annotation.mCreated;
    created.SetName(legacy.GetName());
    created.mColor = Color(0, 0, 0);
    created.mPosition = legacy.mPosition;
    if (!isMetadataAccepted(legacy.mMetadata, mFlags, mWorkspace->mLog)) {
        return false;
    }

    created.mRoot = migration::makeItem<kt::svg::Node>();
    created.mRoot->editChildren().reserve(sMaxOwnItems + annotation.mSubAnnotsLeft);
    created.mRoot->setColor(migration::sBlackPaint);
    created.mRoot->setOutlineColor(migration::sBlackPaint);
    const Color textColor = chooseTextColor(legacy.mColor);
    Vector2<float> margin;
    if (!convertByType(legacy, *created.mRoot, textColor, margin)) {
        return false;
    }

    BoundingBox content = kt::svg::ComputeEstimatedBoundingBox(*created.mRoot);
    if (!content.isValid()) {
        mWorkspace->mLog.tell(ktFindingCode::EmptyFrame) << "Empty frame";
        return false;
    }
    content.addMargin(margin);
    centreContent(*created.mRoot, content);
    created.mFlags |= convertFlags(legacy);
    return buildAnnotationFrame(legacy.mFrameShape, content, annotation.mOutline, *created.mRoot, legacy.mColor,
                                textColor) > 0;
}

bool ktAnnotationMigration::convertByType(const ktAnnotationInterface& legacy, kt::svg::Node& root,
                                          const Color& textColor, Vector2<float>& margin) {
    switch (legacy.mType) {
        case ktAnnotationInterface::Text:
            margin = sTextMargin;
            return migrateTextAnnotation(static_cast<const ktAnnotationText*>(&legacy), root, textColor);
        case ktAnnotationInterface::Raster:
            margin = Vector2<float>::ZERO;
            return migrateRasterAnnotation(static_cast<const ktAnnotationRaster*>(&legacy), root);
        default:
            return false;
    }
}

bool ktAnnotationMigration::attachSubAnnotation(OpenAnnotation& parent, const OpenAnnotation& child) {
    kt::ktCadAnnotation& created = *parent.mCreated;
    const std::optional<Placement> placement =
        findPlacement(parent.mSubAnnot->mAnchorLocation, created.mPosition, parent.mOutline.getSize(), *child.mCreated,
                      child.mOutline.getSize());
    if (!placement) {
        return false;
    }
    child.mCreated->mRoot->setTransform(placement->mTransform);
    created.mRoot->appendChild(child.mCreated->mRoot);

    // At most one sub-annotation brings leaders, and only the last one may: intended.
    if (!created.mSegments.empty() || !created.mShapes.empty()) {
        mWorkspace->mLog.tell(ktFindingCode::UnexpectedLeaders) << "Unexpected leader segments or shapes";
        return false;
    }
    // Leaders that the child has from its own sub-annotations end with the child's annotation: only the root node is
    // taken over. Intended.
    if (!createLeaders(child.mLegacy->mLeaders, created, placement->mAnchor, placement->mOffset)) {
        mWorkspace->mLog.tell(ktFindingCode::SubAnnotationLeadersNotMigrated) << "Fail to migrate sub annot leaders";
        return false;
    }
    if (!createMeasureLeaders(child.mLegacy->mMeasureLeaders, created, placement->mAnchor, placement->mOffset)) {
        mWorkspace->mLog.tell(ktFindingCode::SubAnnotationMeasureLeadersNotMigrated)
            << "Fail to migrate sub annot measure leaders";
        return false;
    }
    ++parent.mSubAnnot;
    --parent.mSubAnnotsLeft;
    return true;
}

}  // namespace ktLegacy
