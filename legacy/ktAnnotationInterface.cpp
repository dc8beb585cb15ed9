#include "legacy/ktAnnotationInterface.h"

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktLegacyVersions.h"
#include "legacy/stream/StreamReading_p.h"
#include "legacy/variant/ColorReading_p.h"
#include "legacy/variant/MapReport_p.h"
#include "legacy/variant/VariantReading_p.h"
#include "platform/system/memory/ktLimits.h"
#include "platform/system/object/ktInstanceMetaData.h"
#include "platform/system/stream/ktBaseStream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace ktLegacy {

namespace {

using HeadType = ktAnnotationInterface::Leader::HeadType;
using ArrowDirection = ktAnnotationInterface::MeasureLeader::ArrowDirection;
using FrameShape = ktAnnotationInterface::FrameShape;
using SubAnnot = ktAnnotationInterface::SubAnnot;
using reading::Word;

constexpr std::array<Word<HeadType>, 6> sHeadWords{{
    {"square", HeadType::HeadSquare},
    {"circle", HeadType::HeadCircle},
    {"arrow", HeadType::HeadArrow},
    {"plus", HeadType::HeadPlus},
    {"cross", HeadType::HeadCross},
    {"triangle", HeadType::HeadTriangle},
}};

constexpr std::array<Word<ArrowDirection>, 3> sArrowWords{{
    {"outout", ArrowDirection::ArrowsOutOut},
    {"inout", ArrowDirection::ArrowsInOut},
    {"outin", ArrowDirection::ArrowsOutIn},
}};

constexpr std::array<Word<FrameShape>, 15> sFrameWords{{
    {"noframe", FrameShape::FrameNone},
    {"rectangle", FrameShape::FrameRectangle},
    {"square", FrameShape::FrameSquare},
    {"diamond", FrameShape::FrameDiamond},
    {"triangle", FrameShape::FrameTriangle},
    {"flagright", FrameShape::FrameFlagRight},
    {"flagleft", FrameShape::FrameFlagLeft},
    {"flagboth", FrameShape::FrameFlagBoth},
    {"parallelogram", FrameShape::FrameParallelogram},
    {"hexagon", FrameShape::FrameHexagon},
    {"pentagon", FrameShape::FramePentagon},
    {"circle", FrameShape::FrameCircle},
    {"oblong", FrameShape::FrameOblong},
    {"oblongleft", FrameShape::FrameOblongLeft},
    {"oblongright", FrameShape::FrameOblongRight},
}};

// "rb" means the same place as "rt", and no word means AnchorRightBottom. That is intended: children of old documents
// stand where "rb" has always put them.
constexpr std::array<Word<SubAnnot::AnchorLocation>, 12> sAnchorWords{{
    {"rt", SubAnnot::AnchorRightTop},
    {"rc", SubAnnot::AnchorRightCenter},
    {"rb", SubAnnot::AnchorRightTop},
    {"lt", SubAnnot::AnchorLeftTop},
    {"lc", SubAnnot::AnchorLeftCenter},
    {"lb", SubAnnot::AnchorLeftBottom},
    {"tr", SubAnnot::AnchorTopRight},
    {"tc", SubAnnot::AnchorTopCenter},
    {"tl", SubAnnot::AnchorTopLeft},
    {"br", SubAnnot::AnchorBottomRight},
    {"bc", SubAnnot::AnchorBottomCenter},
    {"bl", SubAnnot::AnchorBottomLeft},
}};

enum FlagBits : unsigned int {
    FrameShapeMask = 0x0F,
    ReservedFlag = 0x10,
    IgnoreZTestFlag = 0x20,
    ScaleLockedFlag = 0x40,
    FrameLockedFlag = 0x80,
};

/// What the list of children takes per entry: the entry and the links of a list node.
constexpr std::size_t sSubAnnotNodeSize = sizeof(SubAnnot) + 2 * sizeof(void*);

/// A new annotation of a stored type, its storage charged; null for every type but text and raster.
kt::ktPointer<ktAnnotationInterface> createCharged(kt::ktBaseStream& stream, std::uint8_t type) {
    if (type == ktAnnotationInterface::Text) {
        stream.chargeMemory(1, sizeof(ktAnnotationText));
        return {new ktAnnotationText};
    }
    if (type == ktAnnotationInterface::Raster) {
        stream.chargeMemory(1, sizeof(ktAnnotationRaster));
        return {new ktAnnotationRaster};
    }
    return {};
}

/// The vector at length 1, zero when it has no length that can be divided by.
Wm4::Vector3<float> getDirection(const Wm4::Vector3<float>& vector) {
    const float length = vector.Length();
    if (length == 0.0F || !std::isfinite(1.0F / length)) {
        return Wm4::Vector3<float>::ZERO;
    }
    return vector * (1.0F / length);
}

/// Replaces a list of values by the acceptable ones of a variant list; each other one is told.
template <typename Element>
void loadElements(const kt::ktVariant* value, const kt::ktStreamVersion& version, std::vector<Element>& elements,
                  ktFindingCode fieldFinding, ktFindingCode contentFinding, reading::MapReport& report) {
    elements.clear();
    if (value == nullptr) {
        return;
    }
    const reading::VariantList* list = value->getList();
    if (list == nullptr) {
        report.tell(fieldFinding);
        return;
    }
    elements.reserve(list->size());
    for (const kt::ktVariant& item : *list) {
        Element element;
        if (element.loadFromVariant(item, version)) {
            elements.push_back(element);
        } else {
            report.tell(contentFinding);
        }
    }
}

/// Keys of an annotation map, in the order of sKeys.
enum Key : std::size_t {
    KeyChildren,
    KeyChilds,
    KeyColor,
    KeyFrameShape,
    KeyIsFrameLocked,
    KeyIsIgnoreZTest,
    KeyIsScaleLocked,
    KeyLeaders,
    KeyMeasures,
    KeyMetadata,
    KeyName,
    KeyPosition,
    KeyCount,
};

constexpr auto sKeys = reading::makeKeys("children", "childs", "color", "frameshape", "isframelocked", "isignoreztest",
                                         "isscalelocked", "leaders", "measures", "metadata", "name", "position");
static_assert(sKeys.size() == KeyCount);

}  // namespace

