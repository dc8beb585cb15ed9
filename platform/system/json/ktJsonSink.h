#pragma once

/// @file
/// Receiver of parts of a JSON text.

#include "platform/system/ktSystemExport.h"
#include "platform/system/variant/ktVariant.h"

#include <string_view>

namespace kt {

/// Takes the elements of a text's long lists while the text is read, so that they need not be in memory together. A
/// *record* is the map that the text is, or an element of the list that the text is.
///
/// A sink receives everything in the order of the text, and before the text is known to be valid to its end. It must
/// not use the reader that calls it. What it throws ends the reading.
class KT_SYSTEM_API ktJsonSink {
public:
    ktJsonSink() = default;
    ktJsonSink(const ktJsonSink&) = delete;
    ktJsonSink& operator=(const ktJsonSink&) = delete;
    virtual ~ktJsonSink();

    /// A list begins that is the value of an entry of a record.
    /// @param key  the entry's key, which the record may have already and may get again.
    /// @return whether the list's elements go to takeElement(), so that the list ends up empty.
    virtual bool beginList(std::string_view key) = 0;
    /// The next element of the list that began last. It ends with the call.
    virtual void takeElement(const ktVariant& element) = 0;
    /// The next element of the list that the text is; it need not be a map. It ends with the call, and the list ends up
    /// empty.
    virtual void takeRecord(const ktVariant& record) = 0;
};

}  // namespace kt
