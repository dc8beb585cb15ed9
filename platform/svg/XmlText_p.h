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
/// U+FFFF) becomes U+FFFD.
void appendXmlText(TextBuffer& buffer, std::string_view text, XmlContext context);

/// What writing a text needs to know beforehand.
struct TextScan {
    bool mIsPlain;           ///< well-formed character data as it is, between tags and inside quotes
    bool mHasFragileBlanks;  ///< a renderer would drop some: all at the ends, and all but one in a row elsewhere
};
TextScan scanText(std::string_view text);

}  // namespace kt::svg
