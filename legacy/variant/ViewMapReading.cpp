#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "legacy/ktLegacyVersions.h"
#include "legacy/variant/VariantReading_p.h"
#include "legacy/variant/ViewMapReading_p.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace ktLegacy::reading {

namespace {

using Type = ktAnnotationInterface::Type;

constexpr std::array<AnnotationListKey, 1> sKeys{{
    {"annotations", Type::Undefined, "missing 'annotations' field", "invalid 'annotations' field",
     "invalid 'annotations' field content"},
}};

// The content message of texts names the newer list; that is intended.
constexpr std::array<AnnotationListKey, 2> sKeysPrior_6_22{{
    {"textannotations", Type::Text, "missing 'textannotations' field", "invalid 'textannotations' field",
     "invalid 'annotations' field content"},
    {"rasterannotations", Type::Raster, "missing 'rasterannotations' field", "invalid 'rasterannotations' field",
     "invalid 'rasterannotations' field content"},
}};

/// Undefined for every word that names no type.
Type readType(const VariantMap& entry) {
    static constexpr std::array<Word<Type>, 2> sTypeWords{{{"text", Type::Text}, {"raster", Type::Raster}}};
    static constexpr auto keys = makeKeys("type");
    const auto [type] = findKeys(entry, keys);
    return readWord(VariantText(type).get(), sTypeWords, Type::Undefined);
}

kt::ktPointer<ktAnnotationInterface> createAnnotation(Type type) {
    if (type == Type::Text) {
        return {new ktAnnotationText};
    }
    return {new ktAnnotationRaster};
}

void readPlaneVector(const kt::ktVariant* value, Wm4::Vector3<float>& vector, const char* message,
                     std::vector<std::string>& errors) {
    if (value != nullptr && !readTriple(value, vector)) {
        errors.emplace_back(message);
    }
}

void readEntries(const VariantList& entries, AnnotationList& list, std::vector<std::string>& errors) {
    list.mAnnotations.reserve(entries.size());
    for (const kt::ktVariant& entry : entries) {
        const VariantMap* map = entry.getMap();
        const VariantMap* next = &entry != &entries.back() ? (&entry + 1)->getMap() : nullptr;
        if (map != nullptr && next != nullptr) {
            prefetchMap(*map, *next);
        }
        list.read(entry, errors);
    }
}

void append(Annotations&& source, Annotations& target) {
    if (target.empty()) {
        target = std::move(source);
    } else {
        std::move(source.begin(), source.end(), std::back_inserter(target));
    }
}

/// Reads the list under a key into the view; false when there is none.
bool readList(const AnnotationListKey& key, const kt::ktVariant* value, kt::ktStreamVersion version,
              std::span<TakenList> taken, Annotations& annotations, std::vector<std::string>& errors) {
    const VariantList* entries = getList(value);
    if (entries == nullptr) {
        errors.emplace_back(value == nullptr ? key.mMissingMessage : key.mInvalidMessage);
        return false;
    }
    const auto isOfKey = [&key](const TakenList& list) { return list.mList.mKey == &key; };
    if (const auto found = std::find_if(taken.begin(), taken.end(), isOfKey); found != taken.end()) {
        std::move(found->mErrors.begin(), found->mErrors.end(), std::back_inserter(errors));
        append(std::move(found->mList.mAnnotations), annotations);
    } else {
        AnnotationList list{&key, version, {}};
        readEntries(*entries, list, errors);
        append(std::move(list.mAnnotations), annotations);
    }
    return true;
}

}  // namespace

std::span<const AnnotationListKey> getAnnotationListKeys(kt::ktStreamVersion version) {
    if (version >= version::s6_22) {
        return sKeys;
    }
    if (version >= version::s6_17) {
        return sKeysPrior_6_22;
    }
    return {};
}

void AnnotationList::read(const kt::ktVariant& entry, std::vector<std::string>& errors) {
    const VariantMap* map = entry.getMap();
    if (map == nullptr) {
        errors.emplace_back(mKey->mContentMessage);
        return;
    }
    const Type type = mKey->mType != Type::Undefined ? mKey->mType : readType(*map);
    if (type == Type::Undefined) {
        errors.emplace_back("invalid annotation type");
        return;
    }
    kt::ktPointer<ktAnnotationInterface> annotation = createAnnotation(type);
    if (annotation->loadFromVariant(*map, mVersion, errors)) {
        mAnnotations.push_back(std::move(annotation));
    }
}

kt::ktStreamVersion readVersion(const VariantMap& map) {
    return kt::ktStreamVersion(VariantText(findKey(map, "ver")).get());
}

kt::ktPointer<ktAnnotationView> readView(const VariantMap& map, std::span<TakenList> taken,
                                         std::vector<std::string>& errors) {
    const kt::ktStreamVersion version = readVersion(map);
    if (version < version::s6_17) {
        errors.push_back("invalid version " + std::string(VariantText(findKey(map, "ver")).get()));
        return {};
    }
    kt::ktPointer<ktAnnotationView> view(new ktAnnotationView);
    if (const kt::ktVariant* name = findKey(map, "name"); name != nullptr) {
        view->SetName(std::string(VariantText(name).get()));
    }
    readPlaneVector(findKey(map, "origin"), view->mOrigin, "invalid 'origin' field", errors);
    readPlaneVector(findKey(map, "normal"), view->mNormal, "invalid 'normal' field", errors);
    readPlaneVector(findKey(map, "axis"), view->mAxis, "invalid 'axis' field", errors);
    if (version >= version::s6_27) {
        const kt::ktVariant* metadata = findKey(map, "metadata");
        if (metadata != nullptr && metadata->isMap()) {
            view->mMetadata = *metadata->getMap();
        } else {
            errors.emplace_back("invalid 'metadata' field");
        }
    }
    for (const AnnotationListKey& key : getAnnotationListKeys(version)) {
        if (!readList(key, findKey(map, key.mKey), version, taken, view->mAnnotations, errors)) {
            return {};
        }
    }
    return view;
}

}  // namespace ktLegacy::reading