std::list<ktAnnotationInterface::SubAnnot>* ktAnnotationInterface::sDummySubAnnots = nullptr;

// Construction, copies and destruction

ktAnnotationInterface::ktAnnotationInterface(Type type)
    : mType(type),
      mFrameShape(FrameRectangle),
      mReservedFlag(0),
      mIsIgnoreZTest(false),
      mIsScaleLocked(false),
      mIsFrameLocked(false) {}

ktAnnotationInterface::ktAnnotationInterface(const ktAnnotationInterface& other, WithoutChildren /*tag*/)
    : kt::ktObject(other),
      mLeaders(other.mLeaders),
      mMeasureLeaders(other.mMeasureLeaders),
      mPosition(other.mPosition),
      mColor(other.mColor),
      mName(other.mName),
      mMetadata(other.mMetadata),
      mType(other.mType),
      mFrameShape(other.mFrameShape),
      mReservedFlag(other.mReservedFlag),
      mIsIgnoreZTest(other.mIsIgnoreZTest),
      mIsScaleLocked(other.mIsScaleLocked),
      mIsFrameLocked(other.mIsFrameLocked) {}

// The delegation makes this a whole object first: if copying the children throws, the destructor releases what there
// is.
ktAnnotationInterface::ktAnnotationInterface(const ktAnnotationInterface& other)
    : ktAnnotationInterface(other, WithoutChildren{}) {
    copyChildrenOf(other);
}

ktAnnotationInterface& ktAnnotationInterface::operator=(const ktAnnotationInterface& other) {
    if (&other == this) {
        return *this;
    }
    // The other may be a part of this annotation's own tree or the other way round: it is copied as a whole first, and
    // the old content goes last.
    ktAnnotationInterface copy(other);
    swapContent(copy);
    return *this;
}

