#include "platform/encoding/Utf8.h"

#include <algorithm>

namespace kt::encoding {

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

void appendUtf8(char32_t code, std::string& text) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
        return;
    }
    if (code < 0x800) {
        append(0xC0 | (code >> 6U));
    } else {
        if (code < 0x10000) {
            append(0xE0 | (code >> 12U));
        } else {
            append(0xF0 | (code >> 18U));
            append(0x80 | ((code >> 12U) & 0x3FU));
        }
        append(0x80 | ((code >> 6U) & 0x3FU));
    }
    append(0x80 | (code & 0x3FU));
}

std::string toUtf8(std::u32string_view characters) {
    std::string text;
    text.reserve(characters.size());
    for (const char32_t character : characters) {
        appendUtf8(character, text);
    }
    return text;
}

std::string_view cutUtf8(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    constexpr std::size_t sMaxContinuations = 3;
    for (std::size_t back = 0; back <= std::min(sMaxContinuations, size); ++back) {
        if ((static_cast<unsigned char>(text[size - back]) & 0xC0U) != 0x80U) {
            return text.substr(0, size - back);
        }
    }
    return text.substr(0, size);
}

bool isUnsafeCharacter(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
           isNoncharacter(code);
}

}  // namespace kt::encoding
