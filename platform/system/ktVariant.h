#pragma once

/// @file
/// Value of a JSON-like document.

#include "platform/system/ktSystemExport.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kt {

/// A value of one of seven kinds. Scalars and short texts lie inside the 16 bytes of the variant; long texts, maps and
/// lists are owned through a pointer, and moving a variant moves 16 bytes. Copies are deep. Neither copying, comparing nor
/// destroying needs stack in proportion to the nesting. Texts are bytes of any content.
class KT_SYSTEM_API ktVariant {
public:
    /// The numbers are those of the stored form.
    enum class Kind : std::uint8_t { Undefined = 0, Boolean = 1, Integer = 2, String = 3, Real = 4, Map = 10, List = 11 };

    class ktVariantMapImpl;
    class ktVariantListImpl;

    ktVariant() noexcept;
    ktVariant(bool value) noexcept;
    template <typename Integer>
        requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>)
    ktVariant(Integer value) noexcept : ktVariant(static_cast<std::int64_t>(value), IntegerTag{}) {}
    /// A float put in comes out unchanged.
    ktVariant(float value) noexcept;
    ktVariant(double value) noexcept;
    ktVariant(std::string_view text);
    ktVariant(const std::string& text) : ktVariant(std::string_view(text)) {}
    /// A null text gives the empty string.
    ktVariant(const char* text);
    ktVariant(const ktVariantMapImpl& map);
    ktVariant(ktVariantMapImpl&& map) noexcept;
    ktVariant(const ktVariantListImpl& list);
    ktVariant(ktVariantListImpl&& list) noexcept;
    ktVariant(const ktVariant& other);
    ktVariant(ktVariant&& other) noexcept;
    ktVariant& operator=(const ktVariant& other);
    ktVariant& operator=(ktVariant&& other) noexcept;
    ~ktVariant();

    Kind getKind() const noexcept;
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
    double toReal() const noexcept;
    /// toReal() as an integer, cut towards zero and clamped; an integer is given as it is.
    std::int64_t toInteger() const noexcept;
    /// A copy of the map, or an empty one.
    ktVariantMapImpl toMap() const;
    /// A copy of the list, or an empty one.
    ktVariantListImpl toList() const;

    // Access without a copy.

    /// The bytes of a string, empty for every other kind. Valid while the variant is neither changed nor moved.
    std::string_view getStringView() const noexcept;
    /// The map, null for every other kind.
    const ktVariantMapImpl* getMap() const noexcept;
    ktVariantMapImpl* editMap() noexcept;
    /// The list, null for every other kind.
    const ktVariantListImpl* getList() const noexcept;
    ktVariantListImpl* editList() noexcept;

    /// Same kind and equal values.
    bool operator==(const ktVariant& other) const;

private:
    struct IntegerTag {};
    ktVariant(std::int64_t value, IntegerTag) noexcept;
};

}  // namespace kt
