#pragma once

/// @file
/// Characters of UTF-8 text.

#include <cstddef>
#include <string>
#include <string_view>

namespace kt::encoding {

/// U+FFFD, which stands where no character can be shown.
inline constexpr char32_t sReplacementCharacter = 0xFFFD;
/// The same in UTF-8.
inline constexpr std::string_view sReplacementText = "\xEF\xBF\xBD";

/// One character at the front of a text.
struct Utf8Character {
    char32_t mCode = sReplacementCharacter;  ///< the replacement character when not valid
    /// Bytes that it takes; when not valid those of the longest beginning of a character, at least 1; 0 for an empty
    /// text.
    std::size_t mLength = 0;
    bool mIsValid = false;
};

/// Decodes the first character. Overlong forms, surrogates and codes beyond U+10FFFF are not valid.
inline Utf8Character decodeUtf8(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const auto byteAt = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned lead = byteAt(0);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return {sReplacementCharacter, 1, false};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : (lead >= 0xE0 ? 3 : 2);
    // The second byte's range keeps overlong forms, surrogates and what lies beyond U+10FFFF out.
    unsigned low = lead == 0xE0 ? 0xA0 : (lead == 0xF0 ? 0x90 : 0x80);
    unsigned high = lead == 0xED ? 0x9F : (lead == 0xF4 ? 0x8F : 0xBF);
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= text.size() || byteAt(index) < low || byteAt(index) > high) {
            return {sReplacementCharacter, index, false};
        }
        code = (code << 6U) | (byteAt(index) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {code, length, true};
}

bool isValidUtf8(std::string_view text);

/// Appends a character up to U+10FFFF that is no surrogate.
void appendUtf8(char32_t code, std::string& text);
std::string toUtf8(std::u32string_view characters);

/// The longest beginning of text that has at most this many bytes and does not end inside a character.
std::string_view cutUtf8(std::string_view text, std::size_t size);

/// U+FFFE, U+FFFF, their like in the other planes, and U+FDD0 to U+FDEF.
constexpr bool isNoncharacter(char32_t code) {
    return (code & 0xFFFEU) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
}

/// True for characters that may change what a terminal or a file list shows of their surroundings: control characters
/// (C0, DEL, C1), line and paragraph separators, marks and overrides of writing direction, noncharacters.
bool isUnsafeCharacter(char32_t code);

}  // namespace kt::encoding
