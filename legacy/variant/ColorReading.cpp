#include "legacy/variant/ColorReading_p.h"

#include <algorithm>
#include <cstdint>

namespace ktLegacy::reading {

namespace {

/// The value of a hexadecimal digit, 16 for any other character.
unsigned int getHexDigit(char character) {
    if (character >= '0' && character <= '9') {
        return static_cast<unsigned int>(character - '0');
    }
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned int>(lower - 'a') + 10 : 16;
}

/// Parses like strtol with base 16 in the "C" locale: blanks, a sign and "0x" may come first, and the first character
/// that is no digit ends the number. Negative numbers come out in two's complement.
std::uint32_t parseHexNumber(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && getHexDigit(text[2]) < 16) {
        text.remove_prefix(2);
    }
    std::uint32_t number = 0;
    for (const char character : text) {
        const unsigned int digit = getHexDigit(character);
        if (digit == 16) {
            break;
        }
        number = number * 16 + digit;
    }
    return isNegative ? 0 - number : number;
}

}  // namespace

bool readColor(std::string_view text, Wm4::Vector3<unsigned char>& color) {
    if (text.empty()) {
        return true;
    }
    const std::uint32_t number = text.size() == 6 ? parseHexNumber(text) : 0;
    if (number == 0 && text != "000000") {
        return false;
    }
    color = {static_cast<unsigned char>((number >> 16) & 0xFF), static_cast<unsigned char>((number >> 8) & 0xFF),
             static_cast<unsigned char>(number & 0xFF)};
    return true;
}

}  // namespace ktLegacy::reading
