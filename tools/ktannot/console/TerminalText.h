#pragma once

/// @file
/// Foreign text for people's eyes.

#include <cstddef>
#include <string>
#include <string_view>

namespace ktannot {

/// The text in a form that is safe to show on a terminal: control characters, overrides of writing direction and other
/// characters that would change what is shown around them appear as escapes ("\n", "\x1b", "\u202e"), bytes that are no
/// valid UTF-8 as "\xff". Letters of all scripts stay.
/// @param text  any bytes.
std::string makeTerminalText(std::string_view text);

/// The same of the text's beginning, cut at a character when it has more than maxCharacters, with "…" behind it then.
std::string makeTerminalText(std::string_view text, std::size_t maxCharacters);

}  // namespace ktannot