void ktAnnotationInterface::swapContent(ktAnnotationInterface& other) noexcept {
    mLeaders.swap(other.mLeaders);
    mMeasureLeaders.swap(other.mMeasureLeaders);
    std::swap(mPosition, other.mPosition);
    std::swap(mColor, other.mColor);
    mName.swap(other.mName);
    mMetadata.swap(other.mMetadata);
    std::swap(mSubAnnots, other.mSubAnnots);
    const std::uint8_t flags = getFlags();
    setFlags(other.getFlags());
    other.setFlags(flags);
}

ktAnnotationInterface::~ktAnnotationInterface() { removeSubAnnots(); }

ktAnnotationInterface* ktAnnotationInterface::cloneAnnotation() const {
    switch (mType) {
        case Text:
            return new ktAnnotationText(static_cast<const ktAnnotationText&>(*this));
        case Raster:
            return new ktAnnotationRaster(static_cast<const ktAnnotationRaster&>(*this));
        case Undefined:
            break;
    }
    return nullptr;
}

kt::ktPointer<ktAnnotationInterface> ktAnnotationInterface::copyWithoutChildren(
    const kt::ktPointer<ktAnnotationInterface>& source) {
    if (source == nullptr) {
        return {};
    }
    switch (source->mType) {
        case Text:
            return {new ktAnnotationText(static_cast<const ktAnnotationText&>(*source), WithoutChildren{})};
        case Raster:
            return {new ktAnnotationRaster(static_cast<const ktAnnotationRaster&>(*source), WithoutChildren{})};
        case Undefined:
            break;
    }
    return source;
}

void ktAnnotationInterface::copyChildrenOf(const ktAnnotationInterface& other) {
    if (other.getSubAnnotsCount() == 0) {
        return;
    }
    struct Pending {
        const ktAnnotationInterface* mSource;
        ktAnnotationInterface* mCopy;
    };
    std::vector<Pending> pending{{&other, this}};
    while (!pending.empty()) {
        const Pending parent = pending.back();
        pending.pop_back();
        std::list<SubAnnot>& copies = parent.mCopy->editSubAnnots();
        for (const SubAnnot& entry : *parent.mSource->mSubAnnots) {
            const ktAnnotationInterface* source = entry.mAnnotation.get();
            SubAnnot& copy = copies.emplace_back();
            copy.mAnchorLocation = entry.mAnchorLocation;
            copy.mAnnotation = copyWithoutChildren(entry.mAnnotation);
            if (copy.mAnnotation.get() != source && source->getSubAnnotsCount() != 0) {
                pending.push_back({source, copy.mAnnotation.get()});
            }
        }
    }
}

// Name, children and flags

void ktAnnotationInterface::SetName(const std::string& name) { mName = name; }

const std::string& ktAnnotationInterface::GetName() const { return mName; }

unsigned int ktAnnotationInterface::getSubAnnotsCount() const {
    return mSubAnnots != nullptr ? static_cast<unsigned int>(mSubAnnots->size()) : 0;
}

std::list<ktAnnotationInterface::SubAnnot>& ktAnnotationInterface::editSubAnnots() {
    if (mSubAnnots == nullptr) {
        mSubAnnots = new std::list<SubAnnot>;
    }
    return *mSubAnnots;
}

void ktAnnotationInterface::removeSubAnnots() noexcept { releaseSubAnnots(std::exchange(mSubAnnots, nullptr)); }

void ktAnnotationInterface::releaseSubAnnots(std::list<SubAnnot>* subAnnots) noexcept {
    // Entries that are still to be released on this thread; null outside a release.
    static thread_local constinit std::list<SubAnnot>* sPending = nullptr;
    if (subAnnots == nullptr) {
        return;
    }
    if (sPending != nullptr) {
        // Within the destructor of a child: the release under way goes on with its children, so that no tree needs a
        // call stack of its depth.
        sPending->splice(sPending->end(), *subAnnots);
    } else {
        sPending = subAnnots;
        while (!subAnnots->empty()) {
            const kt::ktPointer<ktAnnotationInterface> child = std::move(subAnnots->front().mAnnotation);
            subAnnots->pop_front();
        }
        sPending = nullptr;
    }
    delete subAnnots;
}

void ktAnnotationInterface::InitDummySubAnnots() { sDummySubAnnots = new std::list<SubAnnot>; }

