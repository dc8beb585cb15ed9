#include "legacy/ktAnnotationView.h"

#include "legacy/StreamReading_p.h"
#include "legacy/VariantReading_p.h"
#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktLegacyVersions.h"
#include "platform/system/ktBaseStream.h"
#include "platform/system/ktInstanceMetaData.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace ktLegacy {

namespace {

using Annotations = std::vector<kt::ktPointer<ktAnnotationInterface>>;

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

/// Reads the view of one document map; the messages come in the order in which the keys are looked at.
class ViewMapReader {
public:
    ViewMapReader(ktAnnotationView& view, kt::ktStreamVersion version, std::vector<std::string>& errors)
        : mView(view), mVersion(version), mErrors(errors) {}

    void readPlaneVector(const kt::ktVariant* value, Wm4::Vector3<float>& vector, const char* message) {
        if (value != nullptr && !reading::readTriple(value, vector)) {
            mErrors.emplace_back(message);
        }
    }

    void readMetadata(const kt::ktVariant* value) {
        const reading::VariantMap* map = value != nullptr ? value->getMap() : nullptr;
        if (map != nullptr) {
            mView.mMetadata = *map;
        } else {
            mErrors.emplace_back("invalid 'metadata' field");
        }
    }

    /// The list of annotations under a key; null, with a message, when there is none.
    const reading::VariantList* getAnnotationList(const kt::ktVariant* value, const char* missingMessage,
                                                  const char* invalidMessage) {
        const reading::VariantList* list = reading::getList(value);
        if (list == nullptr) {
            mErrors.emplace_back(value == nullptr ? missingMessage : invalidMessage);
        }
        return list;
    }

    /// Reads annotations of the kinds that their "type" tells.
    bool readAnnotations(const kt::ktVariant* value) {
        const reading::VariantList* list =
            getAnnotationList(value, "missing 'annotations' field", "invalid 'annotations' field");
        return readEntries(list, "invalid 'annotations' field content", [this](const reading::VariantMap& entry) {
            const reading::VariantText type(reading::findKey(entry, "type"));
            if (type.get() == "text") {
                readAnnotation<ktAnnotationText>(entry);
            } else if (type.get() == "raster") {
                readAnnotation<ktAnnotationRaster>(entry);
            } else {
                mErrors.emplace_back("invalid annotation type");
            }
        });
    }

    bool readTextAnnotations(const kt::ktVariant* value) {
        const reading::VariantList* list =
            getAnnotationList(value, "missing 'textannotations' field", "invalid 'textannotations' field");
        // The message names the newer list; that is intended.
        return readEntries(list, "invalid 'annotations' field content",
                           [this](const reading::VariantMap& entry) { readAnnotation<ktAnnotationText>(entry); });
    }

    bool readRasterAnnotations(const kt::ktVariant* value) {
        const reading::VariantList* list =
            getAnnotationList(value, "missing 'rasterannotations' field", "invalid 'rasterannotations' field");
        return readEntries(list, "invalid 'rasterannotations' field content",
                           [this](const reading::VariantMap& entry) { readAnnotation<ktAnnotationRaster>(entry); });
    }

private:
    /// Calls readEntry for each map of a list; each other entry gives a message. False when there is no list.
    template <typename ReadEntry>
    bool readEntries(const reading::VariantList* list, const char* contentMessage, ReadEntry readEntry) {
        if (list == nullptr) {
            return false;
        }
        mView.mAnnotations.reserve(mView.mAnnotations.size() + list->size());
        for (const kt::ktVariant& entry : *list) {
            if (const reading::VariantMap* map = entry.getMap(); map != nullptr) {
                const reading::VariantMap* next = &entry != &list->back() ? (&entry + 1)->getMap() : nullptr;
                if (next != nullptr) {
                    reading::prefetchMap(*map, *next);
                }
                readEntry(*map);
            } else {
                mErrors.emplace_back(contentMessage);
            }
        }
        return true;
    }

    template <typename Annotation>
    void readAnnotation(const reading::VariantMap& map) {
        kt::ktPointer<ktAnnotationInterface> annotation(new Annotation);
        if (annotation->loadFromVariant(map, mVersion, mErrors)) {
            mView.mAnnotations.push_back(std::move(annotation));
        }
    }

    ktAnnotationView& mView;
    kt::ktStreamVersion mVersion;
    std::vector<std::string>& mErrors;
};

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

ktAnnotationView::~ktAnnotationView() = default;

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
        stream.setStreamError();
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
    const reading::VariantText versionText(reading::findKey(map, "ver"));
    const kt::ktStreamVersion version(versionText.get());
    if (version < version::s6_17) {
        errors.push_back("invalid version " + std::string(versionText.get()));
        return {};
    }
    kt::ktPointer<ktAnnotationView> view(new ktAnnotationView);
    if (const kt::ktVariant* name = reading::findKey(map, "name"); name != nullptr) {
        view->SetName(std::string(reading::VariantText(name).get()));
    }
    ViewMapReader reader(*view, version, errors);
    reader.readPlaneVector(reading::findKey(map, "origin"), view->mOrigin, "invalid 'origin' field");
    reader.readPlaneVector(reading::findKey(map, "normal"), view->mNormal, "invalid 'normal' field");
    reader.readPlaneVector(reading::findKey(map, "axis"), view->mAxis, "invalid 'axis' field");
    if (version >= version::s6_27) {
        reader.readMetadata(reading::findKey(map, "metadata"));
    }
    const bool hasAnnotations = version >= version::s6_22
                                    ? reader.readAnnotations(reading::findKey(map, "annotations"))
                                    : reader.readTextAnnotations(reading::findKey(map, "textannotations")) &&
                                          reader.readRasterAnnotations(reading::findKey(map, "rasterannotations"));
    return hasAnnotations ? view : nullptr;
}

kt::ktRttiInterface* ktAnnotationView::Factory(kt::ktBaseStream& stream) {
    auto view = std::make_unique<ktAnnotationView>();
    view->Load(stream);
    return view.release();
}

void ktAnnotationView::RegisterFactory() { RegisterFactoryFunction(TYPE.GetName(), Factory); }

void ktAnnotationView::UnRegisterFactory() { UnregisterFactoryFunction(TYPE.GetName()); }

}  // namespace ktLegacy
