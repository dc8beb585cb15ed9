#pragma once

/// @file
/// Hexadecimal digits.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kt::encoding {

inline constexpr std::string_view sHexDigits = "0123456789abcdef";
inline constexpr std::string_view sUpperHexDigits = "0123456789ABCDEF";

/// The value of each byte as a hexadecimal digit of either case, -1 for other bytes.
inline constexpr auto sHexValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t value = 0; value < sHexDigits.size(); ++value) {
        values[static_cast<unsigned char>(sHexDigits[value])] = static_cast<std::int8_t>(value);
        values[static_cast<unsigned char>(sUpperHexDigits[value])] = static_cast<std::int8_t>(value);
    }
    return values;
}();

constexpr int hexValue(char digit) { return sHexValues[static_cast<unsigned char>(digit)]; }

/// Appends the lowest digits of a value, lower case.
inline void appendHex(std::string& text, std::uint32_t value, unsigned digits) {
    while (digits != 0) {
        --digits;
        text += sHexDigits[(value >> (4 * digits)) & 15U];
    }
}

}  // namespace kt::encoding
