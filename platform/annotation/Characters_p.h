#pragma once

/// @file
/// From bytes to characters that can be shown.

#include <string>
#include <string_view>

namespace kt::text {

/// What stands for the character in a drawing: a blank for the characters that move a cursor (tab, line feed, ...), the
/// replacement character for those that an XML file cannot hold (other controls below U+0020, U+FFFE, U+FFFF), the
/// character itself for all others.
char32_t toShownCharacter(char32_t character);

/// Appends the shown characters of the bytes, one for a carriage return with a line feed; those that are not UTF-8 show
/// as replacement characters, one for the longest beginning of a character.
void appendShownCharacters(std::string_view bytes, std::u32string& characters);

}  // namespace kt::text
