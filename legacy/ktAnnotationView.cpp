#include "legacy/ktAnnotationView.h"

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktLegacyVersions.h"
#include "legacy/stream/StreamReading_p.h"
#include "legacy/variant/ViewMapReading_p.h"
#include "platform/system/object/ktInstanceMetaData.h"
#include "platform/system/stream/ktBaseStream.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace ktLegacy {

namespace {

using reading::Annotations;

/// Reads count annotations of one kind and appends them; what cannot be read shows in the stream's error flag.
template <typename Annotation>
void loadAnnotations(kt::ktBaseStream& stream, std::uint32_t count, Annotations& annotations) {
    for (std::uint32_t index = 0; index < count; ++index) {
        stream.chargeMemory(1, sizeof(Annotation));
        kt::ktPointer<ktAnnotationInterface> annotation(new Annotation);
        annotation->load(stream);
        annotations.push_back(std::move(annotation));
    }
}

}  // namespace

ktAnnotationView::ktAnnotationView() = default;

ktAnnotationView::ktAnnotationView(const ktAnnotationView& other) : kt::ktObject(other) {
    copyFrom(other, CloneAnnotations);
}

ktAnnotationView& ktAnnotationView::operator=(const ktAnnotationView& other) {
    if (&other != this) {
        copyFrom(other, CloneAnnotations);
    }
    return *this;
}

ktAnnotationView::~ktAnnotationView() {
    // Before the other members: the destructor of a host's annotation may look at its view.
    mAnnotations.clear();
}

const kt::ktRtti* ktAnnotationView::GetType() const { return &TYPE; }

void ktAnnotationView::PostLink(kt::ktBaseStream& stream) { kt::ktObject::PostLink(stream); }

void ktAnnotationView::Save(kt::ktBaseStream& stream) const {
    if (stream.GetVersion() >= version::s6_27) {
        stream.setStreamError();
    }
}

bool ktAnnotationView::Equals(const kt::ktRttiInterface* /*other*/) const { return false; }

bool ktAnnotationView::Clone(kt::ktRttiInterface*& /*out*/) const { return false; }

kt::ktObject* ktAnnotationView::GetObjectByName(const std::string& name) { return kt::ktObject::GetObjectByName(name); }

void ktAnnotationView::GetAllObjectsByName(const std::string& name, std::vector<kt::ktObject*>& objects) {
    kt::ktObject::GetAllObjectsByName(name, objects);
}

kt::ktObject* ktAnnotationView::GetObjectByID(unsigned int id) { return kt::ktObject::GetObjectByID(id); }

void ktAnnotationView::SetName(const std::string& name) { mName = name; }

const std::string& ktAnnotationView::GetName() const { return mName; }

void ktAnnotationView::copyFrom(const ktAnnotationView& other, AnnotationCopyMode mode) {
    mName = other.mName;
    mOrigin = other.mOrigin;
    mNormal = other.mNormal;
    mAxis = other.mAxis;
    mMetadata = other.mMetadata;

    Annotations annotations;
    if (mode == ShareAnnotations) {
        annotations = other.mAnnotations;
    } else if (mode == CloneAnnotations) {
        annotations.reserve(other.mAnnotations.size());
        for (const kt::ktPointer<ktAnnotationInterface>& annotation : other.mAnnotations) {
            annotations.emplace_back(annotation != nullptr ? annotation->cloneAnnotation() : nullptr);
        }
    }
    mAnnotations.swap(annotations);
}

void ktAnnotationView::transform(const kt::ktGenericTransformation<float>& transformation) {
    mOrigin = transformation.ApplyForward(mOrigin);
    mNormal = transformation.ApplyForward(mNormal, false);
    mAxis = transformation.ApplyForward(mAxis, false);
}

void ktAnnotationView::getPlaneTransform(kt::ktGenericTransformation<float>& out) const {
    out.MakeIdentity();
    out.SetTranslate(mOrigin);
    // Written in place: SetRotate() and SetMatrix() have their own ideas about the flags.
    out.GetRotate().SetColumn(0, mAxis);
    out.GetRotate().SetColumn(1, mNormal.Cross(mAxis));
    out.GetRotate().SetColumn(2, mNormal);
    out.recomputeIsIdentity();
}

void ktAnnotationView::Load(kt::ktBaseStream& stream) {
    const kt::ktStreamVersion version = stream.GetVersion();
    if (version < version::s6_13) {
        stream.setStreamError(kt::ktStreamFault::UnsupportedVersion);
        return;
    }
    kt::ktObject::Load(stream);
    reading::readVector(stream, mOrigin);
    reading::readVector(stream, mNormal);
    reading::readVector(stream, mAxis);
    const std::uint32_t textCount = reading::readCount(stream);
    const std::uint32_t rasterCount = version >= version::s6_15 ? reading::readCount(stream) : 0;
    const std::uint64_t newCount = std::uint64_t{textCount} + rasterCount;
    stream.chargeMemory(newCount, sizeof(Annotations::value_type));
    mAnnotations.reserve(mAnnotations.size() + newCount);
    loadAnnotations<ktAnnotationText>(stream, textCount, mAnnotations);
    loadAnnotations<ktAnnotationRaster>(stream, rasterCount, mAnnotations);
    if (version >= version::s6_27) {
        kt::ktInstanceMetaData::LoadVariantMap(stream, mMetadata);
    }
}

kt::ktPointer<ktAnnotationView> ktAnnotationView::FromVariantMap(const kt::ktVariant::ktVariantMapImpl& map,
                                                                 std::vector<std::string>& errors) {
    reading::MapReport report(errors);
    reading::ViewReading reading;
    return reading::readView(map, {}, report, reading);
}

kt::ktRttiInterface* ktAnnotationView::Factory(kt::ktBaseStream& stream) {
    auto view = std::make_unique<ktAnnotationView>();
    view->Load(stream);
    return view.release();
}

void ktAnnotationView::RegisterFactory() { RegisterFactoryFunction(TYPE.GetName(), Factory); }

void ktAnnotationView::UnRegisterFactory() { UnregisterFactoryFunction(TYPE.GetName()); }

}  // namespace ktLegacy