void ktAnnotationInterface::ClearDummySubAnnots() noexcept {
    releaseSubAnnots(std::exchange(sDummySubAnnots, nullptr));
}

std::uint8_t ktAnnotationInterface::getFlags() const {
    const unsigned int flags = mFrameShape | (mReservedFlag != 0 ? ReservedFlag : 0U) |
                               (mIsIgnoreZTest ? IgnoreZTestFlag : 0U) | (mIsScaleLocked ? ScaleLockedFlag : 0U) |
                               (mIsFrameLocked ? FrameLockedFlag : 0U);
    return static_cast<std::uint8_t>(flags);
}

void ktAnnotationInterface::setFlags(std::uint8_t flags) {
    mFrameShape = static_cast<FrameShape>(flags & FrameShapeMask);
    mReservedFlag = (flags & ReservedFlag) != 0 ? 1 : 0;
    mIsIgnoreZTest = (flags & IgnoreZTestFlag) != 0;
    mIsScaleLocked = (flags & ScaleLockedFlag) != 0;
    mIsFrameLocked = (flags & FrameLockedFlag) != 0;
}

// Geometry

void ktAnnotationInterface::transform(const kt::ktGenericTransformation<float>& transformation) {
    for (Leader& leader : mLeaders) {
        leader.mPosition = transformation.ApplyForward(leader.mPosition);
    }
    for (MeasureLeader& measure : mMeasureLeaders) {
        measure.mPointA = transformation.ApplyForward(measure.mPointA);
        measure.mPointB = transformation.ApplyForward(measure.mPointB);
        measure.mOffsetVector = transformation.ApplyForward(measure.mOffsetVector, false);
    }
    mPosition = transformation.ApplyForward(mPosition);
}

void ktAnnotationInterface::recomputeOffsetVectorLength() {
    for (MeasureLeader& measure : mMeasureLeaders) {
        const Wm4::Vector3<float> direction = getDirection(measure.mOffsetVector);
        measure.mOffsetVector = direction * (mPosition - measure.mPointA).Dot(direction);
    }
}

// Binary records

void ktAnnotationInterface::Leader::load(kt::ktBaseStream& stream) {
    reading::readVector(stream, mPosition);
    if (stream.GetVersion() >= version::s6_22) {
        reading::readLowByte(stream, mHead);
    }
}

void ktAnnotationInterface::MeasureLeader::load(kt::ktBaseStream& stream) {
    reading::readVector(stream, mPointA);
    reading::readVector(stream, mPointB);
    reading::readVector(stream, mOffsetVector);
    if (stream.GetVersion() >= version::s6_22) {
        reading::readLowByte(stream, mArrowDirection);
    }
}

void ktAnnotationInterface::load(kt::ktBaseStream& stream) {
    const kt::ktStreamVersion version = stream.GetVersion();
    if (version < version::s6_15) {
        return;
    }
    reading::readText(stream, mName);
    loadLeaders(stream);
    if (version >= version::s6_17) {
        loadMeasureLeaders(stream);
    }
    loadPlacement(stream);
    if (version >= version::s6_22) {
        if (!loadSubAnnots(stream)) {
            return;
        }
        kt::ktInstanceMetaData::LoadVariantMap(stream, mMetadata);
    }
}

void ktAnnotationInterface::loadLeaders(kt::ktBaseStream& stream) {
    reading::resizeList(stream, mLeaders, reading::readCount(stream));
    for (Leader& leader : mLeaders) {
        leader.load(stream);
    }
}

void ktAnnotationInterface::loadMeasureLeaders(kt::ktBaseStream& stream) {
    reading::resizeList(stream, mMeasureLeaders, reading::readCount(stream));
    for (MeasureLeader& measure : mMeasureLeaders) {
        measure.load(stream);
    }
}

void ktAnnotationInterface::loadPlacement(kt::ktBaseStream& stream) {
    reading::readVector(stream, mPosition);
    stream.readByte(mColor.x);
    stream.readByte(mColor.y);
    stream.readByte(mColor.z);
    std::uint8_t flags = getFlags();
    stream.readByte(flags);
    setFlags(flags);
}

