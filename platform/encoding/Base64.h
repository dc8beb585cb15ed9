#pragma once

/// @file
/// Base64 text of binary data.

#include <string>
#include <string_view>

namespace kt::encoding {

/// The bytes in base64 with padding and without line breaks (RFC 4648, section 4).
std::string encodeBase64(std::string_view bytes);

}  // namespace kt::encoding
