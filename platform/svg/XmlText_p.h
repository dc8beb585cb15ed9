#pragma once

/// @file
/// Character data for XML.

#include <string_view>

namespace kt::svg {

class TextBuffer;

enum class XmlContext {
    Content,    ///< between tags
    Attribute,  ///< inside double quotes; tab and line ends are written as references, or a parser would make blanks of
                ///< them
};

/// Appends any bytes as well-formed XML text that a parser reads back as the same characters. What XML cannot hold
/// (control characters other than tab, line feed and carriage return, bytes that are no UTF-8, surrogates, U+FFFE and
/// U+FFFF) becomes U+FFFD. Text that needs no change is copied in runs.
void appendXmlText(TextBuffer& buffer, std::string_view text, XmlContext context);

/// The longest beginning of text that has at most this many bytes and does not end inside a character.
std::string_view cutUtf8(std::string_view text, std::size_t size);

}  // namespace kt::svg
