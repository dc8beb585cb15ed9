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
    {"annotations", Type::Undefined, version::s6_22, ktFindingCode::MissingAnnotations,
     ktFindingCode::InvalidAnnotations, ktFindingCode::InvalidAnnotationsContent},
}};

// The content message of texts names the newer list: tools that watch for it know no other. Intended.
constexpr std::array<AnnotationListKey, 2> sKeysPrior_6_22{{
    {"textannotations", Type::Text, version::s6_17, ktFindingCode::MissingTextAnnotations,
     ktFindingCode::InvalidTextAnnotations, ktFindingCode::InvalidAnnotationsContent},
    {"rasterannotations", Type::Raster, version::s6_17, ktFindingCode::MissingRasterAnnotations,
     ktFindingCode::InvalidRasterAnnotations, ktFindingCode::InvalidRasterAnnotationsContent},
}};

void readPlaneVector(const kt::ktVariant* value, Wm4::Vector3<float>& vector, ktFindingCode finding,
                     MapReport& report) {
    if (value != nullptr && !readTriple(value, vector)) {
        report.tell(finding);
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
bool readList(const AnnotationListKey& key, const kt::ktVariant* value, std::span<AnnotationList> taken,
              Annotations& annotations, MapReport& report, ViewReading& reading) {
    const VariantList* entries = getList(value);
    if (entries == nullptr) {
        report.tell(value == nullptr ? key.mMissing : key.mInvalid);
        return false;
    }
    const auto isOfKey = [&key](const AnnotationList& list) { return &list.getKey() == &key; };
    if (const auto found = std::find_if(taken.begin(), taken.end(), isOfKey); found != taken.end()) {
        report.append(std::move(found->mFindings), annotations.size(), found->mNested);
        reading.mEntryCount += found->getEntryCount();
        append(std::move(found->mAnnotations), annotations);
        return true;
    }
    AnnotationList list(key);
    list.mAnnotations.reserve(entries->size());
    for (const kt::ktVariant& entry : *entries) {
        list.read(entry, report, annotations.size());
    }
    reading.mEntryCount += list.getEntryCount();
    append(std::move(list.mAnnotations), annotations);
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

const AnnotationListKey* findAnnotationListKey(std::string_view key) {
    for (const kt::ktStreamVersion version : {version::s6_22, version::s6_17}) {
        for (const AnnotationListKey& known : getAnnotationListKeys(version)) {
            if (known.mKey == key) {
                return &known;
            }
        }
    }
    return nullptr;
}

void AnnotationList::read(const kt::ktVariant& entry, MapReport& report, std::size_t offset) {
    ++mEntryCount;
    report.enterAnnotation(offset + mAnnotations.size());
    const VariantMap* map = entry.getMap();
    if (map == nullptr) {
        report.tell(mKey->mInvalidContent);
    } else if (const Type type =
                   mKey->mType != Type::Undefined ? mKey->mType : ktAnnotationInterface::readTypeFromMap(*map);
               type == Type::Undefined) {
        report.tell(ktFindingCode::InvalidAnnotationType);
    } else if (auto annotation = ktAnnotationInterface::createFromMap(type, *map, mKey->mVersion, report)) {
        mAnnotations.push_back(std::move(annotation));
    }
    report.leaveAnnotation();
}

kt::ktStreamVersion readVersion(const VariantMap& map) {
    return kt::ktStreamVersion(VariantText(findKey(map, "ver")).get());
}

kt::ktPointer<ktAnnotationView> readView(const VariantMap& map, std::span<AnnotationList> taken, MapReport& report,
                                         ViewReading& reading) {
    const kt::ktStreamVersion version = readVersion(map);
    if (version < version::s6_17) {
        report.tell(ktFindingCode::InvalidVersion, VariantText(findKey(map, "ver")).get());
        return {};
    }
    kt::ktPointer<ktAnnotationView> view(new ktAnnotationView);
    if (const kt::ktVariant* name = findKey(map, "name"); name != nullptr) {
        view->SetName(std::string(VariantText(name).get()));
    }
    readPlaneVector(findKey(map, "origin"), view->mOrigin, ktFindingCode::InvalidOrigin, report);
    readPlaneVector(findKey(map, "normal"), view->mNormal, ktFindingCode::InvalidNormal, report);
    readPlaneVector(findKey(map, "axis"), view->mAxis, ktFindingCode::InvalidAxis, report);
    if (version >= version::s6_27) {
        const kt::ktVariant* metadata = findKey(map, "metadata");
        if (metadata != nullptr && metadata->isMap()) {
            view->mMetadata = *metadata->getMap();
        } else {
            report.tell(ktFindingCode::InvalidMetadata);
        }
    }
    for (const AnnotationListKey& key : getAnnotationListKeys(version)) {
        if (!readList(key, findKey(map, key.mKey), taken, view->mAnnotations, report, reading)) {
            return {};
        }
    }
    reading.mNested = report.getNestedCount();
    return view;
}

}  // namespace ktLegacy::reading