bool ktAnnotationInterface::loadSubAnnots(kt::ktBaseStream& stream) {
    const std::uint32_t count = reading::readCount(stream);
    removeSubAnnots();
    if (count == 0) {
        return true;
    }
    // Never refused: whoever made this annotation has asked for its level.
    const kt::AnnotationLevel ownLevel(stream);
    stream.chargeMemory(count, sSubAnnotNodeSize);
    editSubAnnots().resize(count);
    for (SubAnnot& entry : *mSubAnnots) {
        std::uint8_t anchor = 0;
        stream.readByte(anchor);
        entry.mAnchorLocation = static_cast<SubAnnot::AnchorLocation>(anchor);
        std::uint8_t type = Undefined;
        stream.readByte(type);
        if (type == Undefined) {
            continue;
        }
        // A level that is too deep sets the stream's error flag and ends the record like an unknown type.
        if (!kt::AnnotationLevel(stream).isEntered()) {
            return false;
        }
        entry.mAnnotation = createCharged(stream, type);
        if (entry.mAnnotation == nullptr) {
            stream.setStreamError(kt::ktStreamFault::UnknownChildType);
            return false;
        }
        entry.mAnnotation->load(stream);
    }
    return true;
}

// Maps of variant documents

bool ktAnnotationInterface::Leader::loadFromVariant(const kt::ktVariant& value, const kt::ktStreamVersion& version) {
    if (version < version::s6_22) {
        return reading::readVector(&value, mPosition);
    }
    const reading::VariantMap* map = value.getMap();
    if (map == nullptr) {
        return false;
    }
    static constexpr auto keys = reading::makeKeys("head", "pos");
    const auto [head, position] = reading::findKeys(*map, keys);
    mPosition = Wm4::Vector3<float>::ZERO;
    reading::readVector(position, mPosition);
    mHead = reading::readWord(reading::VariantText(head).get(), sHeadWords, HeadNone);
    return true;
}

bool ktAnnotationInterface::MeasureLeader::loadFromVariant(const kt::ktVariant& value,
                                                           const kt::ktStreamVersion& version) {
    const reading::VariantMap* map = value.getMap();
    if (map == nullptr) {
        return false;
    }
    static constexpr auto keys = reading::makeKeys("A", "B", "V", "arrowdir");
    const auto [pointA, pointB, offset, arrows] = reading::findKeys(*map, keys);
    if (version >= version::s6_22) {
        mArrowDirection = reading::readWord(reading::VariantText(arrows).get(), sArrowWords, ArrowsUnspecified);
    }
    return reading::readVector(pointA, mPointA) && reading::readVector(pointB, mPointB) &&
           reading::readVector(offset, mOffsetVector);
}

bool ktAnnotationInterface::loadFromVariant(const kt::ktVariant::ktVariantMapImpl& map,
                                            const kt::ktStreamVersion& version, std::vector<std::string>& errors) {
    reading::MapReport report(errors);
    return loadBaseFromMap(map, version, report);
}

bool ktAnnotationInterface::loadBaseFromMap(const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version,
                                            reading::MapReport& report) {
    if (version < version::s6_17) {
        report.tell(ktFindingCode::InvalidInterfaceVersion);
        return false;
    }
    const auto values = reading::findKeys(map, sKeys);

    SetName(std::string(reading::VariantText(values[KeyName]).get()));
    if (!reading::readColor(reading::VariantText(values[KeyColor]).get(), mColor)) {
        report.tell(ktFindingCode::InvalidColor);
    }
    if (values[KeyPosition] != nullptr && !reading::readVector(values[KeyPosition], mPosition)) {
        report.tell(ktFindingCode::InvalidPosition);
        return false;
    }
    loadElements(values[KeyLeaders], version, mLeaders, ktFindingCode::InvalidLeaders,
                 ktFindingCode::InvalidLeadersContent, report);
    loadElements(values[KeyMeasures], version, mMeasureLeaders, ktFindingCode::InvalidMeasures,
                 ktFindingCode::InvalidMeasuresContent, report);
    setFlags(0);
    mIsFrameLocked = reading::readSwitch(values[KeyIsFrameLocked]);
    mIsScaleLocked = reading::readSwitch(values[KeyIsScaleLocked]);
    mIsIgnoreZTest = reading::readSwitch(values[KeyIsIgnoreZTest]);
    mFrameShape = reading::readWord(reading::VariantText(values[KeyFrameShape]).get(), sFrameWords, FrameRectangle);

    if (version >= version::s6_22) {
        const kt::ktVariant* children = values[KeyChildren] != nullptr ? values[KeyChildren] : values[KeyChilds];
        if (!loadSubAnnotsFromMaps(children, version, report)) {
            return false;
        }
        const reading::VariantMap* metadata = values[KeyMetadata] != nullptr ? values[KeyMetadata]->getMap() : nullptr;
        if (metadata != nullptr) {
            mMetadata = *metadata;
        } else {
            mMetadata.clear();
        }
    }
    return true;
}

