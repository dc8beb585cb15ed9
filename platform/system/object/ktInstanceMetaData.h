#pragma once

/// @file
/// Stored form of variant maps.

#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantMapImpl.h"

namespace kt {

class ktBaseStream;

/// Reads the key/value metadata of object instances.
class KT_SYSTEM_API ktInstanceMetaData {
public:
    ktInstanceMetaData() = delete;

    /// Replaces map by the stored one: uint32 count, then per entry the key (int32 length, bytes) and a value; a value
    /// is a kind byte followed by nothing (0), one byte (1), int64 (2), int32 length and bytes (3), float64 (4), a map
    /// (10), or uint32 count and values (11). An unknown kind, a level deeper than sMaxVariantMapDepth or a short read
    /// sets the stream's error flag and ends the reading with the whole entries read so far.
    static void LoadVariantMap(ktBaseStream& stream, ktVariant::ktVariantMapImpl& map);
};

}  // namespace kt
