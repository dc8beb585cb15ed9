#pragma once

/// @file
/// Base64 text of binary data: RFC 4648, section 4, with padding and without line breaks.

#include <cstddef>
#include <string>
#include <string_view>

namespace kt::encoding {

/// Characters that so many bytes take.
constexpr std::size_t getBase64Size(std::size_t byteCount) { return (byteCount + 2) / 3 * 4; }

std::string encodeBase64(std::string_view bytes);
/// Writes getBase64Size(bytes.size()) characters to out and returns where they end. Pieces of whole groups of three
/// bytes may be written one after the other.
char* encodeBase64(char* out, std::string_view bytes);

/// Text of others brought into the form of encodeBase64(): blanks are dropped and the padding is set right. False when
/// there is anything but base64.
bool normalizeBase64(std::string_view text, std::string& base64);

/// The bytes of text in the form of encodeBase64(), up to its first other character.
std::string decodeBase64(std::string_view base64);
/// How many these are.
std::size_t getDecodedSize(std::string_view base64);

}  // namespace kt::encoding
