/// @file
/// The stored form of variant maps. Contract: nothing worse than the stream's error flag or the memory budget, and what
/// was read can be copied, compared and converted.

#include "platform/system/object/ktInstanceMetaData.h"
#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/variant/ktVariant.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kt::ktBaseStream stream(data, size, kt::ktStreamVersion(6, 27));
    // Far less than documents may take, so that runs with claims of memory stay short.
    stream.setMemoryBudget(1U << 20U);
    kt::ktVariant::ktVariantMapImpl map;
    try {
        kt::ktInstanceMetaData::LoadVariantMap(stream, map);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    const kt::ktVariant value(map);
    for (const auto& [key, entry] : map) {
        if (map.find(key) == map.end()) {
            std::abort();
        }
        static_cast<void>(entry.toString());
        static_cast<void>(entry.toReal());
        static_cast<void>(entry.toBool());
    }
    return 0;
}
