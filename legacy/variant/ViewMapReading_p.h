#pragma once

/// @file
/// Views from maps of variant documents.

#include "legacy/ktAnnotationView.h"
#include "platform/system/object/ktPointer.h"
#include "platform/system/stream/ktStreamVersion.h"
#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ktLegacy::reading {

using Annotations = std::vector<kt::ktPointer<ktAnnotationInterface>>;

/// A key of view maps under which a list of annotations stands.
struct AnnotationListKey {
    std::string_view mKey;
    ktAnnotationInterface::Type mType;  ///< of all entries; undefined when each entry tells its own
    const char* mMissingMessage;
    const char* mInvalidMessage;
    const char* mContentMessage;  ///< for an entry that is no map
};

/// The keys that hold the annotations of a view map, in the order in which they are read; none at versions that are not
/// read.
std::span<const AnnotationListKey> getAnnotationListKeys(kt::ktStreamVersion version);

/// The annotations of one list, read entry by entry.
struct AnnotationList {
    /// Reads the next entry.
    void read(const kt::ktVariant& entry, std::vector<std::string>& errors);

    const AnnotationListKey* mKey = nullptr;
    kt::ktStreamVersion mVersion;
    Annotations mAnnotations;  ///< those that could be read
};

/// A list of a view map whose entries were read before the map was complete, and are no longer in it.
struct TakenList {
    AnnotationList mList;
    std::size_t mEntryCount = 0;
    std::vector<std::string> mErrors;
};

/// The version of a view map; 0.0 when it has none.
kt::ktStreamVersion readVersion(const kt::ktVariant::ktVariantMapImpl& map);

/// Does the work of ktAnnotationView::FromVariantMap().
/// @param taken  lists under keys of the map; they are used up. Their version is that of the map.
kt::ktPointer<ktAnnotationView> readView(const kt::ktVariant::ktVariantMapImpl& map, std::span<TakenList> taken,
                                         std::vector<std::string>& errors);

}  // namespace ktLegacy::reading
