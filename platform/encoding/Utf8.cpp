#include "platform/encoding/Utf8.h"

#include <cstdint>

namespace kt::encoding {

Utf8Character decodeUtf8(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const auto byteAt = [text](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byteAt(0);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    const std::size_t length = lead >= 0xF0 ? 4U : (lead >= 0xE0 ? 3U : 2U);
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return {0, 1, false};
    }
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0U) != 0x80U) {
            return {0, 1, false};
        }
        code = (code << 6) | (byteAt(index) & 0x3FU);
    }
    const bool isOverlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    if (isOverlong || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) {
        return {0, 1, false};
    }
    return {code, length, true};
}

bool isValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = decodeUtf8(text);
        if (!character.mIsValid) {
            return false;
        }
        text.remove_prefix(character.mLength);
    }
    return true;
}

bool isUnsafeCharacter(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
           (code >= 0xFDD0 && code <= 0xFDEF) || (code & 0xFFFE) == 0xFFFE;
}

}  // namespace kt::encoding
