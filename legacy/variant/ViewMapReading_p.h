#pragma once

/// @file
/// Views from maps of variant documents.

#include "legacy/ktAnnotationView.h"
#include "legacy/variant/MapReport_p.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/stream/ktStreamVersion.h"
#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace ktLegacy::reading {

using Annotations = std::vector<kt::ktPointer<ktAnnotationInterface>>;

/// A key of view maps under which a list of annotations stands.
struct AnnotationListKey {
    std::string_view mKey;
    ktAnnotationInterface::Type mType;  ///< of all entries; undefined when each entry tells its own
    kt::ktStreamVersion mVersion;       ///< the first that has the key; to the next list's first no annotation differs
    ktFindingCode mMissing;
    ktFindingCode mInvalid;
    ktFindingCode mInvalidContent;  ///< for an entry that is no map
};

/// The keys that hold the annotations of a view map, in the order in which they are read; none at versions that are not
/// read.
std::span<const AnnotationListKey> getAnnotationListKeys(kt::ktStreamVersion version);

/// The list that stands under a key at some versions; null when it is another key.
const AnnotationListKey* findAnnotationListKey(std::string_view key);

/// A list of annotations that is read entry by entry, before or after the view map that it belongs to.
class AnnotationList {
public:
    explicit AnnotationList(const AnnotationListKey& key) : mKey(&key) {}

    const AnnotationListKey& getKey() const { return *mKey; }
    std::size_t getEntryCount() const { return mEntryCount; }

    /// Reads the next entry.
    /// @param report  of this list alone, or of the view that the list is appended to by hand.
    /// @param offset  annotations of the view in front of the list.
    void read(const kt::ktVariant& entry, MapReport& report, std::size_t offset = 0);

    Annotations mAnnotations;                 ///< those that could be read
    std::vector<ktVariantFinding> mFindings;  ///< of a list that is read before its view
    NestedCount mNested;                      ///< likewise

private:
    const AnnotationListKey* mKey;
    std::size_t mEntryCount = 0;
};

/// The version of a view map; 0.0 when it has none.
kt::ktStreamVersion readVersion(const kt::ktVariant::ktVariantMapImpl& map);

/// What is read of one view map.
struct ViewReading {
    std::size_t mEntryCount = 0;  ///< of the lists of annotations of the map's version
    NestedCount mNested;
};

/// Does the work of ktAnnotationView::FromVariantMap().
/// @param taken  lists under keys of the map, whose entries were read before the map was complete and are no longer in
///               it; they are used up. Those that the map's version does not have are left alone.
kt::ktPointer<ktAnnotationView> readView(const kt::ktVariant::ktVariantMapImpl& map, std::span<AnnotationList> taken,
                                         MapReport& report, ViewReading& reading);

}  // namespace ktLegacy::reading
