#pragma once

/// @file
/// From bytes to characters that can be shown.

#include <cstddef>
#include <string>
#include <string_view>

namespace kt::text {

constexpr char32_t sReplacementCharacter = 0xFFFD;

/// Reads the character at position and moves position behind it. A sequence that is not valid UTF-8 gives one
/// replacement character for its longest valid beginning, at least one byte.
char32_t decodeCharacter(std::string_view bytes, std::size_t& position);

/// What stands for the character in a drawing: a blank for the characters that move a cursor (tab, line feed, ...), the
/// replacement character for those that neither a font nor an XML file can hold (other controls, not-characters), the
/// character itself for all others.
char32_t toShownCharacter(char32_t character);

/// Appends the shown characters of the bytes.
void appendShownCharacters(std::string_view bytes, std::u32string& characters);

void appendUtf8(char32_t character, std::string& bytes);
std::string toUtf8(std::u32string_view characters);

}  // namespace kt::text
