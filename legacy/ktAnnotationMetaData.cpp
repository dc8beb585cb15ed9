#include "legacy/ktAnnotationMetaData.h"

#include "legacy/ktLegacyVersions.h"
#include "legacy/stream/StreamReading_p.h"
#include "platform/system/stream/ktBaseStream.h"

#include <memory>

namespace ktLegacy {

ktAnnotationMetaData::ktAnnotationMetaData() : kt::ktMetadataInterface(MetadataTypeId) {}

ktAnnotationMetaData::ktAnnotationMetaData(const ktAnnotationMetaData& other) : kt::ktMetadataInterface(other) {
    *this = other;
}

ktAnnotationMetaData& ktAnnotationMetaData::operator=(const ktAnnotationMetaData& other) {
    if (&other == this) {
        return *this;
    }
    std::vector<kt::ktPointer<ktAnnotationView>> views;
    views.reserve(other.mViews.size());
    for (const kt::ktPointer<ktAnnotationView>& view : other.mViews) {
        views.emplace_back(view != nullptr ? new ktAnnotationView(*view) : nullptr);
    }
    mViews.swap(views);
    return *this;
}

ktAnnotationMetaData::~ktAnnotationMetaData() = default;

const kt::ktRtti* ktAnnotationMetaData::GetType() const { return &TYPE; }

void ktAnnotationMetaData::Load(kt::ktBaseStream& stream) {
    kt::ktMetadataInterface::Load(stream);
    mViews.clear();
    // The entries must not move once their links are read: the list gets its final size first.
    reading::resizeList(stream, mViews, reading::readCount(stream));
    for (kt::ktPointer<ktAnnotationView>& view : mViews) {
        stream.ReadObjectImpl<ktAnnotationView>(view, 1, kt::ktBaseStream::GetLinkPointer<ktAnnotationView>);
    }
}

void ktAnnotationMetaData::PostLink(kt::ktBaseStream& stream) { kt::ktMetadataInterface::PostLink(stream); }

void ktAnnotationMetaData::Save(kt::ktBaseStream& stream) const {
    if (stream.GetVersion() >= version::s6_13) {
        stream.setStreamError();
    }
}

bool ktAnnotationMetaData::Equals(const kt::ktRttiInterface* other) const {
    return kt::ktMetadataInterface::Equals(other);
}

bool ktAnnotationMetaData::Clone(kt::ktRttiInterface*& out) const {
    if (out != nullptr && !out->GetType()->IsDerived(TYPE)) {
        return false;
    }
    if (out == nullptr) {
        out = new ktAnnotationMetaData;
    }
    auto& target = static_cast<ktAnnotationMetaData&>(*out);
    target.mViews.clear();
    for (const kt::ktPointer<ktAnnotationView>& view : mViews) {
        kt::ktPointer<ktAnnotationView> copy(new ktAnnotationView);
        // Views do not clone, so the copies keep their default values. That is intended: hosts that clone a scene count
        // on as many views as before and fill them themselves.
        if (view != nullptr) {
            kt::ktRttiInterface* viewOut = copy.get();
            view->Clone(viewOut);
        }
        target.mViews.push_back(std::move(copy));
    }
    return kt::ktMetadataInterface::Clone(out);
}

kt::ktObject* ktAnnotationMetaData::GetObjectByName(const std::string& name) {
    return kt::ktMetadataInterface::GetObjectByName(name);
}

void ktAnnotationMetaData::GetAllObjectsByName(const std::string& name, std::vector<kt::ktObject*>& objects) {
    kt::ktMetadataInterface::GetAllObjectsByName(name, objects);
}

kt::ktObject* ktAnnotationMetaData::GetObjectByID(unsigned int id) {
    return kt::ktMetadataInterface::GetObjectByID(id);
}

void ktAnnotationMetaData::SetName(const std::string& /*name*/) {}

const std::string& ktAnnotationMetaData::GetName() const { return sEmptyString; }

kt::ktRttiInterface* ktAnnotationMetaData::Factory(kt::ktBaseStream& stream) {
    auto metaData = std::make_unique<ktAnnotationMetaData>();
    metaData->Load(stream);
    return metaData.release();
}

void ktAnnotationMetaData::RegisterFactory() { RegisterFactoryFunction(TYPE.GetName(), Factory); }

void ktAnnotationMetaData::UnRegisterFactory() { UnregisterFactoryFunction(TYPE.GetName()); }

}  // namespace ktLegacy
