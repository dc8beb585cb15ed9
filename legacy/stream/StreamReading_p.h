#pragma once

/// @file
/// Reads of single fields that the binary records share. Destinations of numbers are zeroed first, so that what could
/// not be read is 0; the stream's error flag tells of it.

#include "platform/system/stream/ktBaseStream.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace ktLegacy::reading {

/// Number of the elements of a list that follows.
inline std::uint32_t readCount(kt::ktBaseStream& stream) {
    std::uint32_t count = 0;
    stream.readle(4, 1, &count);
    return count;
}

/// Length of a text that follows, 0 when the stored one is below 1.
inline std::size_t readLength(kt::ktBaseStream& stream) {
    std::int32_t length = 0;
    stream.readle(4, 1, &length);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

inline void readVector(kt::ktBaseStream& stream, Wm4::Vector3<float>& vector) {
    static_assert(sizeof(vector) == 3 * sizeof(float));
    vector = Wm4::Vector3<float>::ZERO;
    stream.readle(4, 3, &vector);
}

/// Reads the bytes of a text; those that the data does not fill are NUL.
inline void readBytes(kt::ktBaseStream& stream, char* destination, std::size_t size) {
    if (const std::byte* bytes = stream.take(size); bytes != nullptr) [[likely]] {
        std::memcpy(destination, bytes, size);
        return;
    }
    std::memset(destination, 0, size);
    stream.read(destination, size);
    stream.setStreamError();
}

/// Reads a text with its length.
inline void readText(kt::ktBaseStream& stream, std::string& text) {
    const std::size_t length = readLength(stream);
    stream.chargeMemory(length, 1);
    if (const std::byte* bytes = stream.take(length); bytes != nullptr) [[likely]] {
        text.assign(reinterpret_cast<const char*>(bytes), length);
        return;
    }
    text.resize(length);
    readBytes(stream, text.data(), length);
}

/// Reads one byte into the low byte of a wider enumeration; without a byte the value stays as it is.
template <typename Enumeration>
void readLowByte(kt::ktBaseStream& stream, Enumeration& value) {
    static_assert(sizeof(value) == 4);
    std::uint8_t byte = 0;
    if (stream.readByte(byte)) {
        value = static_cast<Enumeration>((static_cast<std::uint32_t>(value) & 0xFFFFFF00U) | byte);
    }
}

/// Brings a list to count elements: kept ones stay, missing ones are made by default. The storage is charged first.
template <typename List>
void resizeList(kt::ktBaseStream& stream, List& list, std::uint32_t count) {
    stream.chargeMemory(count, sizeof(typename List::value_type));
    list.resize(count);
}

}  // namespace ktLegacy::reading