bool ktAnnotationInterface::loadSubAnnotsFromMaps(const kt::ktVariant* value, kt::ktStreamVersion version,
                                                  reading::MapReport& report) {
    const reading::VariantList* children = reading::getList(value);
    if (children == nullptr || children->empty()) {
        return true;
    }
    reading::MapReport::NestedList nested(report, children->size());
    std::uint32_t index = 0;
    for (const kt::ktVariant& child : *children) {
        nested.enterEntry(index++);
        const reading::VariantMap* map = child.getMap();
        if (map == nullptr) {
            report.tell(ktFindingCode::NestedEntryIsNoMap);
            return false;
        }
        kt::ktPointer<ktAnnotationInterface> annotation =
            loadSubAnnotFromMap(*map, version, nested.isTooDeep(), report);
        if (annotation == nullptr) {
            report.loseEntry();
            continue;
        }
        static constexpr auto keys = reading::makeKeys("anchorloc");
        const auto [anchor] = reading::findKeys(*map, keys);
        SubAnnot& entry = editSubAnnots().emplace_back();
        entry.mAnnotation = std::move(annotation);
        entry.mAnchorLocation =
            reading::readWord(reading::VariantText(anchor).get(), sAnchorWords, SubAnnot::AnchorNone);
    }
    return true;
}

kt::ktPointer<ktAnnotationInterface> ktAnnotationInterface::loadSubAnnotFromMap(
    const kt::ktVariant::ktVariantMapImpl& map, kt::ktStreamVersion version, bool isTooDeep,
    reading::MapReport& report) {
    const Type type = readTypeFromMap(map);
    if (type == Undefined) {
        report.tell(ktFindingCode::InvalidAnnotationType);
        return {};
    }
    if (isTooDeep) {
        report.tell(ktFindingCode::VariantNestedTooDeep);
        return {};
    }
    return createFromMap(type, map, version, report);
}

ktAnnotationInterface::Type ktAnnotationInterface::readTypeFromMap(const kt::ktVariant::ktVariantMapImpl& map) {
    static constexpr std::array<Word<Type>, 2> sTypeWords{{{"text", Text}, {"raster", Raster}}};
    static constexpr auto keys = reading::makeKeys("type");
    const auto [type] = reading::findKeys(map, keys);
    return reading::readWord(reading::VariantText(type).get(), sTypeWords, Undefined);
}

kt::ktPointer<ktAnnotationInterface> ktAnnotationInterface::createFromMap(Type type,
                                                                          const kt::ktVariant::ktVariantMapImpl& map,
                                                                          kt::ktStreamVersion version,
                                                                          reading::MapReport& report) {
    const reading::NestedCount countBefore = report.getNestedCount();
    bool isUsable = false;
    kt::ktPointer<ktAnnotationInterface> annotation;
    if (type == Text) {
        auto* text = new ktAnnotationText;
        annotation = text;
        const reading::MapReport::Named named(report, text->mName);
        isUsable = text->loadFromMap(map, version, report);
    } else {
        auto* raster = new ktAnnotationRaster;
        annotation = raster;
        const reading::MapReport::Named named(report, raster->mName);
        isUsable = raster->loadFromMap(map, version, report);
    }
    if (!isUsable) {
        report.resetNestedCount(countBefore);
        annotation.reset();
    }
    return annotation;
}

}  // namespace ktLegacy
