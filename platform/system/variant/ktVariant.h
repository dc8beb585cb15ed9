#pragma once

/// @file
/// Value of a JSON-like document.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kt {

namespace impl {
class ktVariantBuilder;
class ktVariantStorage;
struct ktVariantBlock;
}  // namespace impl

/// A value of one of seven kinds. Scalars and short texts lie inside the 16 bytes of the variant; long texts, maps and
/// lists are owned through a pointer, and moving a variant moves 16 bytes. Copies are deep. Neither copying, comparing
/// nor destroying needs stack in proportion to the nesting. Texts are bytes of any content. Users of maps and lists
/// include ktVariantMapImpl.h and ktVariantListImpl.h.
class KT_SYSTEM_API ktVariant {
public:
    /// The numbers are those of the stored form.
    enum class Kind : std::uint8_t {
        Undefined = 0,
        Boolean = 1,
        Integer = 2,
        String = 3,
        Real = 4,
        Map = 10,
        List = 11
    };

    class ktVariantMapImpl;
    class ktVariantListImpl;

    ktVariant() noexcept = default;
    ktVariant(bool value) noexcept { setScalar(Kind::Boolean, value); }
    template <typename Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>) ktVariant(Integer value)
    noexcept { setScalar(Kind::Integer, static_cast<std::int64_t>(value)); }
    /// A float put in comes out unchanged.
    ktVariant(float value) noexcept : ktVariant(static_cast<double>(value)) {}
    ktVariant(double value) noexcept { setScalar(Kind::Real, value); }
    ktVariant(std::string_view text);
    ktVariant(const std::string& text) : ktVariant(std::string_view(text)) {}
    /// A null text gives the empty string.
    ktVariant(const char* text);
    ktVariant(const ktVariantMapImpl& map);
    ktVariant(ktVariantMapImpl&& map) noexcept;
    ktVariant(const ktVariantListImpl& list);
    ktVariant(ktVariantListImpl&& list) noexcept;
    ktVariant(const ktVariant& other) {
        if (other.ownsStorage()) {
            copyOwner(other);
        } else {
            std::memcpy(mBytes, other.mBytes, sizeof(mBytes));
        }
    }
    ktVariant(ktVariant&& other) noexcept { take(other); }
    ktVariant& operator=(const ktVariant& other) {
        // By way of a copy: other may lie inside this.
        return *this = ktVariant(other);
    }
    ktVariant& operator=(ktVariant&& other) noexcept {
        ktVariant moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~ktVariant() {
        if (ownsStorage()) {
            releaseStorage();
        }
    }

    void swap(ktVariant& other) noexcept {
        std::byte bytes[sizeof(mBytes)];
        std::memcpy(bytes, mBytes, sizeof(mBytes));
        std::memcpy(mBytes, other.mBytes, sizeof(mBytes));
        std::memcpy(other.mBytes, bytes, sizeof(mBytes));
    }

    Kind getKind() const noexcept { return static_cast<Kind>(getTag() & ~sOwnsStorage); }
    bool isUndefined() const noexcept { return getKind() == Kind::Undefined; }
    bool isString() const noexcept { return getKind() == Kind::String; }
    bool isNumber() const noexcept { return getKind() == Kind::Integer || getKind() == Kind::Real; }
    bool isMap() const noexcept { return getKind() == Kind::Map; }
    bool isList() const noexcept { return getKind() == Kind::List; }

    // Conversions: every kind gives something, nothing throws for the kind.

    /// The string; "true" or "false"; the decimal integer; the shortest text that reads back as the same double, as
    /// std::to_chars prints it; "" for undefined, maps and lists.
    std::string toString() const;
    /// The boolean; number != 0; string "true" or "1"; else false.
    bool toBool() const noexcept;
    /// The number; 1 or 0 of a boolean; the value of a string that is wholly a JSON number; else 0.
    double toReal() const noexcept { return getKind() == Kind::Real ? load<double>(0) : convertToReal(); }
    /// toReal() as an integer, cut towards zero and clamped; an integer is given as it is.
    std::int64_t toInteger() const noexcept;
    /// A copy of the map, or an empty one.
    ktVariantMapImpl toMap() const;
    /// A copy of the list, or an empty one.
    ktVariantListImpl toList() const;

    // Access without a copy.

    /// The bytes of a string, empty for every other kind. Valid while the variant is neither changed nor moved.
    std::string_view getStringView() const noexcept {
        if (getTag() == static_cast<std::uint8_t>(Kind::String)) {
            return {reinterpret_cast<const char*>(mBytes), load<std::uint8_t>(sInlineLengthOffset)};
        }
        return getTag() == (static_cast<std::uint8_t>(Kind::String) | sOwnsStorage) ? getLongText()
                                                                                    : std::string_view();
    }
    /// The map, null for every other kind.
    const ktVariantMapImpl* getMap() const noexcept {
        return isMap() ? reinterpret_cast<const ktVariantMapImpl*>(mBytes) : nullptr;
    }
    ktVariantMapImpl* editMap() noexcept { return isMap() ? reinterpret_cast<ktVariantMapImpl*>(mBytes) : nullptr; }
    /// The list, null for every other kind.
    const ktVariantListImpl* getList() const noexcept {
        return isList() ? reinterpret_cast<const ktVariantListImpl*>(mBytes) : nullptr;
    }

    /// Same kind and equal values.
    bool operator==(const ktVariant& other) const;

private:
    friend class impl::ktVariantStorage;
    friend class impl::ktVariantBuilder;

    // The last byte is the kind, with a bit that tells whether storage is owned. Before it:
    //   scalars      the value, from byte 0
    //   short texts  up to 14 bytes from byte 0, their number in byte 14
    //   long texts   pointer, then their number (48 bits)
    //   containers   the map or list object, which is one pointer
    static constexpr std::size_t sMaxInlineText = 14;
    static constexpr std::size_t sInlineLengthOffset = 14;
    static constexpr std::size_t sTagOffset = 15;
    static constexpr std::uint8_t sOwnsStorage = 0x80;

    template <typename T>
    T load(std::size_t offset) const noexcept {
        T value;
        std::memcpy(&value, mBytes + offset, sizeof(T));
        return value;
    }
    template <typename T>
    void store(std::size_t offset, T value) noexcept {
        std::memcpy(mBytes + offset, &value, sizeof(T));
    }
    template <typename T>
    void setScalar(Kind kind, T value) noexcept {
        store(0, value);
        setTag(static_cast<std::uint8_t>(kind));
    }
    std::uint8_t getTag() const noexcept { return static_cast<std::uint8_t>(mBytes[sTagOffset]); }
    void setTag(std::uint8_t tag) noexcept { mBytes[sTagOffset] = std::byte{tag}; }
    bool ownsStorage() const noexcept { return (getTag() & sOwnsStorage) != 0; }

    void take(ktVariant& other) noexcept {
        std::memcpy(mBytes, other.mBytes, sizeof(mBytes));
        other.setTag(static_cast<std::uint8_t>(Kind::Undefined));
    }
    void setContainer(Kind kind, impl::ktVariantBlock* block) noexcept {
        store(0, block);
        setTag(static_cast<std::uint8_t>(kind) | sOwnsStorage);
    }
    double convertToReal() const noexcept;
    std::string_view getLongText() const noexcept;
    void setText(std::string_view text);
    void copyOwner(const ktVariant& other);
    void releaseStorage() noexcept;

    alignas(8) std::byte mBytes[16]{};
};

static_assert(sizeof(ktVariant) == 16);

}  // namespace kt
