#pragma once

/// @file
/// Writes the bytes of binary records for tests.

#include "platform/system/stream/ktBaseStream.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ktTest {

/// A 32-bit count in a record, and what a claim beyond the data leads to.
struct Claim {
    enum Kind {
        List,   ///< all at once: the budget ends it
        Text,   ///< all at once, but a negative length is an empty text
        Piece,  ///< piece by piece: the end of the data ends it, or what is then taken for a length of the next field
    } mKind;
    std::size_t mOffset;
};

/// Collects little-endian fields. The record functions write what a record of the builder's version holds; a test that
/// needs something else writes the fields itself.
class StreamBuilder {
public:
    explicit StreamBuilder(unsigned int minor = 27) : mVersion(6, static_cast<std::uint16_t>(minor)) {}

    kt::ktStreamVersion getVersion() const { return mVersion; }
    const std::vector<std::byte>& getBytes() const { return mBytes; }
    operator std::span<const std::byte>() const { return mBytes; }
    const std::vector<Claim>& getClaims() const { return mClaims; }
    std::size_t getSize() const { return mBytes.size(); }
    bool isFrom(std::uint16_t minor) const { return mVersion >= kt::ktStreamVersion(6, minor); }

    // Fields

    StreamBuilder& u8(unsigned int value) { return number(static_cast<std::uint8_t>(value)); }
    StreamBuilder& u16(unsigned int value) { return number(static_cast<std::uint16_t>(value)); }
    StreamBuilder& u32(std::uint32_t value) { return number(value); }
    StreamBuilder& u64(std::uint64_t value) { return number(value); }
    StreamBuilder& i32(std::int32_t value) { return number(value); }
    StreamBuilder& f32(float value) { return number(value); }
    StreamBuilder& f64(double value) { return number(value); }
    StreamBuilder& vector(float x, float y, float z) { return f32(x).f32(y).f32(z); }
    StreamBuilder& bytes(std::string_view text) { return append(text.data(), text.size()); }
    StreamBuilder& bytes(std::span<const std::byte> other) { return append(other.data(), other.size()); }
    StreamBuilder& text(std::string_view text) {
        return claim(Claim::Text, static_cast<std::uint32_t>(text.size())).bytes(text);
    }
    StreamBuilder& count(std::uint32_t value) { return claim(Claim::List, value); }
    StreamBuilder& pieces(std::uint32_t value) { return claim(Claim::Piece, value); }
    /// A variant map with one entry of an integer.
    StreamBuilder& map(std::string_view key, std::int64_t value) {
        return pieces(1).pieces(static_cast<std::uint32_t>(key.size())).bytes(key).u8(2).number(value);
    }
    StreamBuilder& emptyMap() { return u32(0); }

    // Records

    StreamBuilder& leader(float x, float y, float z, unsigned int head) {
        return isFrom(22) ? vector(x, y, z).u8(head) : vector(x, y, z);
    }
    /// Points A (x, 0, 0) and B (x, 1, 0), offset (0, 0, 2).
    StreamBuilder& measure(float x, unsigned int arrow) {
        vector(x, 0, 0).vector(x, 1, 0).vector(0, 0, 2);
        return isFrom(22) ? u8(arrow) : *this;
    }
    /// Position (7, 8, 9), colour (1, 2, 3).
    StreamBuilder& placement(unsigned int flags) { return vector(7, 8, 9).u8(1).u8(2).u8(3).u8(flags); }
    /// The base record up to and without the sub-annotations: one leader, one measure leader, a rectangular frame.
    StreamBuilder& baseStart(std::string_view name) {
        text(name).count(1).leader(4, 5, 6, 3);
        return (isFrom(17) ? count(1).measure(1, 2) : *this).placement(1);
    }
    /// The whole base record without sub-annotations.
    StreamBuilder& base(std::string_view name) {
        baseStart(name);
        return isFrom(22) ? count(0).emptyMap() : *this;
    }
    StreamBuilder& properties(std::string_view font, unsigned int height, unsigned int style, unsigned int reserved) {
        return text(font).u16(height).u8(style).u8(reserved);
    }
    /// A segment without properties; its type exists from 6.17 on.
    StreamBuilder& segment(std::string_view text, unsigned int type = 0) { return segmentStart(text, type).u8(0); }
    /// A segment up to the byte that tells whether properties follow.
    StreamBuilder& segmentStart(std::string_view content, unsigned int type = 0) {
        return isFrom(17) ? u16(static_cast<unsigned int>(content.size())).bytes(content).u8(type) : text(content);
    }
    /// Default properties and one line with one segment: the end of a text record.
    StreamBuilder& textEnd(std::string_view content) {
        return properties("Arial", 100, 0, 0).count(1).count(1).segment(content);
    }
    /// The end of a raster record, 2 by 3 em.
    StreamBuilder& rasterEnd(std::string_view name) { return text(name).f32(2).f32(3); }
    /// The start of a view record up to the plane: origin (1, 2, 3), normal z, axis x.
    StreamBuilder& viewStart(std::string_view name) {
        return text(name).vector(1, 2, 3).vector(0, 0, 1).vector(1, 0, 0);
    }

private:
    StreamBuilder& claim(Claim::Kind kind, std::uint32_t value) {
        mClaims.push_back({kind, getSize()});
        return number(value);
    }
    template <typename Number>
    StreamBuilder& number(Number value) {
        return append(&value, sizeof(Number));
    }
    StreamBuilder& append(const void* data, std::size_t size) {
        const auto* bytes = static_cast<const std::byte*>(data);
        mBytes.insert(mBytes.end(), bytes, bytes + size);
        return *this;
    }

    kt::ktStreamVersion mVersion;
    std::vector<std::byte> mBytes;
    std::vector<Claim> mClaims;
};

/// A stream over the bytes that a builder holds now.
struct Stream : kt::ktBaseStream {
    explicit Stream(const StreamBuilder& builder) : ktBaseStream(builder.getBytes(), builder.getVersion()) {}
};

}  // namespace ktTest
