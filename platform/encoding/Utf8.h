#pragma once

/// @file
/// Characters of UTF-8 text.

#include <cstddef>
#include <string_view>

namespace kt::encoding {

/// One character at the front of a text.
struct Utf8Character {
    char32_t mCode = 0;       ///< meaningless when not valid
    std::size_t mLength = 0;  ///< bytes that it takes; 1 for an invalid byte, 0 for an empty text
    bool mIsValid = false;
};

/// Decodes the first character. Overlong forms, surrogates and codes beyond U+10FFFF are not valid.
Utf8Character decodeUtf8(std::string_view text);

bool isValidUtf8(std::string_view text);

/// True for characters that may change what a terminal or a file list shows of their surroundings: control characters
/// (C0, DEL, C1), line and paragraph separators, marks and overrides of writing direction, noncharacters.
bool isUnsafeCharacter(char32_t code);

}  // namespace kt::encoding
