#pragma once

/// @file
/// Bytes of binary documents, put together by hand.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class ByteWriter {
public:
    template <typename Unsigned>
    ByteWriter& number(Unsigned value) {
        for (std::size_t byte = 0; byte < sizeof(Unsigned); ++byte) {
            mBytes += static_cast<char>((std::uint64_t{value} >> (8 * byte)) & 0xFFU);
        }
        return *this;
    }
    ByteWriter& u8(std::uint8_t value) { return number(value); }
    ByteWriter& u32(std::uint32_t value) { return number(value); }
    ByteWriter& u64(std::uint64_t value) { return number(value); }
    ByteWriter& f64(double value) { return number(std::bit_cast<std::uint64_t>(value)); }
    ByteWriter& raw(std::string_view bytes) {
        mBytes += bytes;
        return *this;
    }
    /// Length and bytes.
    ByteWriter& text(std::string_view bytes) { return u32(static_cast<std::uint32_t>(bytes.size())).raw(bytes); }

    std::size_t size() const { return mBytes.size(); }
    const std::string& str() const { return mBytes; }
    std::span<const std::byte> bytes() const { return std::as_bytes(std::span(mBytes)); }

private:
    std::string mBytes;
};
